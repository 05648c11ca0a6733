// The dot search on targets that lie on the simulated scanner, whose optics and ground truth it shares
// nothing with.
#include <gmock/gmock.h>

#include <cmath>
#include <string>

#include "Frames.h"
#include "MXCalibrate/IpCalibrateGeometricBuildRefPointsVT40Donut.h"
#include "Raised.h"
#include "Seeds.h"
#include "scene/SceneReader.h"

namespace {

using testing::EndsWith;

struct StSearched {
  std::pair<long, std::string> oRaised;
  ClCalibrateGeometricData oData;
  std::vector<Simulator::ClPoint> aTruth;
};

void Search(const std::string& sSerial, const std::string& sTarget, StSearched& oSearched) {
  const Simulator::ClSceneDescription oScene =
      Simulator::FindScene(R"({"scanners": [{"serial": ")" + sSerial + R"(", "target": )" + sTarget + "}]}");
  Simulator::ClSensor oSensor(oScene.aScanners[0], oScene.nSeed);
  const Simulator::Plane aFrame =
      Simulator::Difference(Simulator::Sequence(oSensor, Simulator::Settings(oSensor, 7, 1.0)));
  ClImage oImage(3840, 2720, 1, 0, 0);
  for (int y = 0; y < 2720; ++y) {
    for (int x = 0; x < 3840; ++x)
      oImage.Row<uint8_t>(y)[x] =
          static_cast<uint8_t>(aFrame[static_cast<size_t>(y) * 3840 + static_cast<size_t>(x)]);
  }
  ClIpCalibrateGeometricBuildRefPointsVT40Donut oDonut;
  oDonut.m_pInImage = &oImage;
  oDonut.m_pOutData = &oSearched.oData;
  oSearched.oRaised = Raised([&] { EXPECT_EQ(oDonut.Apply(), 0); });
  oSearched.aTruth = oSensor.TargetDots();
}

TEST(TargetScenes, DotsAreFoundToAFifthOfAPixelUpTo4Point3Degrees) {
  for (int nSeed = 0; nSeed <= 2 * Seeds(); ++nSeed) {
    SCOPED_TRACE(nSeed);
    const double dAngle = 4.3 * (nSeed % 5 - 2) / 2;
    StSearched o;
    Search("VT40-AB" + std::to_string(1000 + nSeed),
           R"({"seed": )" + std::to_string(nSeed) + R"(, "angle": )" + std::to_string(dAngle) + "}", o);
    ASSERT_EQ(o.oRaised.first, 0) << o.oRaised.second;
    double dSquares = 0;
    for (unsigned int n = 0; n < 64; ++n) {
      dSquares += std::pow(o.oData.m_aActual[0][n].x - o.aTruth[n].dX, 2) +
                  std::pow(o.oData.m_aActual[0][n].y - o.aTruth[n].dY, 2);
    }
    EXPECT_LE(std::sqrt(dSquares / 64), 0.2);
  }
}

TEST(TargetScenes, AMissingAndADoubledDotAndTinyDotsAreRefused) {
  for (const char* szTarget : {R"({"missing": [28]})", R"({"doubled": [28]})", R"({"radius": 0.3})"}) {
    StSearched o;
    Search("VT40-AB0001", szTarget, o);
    EXPECT_EQ(o.oRaised.first, -600);
    EXPECT_THAT(o.oRaised.second, EndsWith("Not the expected dot count found.")) << szTarget;
  }
}

}  // namespace
