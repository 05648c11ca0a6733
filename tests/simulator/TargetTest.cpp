// The calibration target as the full sensor shows it: dots where they are said to be.
#include <gmock/gmock.h>

#include <cmath>

#include "Frames.h"
#include "scene/SceneReader.h"

namespace Simulator {
namespace {

constexpr int cnWidth = 3840;

class Target : public testing::Test {
 protected:
  void See(const std::string& sTarget) {
    const ClSceneDescription oScene = FindScene(R"({"scanners": [{"noise": 0, "target": )" + sTarget + "}]}");
    ClSensor oSensor(oScene.aScanners[0], oScene.nSeed);
    m_aDots = oSensor.TargetDots();
    m_aFrame = Difference(Sequence(oSensor, Settings(oSensor, 7, 1.0)));
  }
  int At(double dX, double dY) const {
    return m_aFrame[static_cast<size_t>(std::lround(dY)) * cnWidth + static_cast<size_t>(std::lround(dX))];
  }
  /// The middle of what is darker than half of the ground, within a third of a pitch of a place.
  ClPoint DarkMiddle(const ClPoint& oPlace) const {
    double dX = 0.0, dY = 0.0, nDark = 0.0;
    const double dHalf = 0.5 * At(oPlace.dX + 200.0, oPlace.dY);
    for (int y = -100; y <= 100; ++y) {
      for (int x = -140; x <= 140; ++x) {
        if (At(oPlace.dX + x, oPlace.dY + y) > dHalf) continue;
        dX += std::round(oPlace.dX + x);
        dY += std::round(oPlace.dY + y);
        nDark += 1.0;
      }
    }
    return {dX / nDark, dY / nDark};
  }

  std::vector<ClPoint> m_aDots;
  Plane m_aFrame;
};

TEST_F(Target, ShowsItsDotsWhereTheyAreSaidToBe) {
  See(R"({"angle": 3, "radius": 1.6, "dust": 0, "scratches": 0})");
  ASSERT_EQ(m_aDots.size(), 64u);
  for (size_t n = 0; n < 64; ++n) {
    const ClPoint oMiddle = DarkMiddle(m_aDots[n]);
    EXPECT_NEAR(oMiddle.dX, m_aDots[n].dX, 0.3) << n;
    EXPECT_NEAR(oMiddle.dY, m_aDots[n].dY, 0.3) << n;
  }
  // Columns from left to right, each from top to bottom; what turns to the left is seen to turn to the right.
  EXPECT_NEAR(m_aDots[8].dX - m_aDots[0].dX, 414.0, 15.0);
  EXPECT_NEAR(m_aDots[1].dY - m_aDots[0].dY, 302.0, 15.0);
  EXPECT_GT(m_aDots[56].dY, m_aDots[0].dY + 70.0);
  See("{}");
  EXPECT_NEAR(m_aDots[56].dY, m_aDots[0].dY, 30.0);
}

TEST_F(Target, LacksAndDoublesDotsAndGrowsDarkOnOneSide) {
  See(R"({"radius": 1.6, "dust": 0, "scratches": 0, "uneven": 0, "missing": [0], "doubled": [9]})");
  EXPECT_GT(At(m_aDots[0].dX, m_aDots[0].dY), 70) << "as bright as the ground";
  EXPECT_LT(At(m_aDots[9].dX, m_aDots[9].dY), 10);
  // To the right of the picture is to the left of the sensor.
  EXPECT_LT(At(m_aDots[9].dX - 110.0, m_aDots[9].dY), 10) << "beyond the dot's own edge";
  EXPECT_GT(At(m_aDots[9].dX + 110.0, m_aDots[9].dY), 70);
  const Plane aEven = m_aFrame;
  See(R"({"radius": 1.6, "dust": 300, "scratches": 20, "uneven": 0.5})");
  size_t nMuchDarker = 0;
  for (size_t n = 0; n < aEven.size(); n += 7) nMuchDarker += 4 * m_aFrame[n] < 3 * aEven[n];
  EXPECT_GT(nMuchDarker, aEven.size() / 7 / 4);
  EXPECT_LT(nMuchDarker, aEven.size() / 7 * 3 / 4);
}

}  // namespace
}  // namespace Simulator
