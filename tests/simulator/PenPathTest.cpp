// The way of a pen as a function of time.
#include <gtest/gtest.h>

#include <cmath>

#include "scene/PenPath.h"
#include "scene/SceneReader.h"

namespace Simulator {
namespace {

TEST(PenPath, ACurveMeetsItsPointsAndSlowsDownInBendsAndStrokesWaitForEachOther) {
  const ClPenPath oPath(FindScene(R"({"scanners": [{"pen": {"strokes": [
      {"at": 1, "speed": 50, "points": [[10, 10], [20, 10, 0.5], [30, 20], [20, 30]]},
      {"at": 1.1, "line": "straight", "speed": 50, "points": [[60, 10], [70, 10]]},
      {"after": 0.25, "points": [[50, 20]]}]}}]})")
                            .aScanners[0]
                            .oPen.aStrokes);
  const auto& aStrokes = oPath.Strokes();
  ASSERT_EQ(aStrokes.size(), 3u);
  EXPECT_EQ(aStrokes[0].dBegin, 1.0);
  EXPECT_EQ(aStrokes[1].dBegin, aStrokes[0].dEnd) << "its time comes while the first is being drawn";
  EXPECT_NEAR(aStrokes[1].dEnd - aStrokes[1].dBegin, 0.2, 1e-9);
  EXPECT_NEAR(aStrokes[2].dBegin - aStrokes[1].dEnd, 0.25, 1e-9);
  EXPECT_NEAR(aStrokes[2].dEnd - aStrokes[2].dBegin, 0.08, 1e-9) << "a tap";
  double adNearest[4] = {99, 99, 99, 99}, dSlowest = 1e9, dFastest = 0.0;
  int nRests = 0;
  ClPenTip oBefore = oPath.At(1.0);
  for (double d = 1.001; d < aStrokes[0].dEnd; d += 0.001) {
    const ClPenTip o = oPath.At(d);
    EXPECT_TRUE(o.bDown && o.nStroke == 0) << d;
    const double dSpeed = std::hypot(o.dXMm - oBefore.dXMm, o.dYMm - oBefore.dYMm) / 0.001;
    nRests += dSpeed == 0.0;
    dFastest = std::max(dFastest, dSpeed);
    if (d > 1.8) dSlowest = std::min(dSlowest, dSpeed);
    const double adPoints[4][2] = {{10, 10}, {20, 10}, {30, 20}, {20, 30}};
    for (size_t n = 0; n < 4; ++n)
      adNearest[n] = std::min(adNearest[n], std::hypot(o.dXMm - adPoints[n][0], o.dYMm - adPoints[n][1]));
    oBefore = o;
  }
  for (const double d : adNearest) EXPECT_LT(d, 0.08);
  EXPECT_NEAR(nRests, 500, 5) << "the pause";
  EXPECT_NEAR(dFastest, 75.0, 3.0) << "one and a half times the usual speed where it is straight";
  EXPECT_LT(dSlowest, 66.0);
  EXPECT_FALSE(oPath.At(0.5).bDown || oPath.At(aStrokes[2].dEnd).bDown);
  EXPECT_EQ(oPath.At(0.5).nStroke, -1);
  EXPECT_NEAR(oPath.At(0.5).dXMm, 10.0, 0.01) << "where it will touch first";
}

}  // namespace
}  // namespace Simulator
