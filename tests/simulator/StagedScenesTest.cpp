// The scenes in which something happens, as a host that watches them measures motion, brightness and dirt.
#include <gmock/gmock.h>

#include <functional>
#include <numeric>

#include "Frames.h"
#include "scene/PlatenScene.h"
#include "scene/SceneReader.h"

namespace Simulator {
namespace {

constexpr double cdFrame = 1.0 / 15.0;
constexpr int cnWidth = 960, cnHeight = 1360;
/// What a host takes for motion, and for an empty platen.
constexpr double cdMotionLimit = 99999999.0;
constexpr double cdEmptyLimit = 24.0;

/// A scene seen in preview frames, frame after frame.
class ClPreview {
 public:
  explicit ClPreview(const std::string& sScene, double dNoise = 1.0)
      : m_oScanner(FindScene(sScene).aScanners[0]),
        m_oSensor(Loud(m_oScanner, dNoise), FindScene(sScene).nSeed) {}

  Plane Frame(int nFrame) {
    return Difference(
        Sequence(m_oSensor, Settings(m_oSensor, 35, 1.0), static_cast<uint64_t>(nFrame), nFrame * cdFrame));
  }
  Plane FullFrame(int nFrame) {
    return Difference(Sequence(m_oSensor, Settings(m_oSensor, 34, 2.0), 5000, nFrame * cdFrame));
  }
  ClPlatenFacts Facts(int nFrame) const { return m_oSensor.Facts(nFrame * cdFrame); }

 private:
  static ClScannerDescription Loud(ClScannerDescription o, double dNoise) {
    o.dNoise = dNoise;
    return o;
  }

  ClScannerDescription m_oScanner;
  ClSensor m_oSensor;
};

/// The sum of squared differences on the scale of a calibrated preview: 800 x 800 pixels whose ridges are at 224 where
/// the raw frame has them at 154.
double Motion(const Plane& aBefore, const Plane& aNow) {
  double dSum = 0.0;
  for (size_t i = 0; i < aNow.size(); ++i) dSum += (aNow[i] - aBefore[i]) * (aNow[i] - aBefore[i]);
  return dSum * (800.0 * 800.0) / (cnWidth * cnHeight) * (224.0 / 154.0) * (224.0 / 154.0);
}

/// Mean of the brightest tenth of the 70 mm in the middle.
double Brightness(const Plane& a) {
  Plane aMiddle;
  for (int y = 150; y < 1210; ++y)
    for (int x = 115; x < 845; ++x) aMiddle.push_back(a[static_cast<size_t>(y * cnWidth + x)]);
  const auto itEnd = aMiddle.begin() + static_cast<ptrdiff_t>(aMiddle.size() / 10);
  std::nth_element(aMiddle.begin(), itEnd, aMiddle.end(), std::greater<int>());
  return std::accumulate(aMiddle.begin(), itEnd, 0.0) / static_cast<double>(itEnd - aMiddle.begin());
}

/// The dirt that a host finds on sixteen frames of an empty platen: 0 to 100, the mean over 7 by 7 blocks.
int Dirt(const std::string& sScene) {
  ClPreview oPreview(sScene);
  Plane aSum(cnWidth * cnHeight);
  for (int n = 0; n < 16; ++n) {
    const Plane a = oPreview.Frame(2 * n);
    EXPECT_LE(Brightness(a), cdEmptyLimit) << sScene;
    for (size_t i = 0; i < a.size(); ++i) aSum[i] += a[i];
  }
  const Plane aGround = Smooth(Smooth(aSum, cnWidth, 11), cnWidth, 11);
  int nDirt = 0;
  for (int j = 1; j <= 7; ++j) {
    for (int i = 1; i <= 7; ++i) {
      int64_t nSpecks = 0, nAll = 0;
      for (int y = cnHeight * j / 10; y < cnHeight * (j + 2) / 10; ++y) {
        for (int x = cnWidth * i / 10; x < cnWidth * (i + 2) / 10; ++x, ++nAll) {
          const int nStep =
              aSum[static_cast<size_t>(y * cnWidth + x)] - aGround[static_cast<size_t>(y * cnWidth + x)];
          nSpecks += nStep * nStep >= 513;
        }
      }
      nDirt += static_cast<int>(std::clamp<int64_t>(nSpecks * 15000 / nAll - 2, 0, 100));
    }
  }
  return nDirt / 49;
}

/// The part of what is lit in the preview that a capture shows at three quarters of its light or less; windows of some
/// seven millimetres.
double DarkerPart(const Plane& aPreview, const Plane& aFull) {
  Plane aMerged(aPreview.size());
  for (int y = 0; y < cnHeight; ++y)
    for (int x = 0; x < cnWidth; ++x) {
      const size_t n = static_cast<size_t>(4 * y * cnWidth + 2 * x);
      aMerged[static_cast<size_t>(y * cnWidth + x)] =
          (aFull[n] + aFull[n + 1] + aFull[n + 2 * cnWidth] + aFull[n + 2 * cnWidth + 1]) / 4;
    }
  const Plane aBefore = Smooth(aPreview, cnWidth, 101), aNow = Smooth(aMerged, cnWidth, 101);
  double dLit = 0.0, dDarker = 0.0;
  for (int y = 0; y < cnHeight * 9 / 10; ++y) {
    for (int x = cnWidth / 10; x < cnWidth * 9 / 10; ++x) {
      const size_t n = static_cast<size_t>(y * cnWidth + x);
      if (aBefore[n] <= 16) continue;
      dLit += 1.0;
      dDarker += aNow[n] * 100 / aBefore[n] <= 74;
    }
  }
  return dDarker / dLit;
}

TEST(StagedScenes, ASettlingHandMovesVisiblyUntilItLiesStillAndComesBack) {
  for (const char* szSeed : {"", ":7"}) {
    ClPreview oPreview(std::string("settling-slap") + szSeed);
    int nFrame = 5, nMoving = 0;
    Plane aBefore = oPreview.Frame(nFrame);
    EXPECT_LE(Brightness(aBefore), cdEmptyLimit) << szSeed;
    for (int nStill = 0; nStill < 10 && nFrame < 60; ++nFrame) {
      const ClPlatenFacts oWas = oPreview.Facts(nFrame), oIs = oPreview.Facts(nFrame + 1);
      const Plane aNow = oPreview.Frame(nFrame + 1);
      if (oWas.nMoving == 4 && oIs.nMoving == 4) {
        EXPECT_GT(Motion(aBefore, aNow), 1.3 * cdMotionLimit) << szSeed << " frame " << nFrame;
        ++nMoving;
      }
      if (oWas.nMoving == 0 && oIs.nMoving == 0) {
        EXPECT_LT(Motion(aBefore, aNow), 0.05 * cdMotionLimit) << szSeed << " frame " << nFrame;
        nStill += oIs.nFingers == 4;
      }
      aBefore = aNow;
    }
    EXPECT_GT(Brightness(aBefore), 4 * cdEmptyLimit) << szSeed;
    EXPECT_GE(nMoving, 5) << szSeed;
    // What follows is told by the facts alone: it lies for two seconds, is away for one, and is back.
    int nLies = 0, nAway = 0;
    for (; oPreview.Facts(nFrame).nFingers == 4 && nFrame < 200; ++nFrame) ++nLies;
    for (; oPreview.Facts(nFrame).nMoving > 0 && nFrame < 200; ++nFrame) {
    }
    for (; oPreview.Facts(nFrame).nFingers == 0 && nFrame < 200; ++nFrame) ++nAway;
    EXPECT_GE(nLies + 10, 30) << szSeed;
    EXPECT_GE(nAway, 15) << szSeed;
    EXPECT_LT(nFrame, 100) << szSeed;
  }
}

TEST(StagedScenes, ASlidingHandNeverLooksStill) {
  for (const char* szScene : {"sliding-slap", "sliding-slap:2"}) {
    // Once round the circle.
    ClPreview oPreview(szScene);
    for (int n = 11; n < 90; n += 6)
      EXPECT_GT(Motion(oPreview.Frame(n), oPreview.Frame(n + 1)), 1.3 * cdMotionLimit)
          << szScene << " frame " << n;
  }
}

TEST(StagedScenes, ACaptureShowsTheLightOfThePreviewUnlessTheHandLeavesEarly) {
  ClPreview oSettling("settling-slap:3");
  EXPECT_LT(DarkerPart(oSettling.Frame(30), oSettling.FullFrame(31)), 0.02);
  // Held to the shape of the scene for many seeds: two frames at rest, and next to nothing in the third.
  const ClPlatenScene oKeepsPrints[] = {ClPlatenScene(FindScene("slap-right").aScanners[0]),
                                        ClPlatenScene(FindScene("slap-left").aScanners[0])};
  for (int nSeed = 1; nSeed <= 200; ++nSeed) {
    const std::string sScene = "early-lift:" + std::to_string(nSeed);
    const ClPlatenScene oScene(FindScene(sScene).aScanners[0]);
    std::vector<int> aStill;
    for (int n = 0; n < 25; ++n) {
      ClPlatenFacts oFacts;
      oScene.Count(n * cdFrame, oFacts);
      if (oFacts.nFingers == 4 && oFacts.nMoving == 0) aStill.push_back(n);
    }
    ASSERT_EQ(aStill.size(), 2u) << sScene;
    ASSERT_EQ(aStill[1], aStill[0] + 1) << sScene;
    if (nSeed > 3) continue;
    ClPreview oEarly(sScene);
    EXPECT_LT(Motion(oEarly.Frame(aStill[0]), oEarly.Frame(aStill[1])), 0.05 * cdMotionLimit) << sScene;
    EXPECT_GT(DarkerPart(oEarly.Frame(aStill[1]), oEarly.FullFrame(aStill[1] + 1)), 0.5) << sScene;
  }
}

TEST(StagedScenes, DirtRisesWithTheDirtyAreaAndACleanPlatenHasNone) {
  EXPECT_EQ(Dirt("empty"), 0);
  EXPECT_EQ(Dirt("empty:2"), 0);
  int nBefore = 0;
  for (const int nSpecks : {3, 12, 48}) {
    std::string sDirt;
    for (int n = 0; n < nSpecks; ++n)
      sDirt += std::string(n == 0 ? "" : ",") + R"({"width": 0.4, "x": )" + std::to_string(14 + 7 * (n % 8)) +
               R"(, "y": )" + std::to_string(14 + 9 * (n / 8)) + "}";
    const int nDirt = Dirt(R"({"scanners": [{"dirt": [)" + sDirt + "]}]}");
    EXPECT_GT(nDirt, nBefore) << nSpecks;
    nBefore = nDirt;
  }
  for (const char* szScene : {"dirty", "dirty:2"}) {
    EXPECT_GT(Dirt(szScene), 10) << szScene;
    EXPECT_LT(Dirt(szScene), 80) << szScene;
  }
}

TEST(StagedScenes, RoomLightFollowsItsListFromPlaneToPlane) {
  // Dark planes of a sequence that begins at 1 s, one of each in every 30th of a second.
  const auto Levels = [](const char* szAmbient) {
    ClScannerDescription o =
        FindScene(std::string(R"({"scanners": [{"noise": 0, "ambient": )") + szAmbient + "}]}").aScanners[0];
    ClSensor oSensor(o, 1);
    ClSensorSettings oSettings = Settings(oSensor, 35, 1.0);
    oSettings.aMasks = {0, 0, 0};
    const std::vector<uint8_t> a = Sequence(oSensor, oSettings, 1, 1.0);
    std::vector<double> aLevels;
    for (size_t n = 0; n < 3; ++n)
      aLevels.push_back(std::accumulate(a.begin() + static_cast<ptrdiff_t>(n * oSettings.PlaneBytes()),
                                        a.begin() + static_cast<ptrdiff_t>((n + 1) * oSettings.PlaneBytes()),
                                        0.0) /
                        static_cast<double>(oSettings.PlaneBytes()));
    return aLevels;
  };
  const std::vector<double> aStill = Levels("20"), aBefore = Levels(R"([{"at": 2, "level": 20}])");
  EXPECT_EQ(aStill, aBefore);
  EXPECT_EQ(aStill[0], aStill[2]);
  const std::vector<double> aRising = Levels(R"([{"at": 0, "level": 0}, {"at": 2, "level": 60}])");
  EXPECT_NEAR(aRising[0] - aStill[0], 10.0, 0.5);
  EXPECT_NEAR(aRising[2] - aRising[0], 2.0, 0.3);
  const std::vector<double> aSwitched =
      Levels(R"([{"at": 0, "level": 20}, {"at": 1.05, "level": 20}, {"at": 1.05, "level": 80}])");
  EXPECT_EQ(aSwitched[1], aStill[1]);
  EXPECT_NEAR(aSwitched[2] - aStill[2], 60.0, 2.0);
}

}  // namespace
}  // namespace Simulator
