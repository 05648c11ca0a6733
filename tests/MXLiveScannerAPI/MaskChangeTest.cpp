// What a capture on request has shown.
#include <gtest/gtest.h>

#include <vector>

#include "MXLiveScannerAPI/MaskChange.h"
#include "TestPicture.h"

namespace {

TEST(MaskChange, ACaptureNeedsMoreThanAThousandPixelsAtThePreviewsScale) {
  ClMaskChange oChange(false);
  ClTestPicture oNothing(200, 200, 255);
  const auto IsComplete = [&](int nExtra, int nGrey) {
    ClTestPicture oCapture(400, 400, 255);
    oCapture.Fill(100, 100, 40, 100, nGrey);
    oCapture.Fill(100, 200, nExtra, 1, nGrey);
    return oChange.IsComplete(oNothing, oCapture);
  };
  EXPECT_FALSE(IsComplete(3, 160));
  EXPECT_TRUE(IsComplete(4, 160));
  EXPECT_FALSE(IsComplete(4, 161)) << "too bright for a ridge";
}

TEST(MaskChange, ACaptureThatLostAFifthOfItsPixelsIsNotComplete) {
  // The comparison widens each area by 3 pixels to all sides: 106 rows, of which 100 count as the capture's
  // own.
  const auto IsComplete = [](int nColumns, bool bSkipTop, int nTopColumns, int nGained = 0) {
    ClTestPicture oPreview(200, 200, 255), oCapture(400, 400, 255);
    oPreview.Fill(60, 60, 60, 100, 0);
    oCapture.Fill(120, 120, 2 * nColumns, 200, 0);
    oCapture.Fill(270, 120, 2 * nGained, 200, 0);
    oPreview.Fill(20, 10, nTopColumns, 20, 0);
    return ClMaskChange(bSkipTop).IsComplete(oPreview, oCapture);
  };
  EXPECT_TRUE(IsComplete(51, false, 0)) << "954 of 1020";
  EXPECT_FALSE(IsComplete(50, false, 0)) << "1060 of 1000";
  EXPECT_FALSE(IsComplete(60, false, 100));
  EXPECT_TRUE(IsComplete(60, true, 100)) << "the upper fifth does not count";
  EXPECT_TRUE(IsComplete(10, false, 0, 50)) << "a finger that has moved";
}

}  // namespace
