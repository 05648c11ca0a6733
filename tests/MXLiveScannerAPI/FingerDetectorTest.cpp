// Whether fingers lie still, at the limits of its decisions.
#include <gtest/gtest.h>

#include <vector>

#include "MXLiveScannerAPI/FingerDetector.h"
#include "TestPicture.h"

namespace {

ClTestPicture MaskOf(size_t nFingerPixels) {
  return ClTestPicture(std::vector<uint8_t>(nFingerPixels, 254), 255);
}

TEST(FingerDetector, DecidesByTheCountAndItsChangeEachAtItsLimit) {
  const ClTestPicture oFrame(200, 100, 0);
  const struct {
    size_t nBefore, nCount;
    ClFingerDetector::EDecision eWanted;
  } aCases[] = {{1000, 1000, ClFingerDetector::eNoFinger}, {1001, 1001, ClFingerDetector::eSteady},
                {2000, 1800, ClFingerDetector::eUnsteady}, {2000, 1801, ClFingerDetector::eSteady},
                {2000, 2199, ClFingerDetector::eSteady},   {2000, 2200, ClFingerDetector::eUnsteady},
                {0, 5000, ClFingerDetector::eUnsteady},    {0, 5001, ClFingerDetector::eSteady}};
  for (const auto& oCase : aCases) {
    ClFingerDetector oDetector;
    oDetector.Add(oFrame, MaskOf(oCase.nBefore));
    EXPECT_EQ(oDetector.Add(oFrame, MaskOf(oCase.nCount)), oCase.eWanted)
        << oCase.nBefore << " to " << oCase.nCount;
  }
}

TEST(FingerDetector, ComparesEachFrameWithTheOneBeforeAndTheFirstWithBlack) {
  std::vector<uint8_t> aJustStill(1537, 255);  // 99999999 in squares
  aJustStill.insert(aJustStill.end(), {237, 20, 2, 1});
  std::vector<uint8_t> aMoved = aJustStill;
  aMoved.push_back(1);
  const ClTestPicture oMask = MaskOf(6000);
  ClFingerDetector oDetector;
  EXPECT_EQ(oDetector.Add(ClTestPicture(aJustStill, 0), oMask), ClFingerDetector::eSteady);
  oDetector.Reset();
  EXPECT_EQ(oDetector.Add(ClTestPicture(aMoved, 0), oMask), ClFingerDetector::eNoFinger);
  EXPECT_EQ(oDetector.Add(ClTestPicture(aMoved, 0), oMask), ClFingerDetector::eSteady);
  EXPECT_EQ(oDetector.Add(ClTestPicture(200, 100, 0), oMask), ClFingerDetector::eNoFinger)
      << "in either direction";
  EXPECT_EQ(oDetector.Add(ClTestPicture(200, 100, 0), oMask), ClFingerDetector::eSteady);
}

}  // namespace
