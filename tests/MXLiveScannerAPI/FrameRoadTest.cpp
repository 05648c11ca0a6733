// The road of a frame against the processors that stand for its steps.
#include "MXLiveScannerAPI/FrameRoad.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "CalibrationBlocks.h"
#include "MXLiveScannerAPI/VT40SetupCalibrationData.h"
#include "TestPicture.h"

namespace {

using State = ClVT40SetupCalibrationData;

struct StKind {
  ClFrameRoad::EKind eKind;
  void (State::*pfnCalibrate)(ClImage&, ClImage&);
  void (State::*pfnAdjust)(ClImage&, ClImage&, unsigned char);
};
const StKind s_aKinds[] = {{ClFrameRoad::ePreview, &State::CalibratePreview, &State::AdjustBrightnessPreview},
                           {ClFrameRoad::eFull, &State::CalibrateFull, &State::AdjustBrightnessFull},
                           {ClFrameRoad::eRoll, &State::CalibrateRoll, &State::AdjustBrightnessRoll}};

/// What the processors make of a raw difference, one after the other.
void RectifyPlainly(State& oSetup, const StKind& oKind, bool bShot, ClImage& oRaw, ClImage& oOut) {
  ClImage oBalanced, oWarped, oAdjusted;
  ClIpLocalWhiteBalance().ApplyParam(oRaw, oBalanced);
  (oSetup.*oKind.pfnCalibrate)(oBalanced, oWarped);
  if (!bShot) ClIpFlip().ApplyParam(oWarped, oWarped, true, false);
  (oSetup.*oKind.pfnAdjust)(oWarped, oAdjusted, 224);
  if (bShot) ClIpFlip().ApplyParam(oAdjusted, oAdjusted, true, false);
  oOut = oAdjusted;
}

TEST(FrameRoad, TheTwoPlanesOfASequenceMayComeInEitherOrder) {
  ClTestPicture oDifference(4, 1, 9);
  const unsigned char aDarkFirst[] = {0x30, 5, 80, 0, 0x41, 9, 70, 255};
  const unsigned char aLitFirst[] = {0x41, 9, 70, 255, 0x30, 5, 80, 0};
  for (const unsigned char* pSequence : {aDarkFirst, aLitFirst}) {
    ClFrameRoad::Difference(pSequence, oDifference);
    const uint8_t* pRow = oDifference.Row<uint8_t>(0);
    EXPECT_EQ(std::vector<int>(pRow, pRow + 4), (std::vector<int>{0x11, 4, 0, 255}));
  }
}

}  // namespace

TEST(FrameRoad, MakesWhatItsProcessorsMakeOfEveryKindOfFrame) {
  const Bytes aGeometry = GeometricBlock(ClGeometricRecord()), aBrightness = LegacyBrightnessBlock();
  State oSetup("VT40-AD0042", false);
  oSetup.Setup(aGeometry.data(), static_cast<unsigned int>(aGeometry.size()), aBrightness.data(),
               static_cast<unsigned int>(aBrightness.size()), nullptr, 0);
  std::mt19937 oRandom(7);
  for (const StKind& oKind : s_aKinds) {
    for (const bool bSmallImages : {true, false}) {
      ClFrameRoad oRoad(oSetup, oKind.eKind, bSmallImages, 0);
      ClImage& oRaw = oRoad.Raw();
      // Brighter from the left to the right, so that no picture is its own mirror image.
      for (int nY = 0; nY < oRaw.Height(); ++nY) {
        for (int nX = 0; nX < oRaw.Width(); ++nX) {
          oRaw.Row<uint8_t>(nY)[nX] =
              static_cast<uint8_t>(nX * 96 / oRaw.Width() + nY % 96 + static_cast<int>(oRandom() % 64));
        }
      }
      for (const bool bShot : {false, true}) {
        SCOPED_TRACE(testing::Message() << oKind.eKind << ' ' << bSmallImages << ' ' << bShot);
        ClImage oOut, oExpected;
        RectifyPlainly(oSetup, oKind, bShot, oRaw, oExpected);
        if (bShot) oRoad.RectifyShot(oOut);
        if (!bShot) oRoad.Rectify(oOut);
        ASSERT_TRUE(oOut.HasSize(oExpected.Width(), oExpected.Height()));
        EXPECT_EQ(oOut.PelsX(), oExpected.PelsX());
        EXPECT_TRUE(std::equal(oOut.Data(), oOut.Data() + oOut.DataBytes(), oExpected.Data()));
      }
    }
  }
}
