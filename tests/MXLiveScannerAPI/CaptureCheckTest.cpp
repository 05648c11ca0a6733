// Whether the fingers were still there when a picture was taken.
#include <gtest/gtest.h>

#include <vector>

#include "MXLiveScannerAPI/CaptureCheck.h"
#include "TestPicture.h"

namespace {

TEST(CaptureCheck, ATenthOfTheLitPixelsMayLoseAQuarterOfTheirLight) {
  const ClTestPicture oPreview(100, 10, 100);
  const auto IsGoodWith = [&](int nDarker, int nGrey) {
    ClTestPicture oCapture(100, 10, 100);
    for (int n = 0; n < nDarker; ++n) oCapture.Fill(10 + n % 10, n / 10, 1, 1, nGrey);
    return ClCaptureCheck::KeepsItsLight(oPreview, oCapture);
  };
  // 720 pixels count: the middle 80 columns of the first 9 rows.
  EXPECT_TRUE(IsGoodWith(71, 74));
  EXPECT_FALSE(IsGoodWith(72, 74));
  EXPECT_TRUE(IsGoodWith(90, 75));
  ClTestPicture oMargins(100, 10, 100);
  oMargins.Fill(0, 0, 10, 10, 0);
  oMargins.Fill(90, 0, 10, 10, 0);
  oMargins.Fill(0, 9, 100, 1, 0);
  EXPECT_TRUE(ClCaptureCheck::KeepsItsLight(oPreview, oMargins));
  const ClTestPicture oRow(100, 1, 100);
  EXPECT_FALSE(ClCaptureCheck::KeepsItsLight(oRow, oRow)) << "no row is left";
}

TEST(CaptureCheck, PixelsUpTo16AreDark) {
  const ClTestPicture oDark(100, 10, 16), oLit(100, 10, 17);
  EXPECT_FALSE(ClCaptureCheck::KeepsItsLight(oDark, oDark)) << "nothing is lit";
  EXPECT_TRUE(ClCaptureCheck::KeepsItsLight(oLit, oLit));
}

}  // namespace
