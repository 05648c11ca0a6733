// The scenes of the signature pad, as a host sees them that tells a pen from what else moves on the platen.
#include <gmock/gmock.h>

#include <cmath>
#include <numeric>

#include "Frames.h"
#include "Seeds.h"
#include "scene/PlatenScene.h"
#include "scene/SceneReader.h"

namespace Simulator {
namespace {

constexpr int cnWidth = 480;  // of a frame that the host has halved

/// What the host makes of a frame.
enum ESeen { eSeenNothing, eSeenPen, eSeenLarge };

struct ClSeen {
  ESeen eWhat = eSeenNothing;
  double dX = 0.0, dY = 0.0;  ///< of a pen, in pixels of the full sensor
  double dMiddle = 0.0;       ///< of a large object, in frame pixels from the left of the picture
};

/// A scene seen in single lit frames: even light, half size, without what stood still for eight frames, without wide
/// areas. What is new against the frame before is judged: how many pixels it has near its brightest one, and how
/// scattered they are.
class ClPad {
 public:
  ClPad(const std::string& sScene, int nMode)
      : m_oScene(FindScene(sScene)),
        m_oSensor(m_oScene.aScanners[0], m_oScene.nSeed),
        m_oSettings(Settings(m_oSensor, nMode, 1.0 / 3.0)),
        m_nHeight(m_oSettings.pMode->nHeight / 2),
        m_aHistory(8, Plane(Size())),
        m_aSum(Size()) {
    m_oSettings.aMasks = {1};
    m_aLight.resize(4 * Size());
    for (int y = 0; y < 2 * m_nHeight; ++y)
      for (int x = 0; x < 2 * cnWidth; ++x) {
        const ClPoint o = m_oSensor.Optics().SensorToPicture(4 * x + 1.5, 4 * y + 1.5);
        m_aLight[At(x, y, 2 * cnWidth)] = 150.0 * m_oSensor.Optics().Illumination(o.dX, o.dY);
      }
  }

  double Seconds() const { return m_nFrame * m_oSettings.Seconds(); }
  const ClPenPath& Pen() const { return *m_oSensor.Pen(); }
  const ClOptics& Optics() const { return m_oSensor.Optics(); }

  ClSeen Next() {
    const Plane aNow = WithoutBackground(Halved());
    ClSeen oSeen;
    if (m_nFrame++ > 0) oSeen = Judge(Less(aNow, m_aBefore));
    m_aBefore = aNow;
    return oSeen;
  }

 private:
  size_t Size() const { return static_cast<size_t>(cnWidth * m_nHeight); }
  static size_t At(int x, int y, int nWidth = cnWidth) { return static_cast<size_t>(y * nWidth + x); }

  Plane Halved() {
    const std::vector<uint8_t> aRaw =
        Sequence(m_oSensor, m_oSettings, static_cast<uint64_t>(m_nFrame), Seconds());
    Plane a(Size());
    const auto Even = [&](int x, int y) {
      const size_t n = At(x, y, 2 * cnWidth);
      return std::min(255, 4 * std::min(255, static_cast<int>(aRaw[n] * 192 / m_aLight[n])));
    };
    for (int y = 0; y < m_nHeight; ++y)
      for (int x = 0; x < cnWidth; ++x)
        a[At(x, y)] = ((Even(2 * x, 2 * y) + Even(2 * x + 1, 2 * y)) / 2 +
                       (Even(2 * x, 2 * y + 1) + Even(2 * x + 1, 2 * y + 1)) / 2) /
                      2;
    return a;
  }

  Plane WithoutBackground(Plane a) {
    Plane& aOldest = m_aHistory[static_cast<size_t>(m_nFrame % 8)];
    for (size_t i = 0; i < a.size(); ++i) {
      const int nNow = a[i], nSum = m_aSum[i];
      m_aSum[i] += nNow - aOldest[i];
      aOldest[i] = nNow;
      a[i] = std::max(0, nNow - nSum / 8);
    }
    return Less(a, Smooth(a, cnWidth, 5));
  }

  static Plane Less(Plane a, const Plane& b) {
    for (size_t i = 0; i < a.size(); ++i) a[i] = std::max(0, a[i] - b[i]);
    return a;
  }

  ClSeen Judge(const Plane& aNew) const {
    const int nBottom = m_nHeight == 170 ? 19 * m_nHeight / 20 : 4 * m_nHeight / 5;
    const auto Each = [&](const auto& fnPixel) {
      for (int y = m_nHeight / 20; y < nBottom; ++y)
        for (int x = 3 * cnWidth / 50; x < 47 * cnWidth / 50; ++x) fnPixel(x, y);
    };
    int nBrightest = 32, nMidX = -1, nMidY = 0;
    Each([&](int x, int y) {
      if (aNew[At(x, y)] <= nBrightest) return;
      nBrightest = aNew[At(x, y)];
      nMidX = x;
      nMidY = y;
    });
    if (nMidX < 0) return {};
    const Plane aSmooth = Smooth(aNew, cnWidth, 3);
    double dNear = 0.0, dNearX = 0.0, d = 0.0, dX = 0.0, dY = 0.0, dXX = 0.0, dYY = 0.0;
    Each([&](int x, int y) {
      const int nAway = (x - nMidX) * (x - nMidX) + (y - nMidY) * (y - nMidY), nValue = aSmooth[At(x, y)];
      const double dIsNear = nAway < 2500 && nValue >= 4, dIsTip = nAway <= 99 && nValue >= 11;
      dNear += dIsNear;
      dNearX += dIsNear * x;
      d += dIsTip;
      dX += dIsTip * 2 * x;
      dY += dIsTip * 2 * y;
      dXX += dIsTip * 4 * x * x;
      dYY += dIsTip * 4 * y * y;
    });
    if (dNear > 300.0) return {eSeenLarge, 0.0, 0.0, 2 * cnWidth - 2.0 * dNearX / dNear};
    const double dMostScattered = std::max(dXX - dX * dX / d, dYY - dY * dY / d) / (d - 1.0);
    if (d < 5.0 || dMostScattered >= 15.0) return {};
    // The middle of two merged pixels of four sensor pixels each.
    return {eSeenPen, 4.0 * dX / d + 3.5, 4.0 * dY / d + 3.5, 0.0};
  }

  ClSceneDescription m_oScene;
  ClSensor m_oSensor;
  ClSensorSettings m_oSettings;
  int m_nHeight;
  std::vector<Plane> m_aHistory;
  Plane m_aSum, m_aBefore;
  std::vector<double> m_aLight;
  int m_nFrame = 0;
};

/// Follows a pen: how often it was seen in each stroke, how far from its place, and what the host made of the rest.
struct ClTrace {
  ClTrace(const std::string& sScene, int nMode) {
    ClPad oPad(sScene, nMode);
    aSeen.resize(oPad.Pen().Strokes().size());
    double dSum = 0.0, dCount = 0.0;
    for (int nMissed = 0; oPad.Seconds() < oPad.Pen().Strokes().back().dEnd + 0.1;) {
      const ClPenTip oTip = oPad.Pen().At(oPad.Seconds());
      const ClSeen oSeen = oPad.Next();
      nMissed = oTip.bDown && oSeen.eWhat != eSeenPen ? nMissed + 1 : 0;
      if (oTip.bDown && aSeen[static_cast<size_t>(oTip.nStroke)] > 1)
        nLongestGap = std::max(nLongestGap, nMissed);
      nLarge += oSeen.eWhat == eSeenLarge;
      if (oSeen.eWhat != eSeenPen) continue;
      nGhosts += !oTip.bDown;
      if (!oTip.bDown) continue;
      ++aSeen[static_cast<size_t>(oTip.nStroke)];
      const ClPoint o = oPad.Optics().PictureToSensor(MmToPixel(oTip.dXMm), MmToPixel(oTip.dYMm));
      dSum += (o.dX - oSeen.dX) * (o.dX - oSeen.dX) + (o.dY - oSeen.dY) * (o.dY - oSeen.dY);
      dCount += 1.0;
    }
    dDistance = 0.25 * std::sqrt(dSum / dCount);
  }

  std::vector<int> aSeen;  // frames by stroke
  int nGhosts = 0;         // pens that were not there
  int nLarge = 0;
  int nLongestGap = 0;     // frames without a pen in a row in the midst of a stroke
  double dDistance = 0.0;  // root mean square, in pixels of the frame
};

/// Every second seed is seen in the half readout.
int ModeOf(int nSeed) {
  return nSeed % 2 ? 6 : 38;
}

TEST(PenScenes, EveryStrokeOfASignatureIsSeenWhereItIsInBothReadouts) {
  for (int nSeed = 1; nSeed <= Seeds(); ++nSeed) {
    const ClTrace o(Seeded("signature", nSeed), ModeOf(nSeed));
    EXPECT_GE(o.aSeen.size(), 3u) << nSeed;
    EXPECT_THAT(o.aSeen, testing::Each(testing::Ge(1))) << nSeed;
    EXPECT_GT(std::accumulate(o.aSeen.begin(), o.aSeen.end(), 0), 80) << nSeed;
    EXPECT_EQ(o.nGhosts + o.nLarge, 0) << nSeed;
    // Three would end the stroke for the host, and of a slow tip it sees the part that is ahead.
    EXPECT_LE(o.nLongestGap, 2) << nSeed;
    EXPECT_LT(o.dDistance, 1.5) << nSeed;
  }
}

TEST(PenScenes, ATapIsSeenOnceAndAPenThatRestsIsNotSeenAnyMore) {
  EXPECT_THAT(ClTrace("dot", 6).aSeen, testing::ElementsAre(1));
  const ClTrace oRests(
      R"({"scanners": [{"dirt": [{"x": 20, "y": 15, "width": 4, "strength": 1}], "fingers": [{"x": 40, "y": 50}],
          "pen": {"strokes": [{"at": 0.5, "line": "straight", "points": [[10, 15], [30, 15, 0.5], [60, 15]]}]}}]})",
      6);
  // 50 mm at 60 mm/s; what lies there still is no pen, and hides it for a moment only.
  EXPECT_THAT(oRests.aSeen, testing::ElementsAre(testing::AllOf(testing::Gt(40), testing::Le(51))));
  EXPECT_GE(oRests.nLongestGap, 25);
  EXPECT_EQ(oRests.nGhosts + oRests.nLarge, 0);
}

/// What the host sees of a large object: frames, and in how many of them most of the last nine steps of its middle
/// went to one side.
struct ClSweep {
  ClSweep(const std::string& sScene, int nMode, double dSeconds) {
    ClPad oPad(sScene, nMode);
    std::vector<double> aSteps;
    for (double dBefore = 0.0; oPad.Seconds() < dSeconds;) {
      const ClSeen o = oPad.Next();
      nPens += o.eWhat == eSeenPen;
      if (o.eWhat != eSeenLarge) continue;
      if (nFrames++ > 0) aSteps.push_back(o.dMiddle - dBefore);
      dBefore = o.dMiddle;
      if (aSteps.size() < 9) continue;
      nToRight += std::count_if(aSteps.end() - 9, aSteps.end(), [](double d) { return d > 5.0; }) > 5;
      nToLeft += std::count_if(aSteps.end() - 9, aSteps.end(), [](double d) { return d <= -6.0; }) > 5;
    }
  }

  int nFrames = 0, nPens = 0, nToRight = 0, nToLeft = 0;
};

TEST(PenScenes, AFingerThatIsSweptGoesItsWayAndAHandThatIsLaidDownNeither) {
  for (int nSeed = 1; nSeed <= Seeds(); ++nSeed) {
    const ClSweep oRight(Seeded("swipe-right", nSeed), ModeOf(nSeed), 1.3);
    EXPECT_TRUE(oRight.nToRight > 0 && oRight.nToLeft == 0) << nSeed;
    const ClSweep oLeft(Seeded("swipe-left", nSeed), ModeOf(nSeed), 1.3);
    EXPECT_TRUE(oLeft.nToLeft > 0 && oLeft.nToRight == 0) << nSeed;
    const ClSweep oHand(Seeded("resting-hand", nSeed), ModeOf(nSeed), 1.3);
    EXPECT_GE(oHand.nFrames, 1) << nSeed;
    EXPECT_EQ(oHand.nToLeft + oHand.nToRight, 0) << nSeed;
    EXPECT_EQ(oRight.nPens + oLeft.nPens + oHand.nPens, 0) << nSeed;
  }
}

TEST(PenScenes, ASweptPalmIsALargeObject) {
  const ClSweep o(
      R"({"scanners": [{"fingers": [{"print": {"pattern": "arch", "width": 40, "height": 30}, "x": 5, "y": 25,
          "touch": 0.3, "lift": 0.8, "touchSeconds": 0.05, "slide": {"speed": 150}}]}]})",
      6, 1.0);
  EXPECT_GE(o.nFrames, 20);
  EXPECT_EQ(o.nPens, 0);
}

TEST(PenPath, StrokesFollowTheirTimesSpeedsAndPauses) {
  // 30 mm at 60 mm/s, a rest of 0.25 s, 15 mm; then what comes too early, a tap, and what says nothing of its time.
  const ClPenPath oPath({{1.0, 0.2, 60.0, false, {{10, 10, 0}, {40, 10, 0.25}, {40, 25, 0}}},
                         {1.5, 0.2, 30.0, false, {{50, 10, 0}, {50, 13, 0}}},
                         {-1.0, 0.3, 60.0, true, {{60, 10, 0}}}});
  const std::vector<ClPenStroke>& aStrokes = oPath.Strokes();
  ASSERT_EQ(aStrokes.size(), 3u);
  EXPECT_DOUBLE_EQ(aStrokes[0].dEnd, 2.0);
  EXPECT_DOUBLE_EQ(aStrokes[1].dBegin, 2.0) << "a pen draws one stroke at a time";
  EXPECT_DOUBLE_EQ(aStrokes[1].dEnd, 2.1);
  EXPECT_DOUBLE_EQ(aStrokes[2].dBegin, 2.4);
  const auto Expect = [&](double dSeconds, int nStroke, double dX, double dY) {
    const ClPenTip o = oPath.At(dSeconds);
    EXPECT_EQ(o.bDown, nStroke >= 0) << dSeconds;
    EXPECT_EQ(o.nStroke, nStroke) << dSeconds;
    EXPECT_NEAR(o.dXMm, dX, 0.001) << dSeconds;
    EXPECT_NEAR(o.dYMm, dY, 0.001) << dSeconds;
  };
  Expect(0.0, -1, 10, 10);
  Expect(1.0, 0, 10, 10);
  Expect(1.25, 0, 25, 10);
  Expect(1.6, 0, 40, 10);
  Expect(1.999, 0, 40, 24.94);
  Expect(2.05, 1, 50, 11.5);
  Expect(2.1, -1, 50, 13);
  Expect(2.4, 2, 60, 10);
  Expect(1e9, -1, 60, 10);
}

}  // namespace
}  // namespace Simulator
