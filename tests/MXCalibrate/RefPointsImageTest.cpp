// The dot search in drawn pictures of the target: where the dots are found, and which targets are refused.
#include <gmock/gmock.h>

#include <cmath>
#include <string>

#include "DotTarget.h"
#include "MXCalibrate/IpCalibrateGeometricBuildRefPointsVT40Donut.h"
#include "MXMath/ThinPlateSplinesBOOST.h"
#include "Raised.h"

namespace {

using testing::EndsWith;
using ClDonut = ClIpCalibrateGeometricBuildRefPointsVT40Donut;

std::pair<long, std::string> Search(ClDonut& oDonut, ClImage& oImage, ClCalibrateGeometricData& oData) {
  oDonut.m_pInImage = &oImage;
  oDonut.m_pOutData = &oData;
  return Raised([&] { EXPECT_EQ(oDonut.Apply(), 0); });
}

void ExpectPlaces(const ClCalibrateGeometricData::Points& aFound, const std::vector<ClVector>& aTruth,
                  double dMostRms, double dMost) {
  ASSERT_EQ(aFound.Entries(), aTruth.size());
  double dSquares = 0;
  for (unsigned int n = 0; n < aFound.Entries(); ++n) {
    const double dOff = (aFound[n] - aTruth[n]).Length();
    EXPECT_LE(dOff, dMost) << "dot " << n;
    dSquares += dOff * dOff;
  }
  EXPECT_LE(std::sqrt(dSquares / static_cast<double>(aTruth.size())), dMostRms);
}

TEST(TargetSearch, FillsARecordThatItsOwnCheckAccepts) {
  ClDotTarget oTarget;
  oTarget.dDegrees = 2;
  ClImage oImage;
  oTarget.Draw(oImage);
  ClDonut oDonut;
  ClImage oDebug;
  oDonut.m_pOutDebugImage = &oDebug;
  ClCalibrateGeometricData oData;
  ASSERT_EQ(Search(oDonut, oImage, oData).first, 0);
  EXPECT_THAT((std::vector<uint32_t>{oData.m_nSourceWidth, oData.m_nSourceHeight, oData.m_nSourcePelsX,
                                     oData.m_nSourcePelsY, oData.m_nTargetWidth, oData.m_nTargetHeight,
                                     oData.m_nTargetPelsX, oData.m_nPlanes, oData.m_nBackground}),
              testing::ElementsAre(3840, 2720, 41417, 30236, 1600, 1600, 19685, 1, 255));
  // Seven pitches of 196.85 pixels round the middle.
  EXPECT_NEAR(oData.m_aTarget[0].x, 800 - 3.5 * 196.850394, 1e-4);
  EXPECT_NEAR(oData.m_aTarget[15].y, 800 + 3.5 * 196.850394, 1e-4);
  oDonut.ValidateCalibrationData(oData);
  ASSERT_TRUE(oDebug.HasSize(3840, 2720));
  const ClVector vDot = oData.m_aActual[0][27];
  EXPECT_EQ(oDebug.Row<uint8_t>(static_cast<int>(vDot.y))[static_cast<int>(vDot.x)], 255);
}

TEST(TargetSearch, CentresTheGridOrTheSensorInTheCorrectedImage) {
  ClDotTarget oTarget;
  oTarget.vShift = ClVector(40, -25);
  ClImage oImage;
  oTarget.Draw(oImage);
  ClCalibrateGeometricData oData;
  ClDonut oByGrid;
  oByGrid.m_dYOffset = 2.54;
  ASSERT_EQ(Search(oByGrid, oImage, oData).first, 0);
  EXPECT_NEAR(oData.m_aTarget[0].y + oData.m_aTarget[63].y, 1600 - 50, 1e-6) << "50 pixels are 2.54 mm";
  // The grid of reference data is taken at its own scale, 1000 dpi.
  ClCalibrateGeometricData oReference;
  oReference.m_nTargetPelsX = oReference.m_nTargetPelsY = 39370;
  oByGrid.BuildTargetPoints(oReference.m_aTarget, 1000, 1000, 7, 9);
  oReference.m_aTarget[0].x -= 6;
  oByGrid.m_pRefData = &oReference;
  ASSERT_EQ(Search(oByGrid, oImage, oData).first, 0);
  EXPECT_NEAR(oData.m_aTarget[8].x - oData.m_aTarget[0].x, 196.850394 + 3, 1e-6);
  ClDonut oByBorder;
  oByBorder.m_bCentreByBorder = true;
  ASSERT_EQ(Search(oByBorder, oImage, oData).first, 0);
  TpThinPlateSplines<double> oSpline;
  oSpline.Setup(64, oData.m_aTarget.Data(), oData.m_aActual[0].Data());
  double dX, dY;
  oSpline.Transform(800, 800, &dX, &dY);
  EXPECT_NEAR(dX, 1920, 2.5);
  EXPECT_NEAR(dY, 1360, 2.5);
}

TEST(TargetSearch, SearchesEachPlaneAndBrightDotsTooWhateverStraysThereAre) {
  ClDotTarget aTargets[2];
  aTargets[1].dDegrees = 4;
  aTargets[1].nDust = 150;
  aTargets[1].nNoise = 8;
  aTargets[1].dFall = 0.2;
  // Between four dots, beside two, outside, and nearly on another one's place.
  aTargets[1].aStrays = {{0, 0}, {-20, 15}, {35, -40.5}, {-38.5, 38.5}};
  aTargets[1].vShift = ClVector(6, -4);
  ClImage aImages[2];
  for (int n = 0; n < 2; ++n) aTargets[n].Draw(aImages[n]);
  ClImage oPlanes;
  oPlanes.NewWithType(ClImage::eUint8, 3840, 2720, 2, 0, 0, true);
  for (int y = 0; y < 2720; ++y) {
    for (int x = 0; x < 3840; ++x) {
      for (int n = 0; n < 2; ++n)
        oPlanes.Row<uint8_t>(y)[2 * x + n] = static_cast<uint8_t>(255 - aImages[n].Row<uint8_t>(y)[x]);
    }
  }
  ClDonut oDonut;
  oDonut.m_bInvert = true;
  ClCalibrateGeometricData oData;
  ASSERT_EQ(Search(oDonut, oPlanes, oData).first, 0);
  EXPECT_EQ(oData.m_nPlanes, 2u);
  EXPECT_EQ(oData.m_nBackground, 0);
  for (int n = 0; n < 2; ++n) ExpectPlaces(oData.m_aActual[n], aTargets[n].Truth(), 0.2, n == 1 ? 1 : 0.5);
  EXPECT_GE(oDonut.m_nDotCount, 68) << "the strays among them";
}

TEST(TargetSearch, NeedsData) {
  ClDonut oDonut;
  ClImage oImage(10, 10, 1, 0, 0);
  oImage = static_cast<unsigned char>(0);
  ClCalibrateGeometricData oData;
  EXPECT_EQ(Search(oDonut, oImage, oData).first, -600) << "smaller than the binariser's window";
  oDonut.m_pOutData = nullptr;
  EXPECT_FALSE(oDonut.CanApply());
  EXPECT_THAT(Raised([&] { oDonut.Apply(); }), testing::Pair(-37, EndsWith("m_pOutData is NULL")));
}

}  // namespace
