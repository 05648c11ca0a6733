// The liveness library: what it makes of living and imitated prints, and how it answers.
#include <gtest/gtest.h>

#include <vector>

#include "KelvarinFakeFingerDetectionVT40/FDSim.h"
#include "KelvarinFakeFingerDetectionVT40/FDVT40.h"
#include "scene/PlatenScene.h"
#include "scene/Random.h"
#include "scene/SceneReader.h"

namespace Simulator {
namespace {

/// Picture and mask as a host's calibration and masking give them: ridges light on a dark ground, and dark on
/// white.
struct ClPicture {
  static constexpr unsigned nSide = cnPictureSide;
  std::vector<uint8_t> aImage, aMask;

  ClPicture(const std::string& sScene, double dSeconds, double dNoise)
      : aImage(static_cast<size_t>(nSide) * nSide), aMask(aImage.size()) {
    ClPlatenMap oMap;
    oMap.Clear();
    ClPlatenScene(FindScene(sScene).aScanners[0]).Draw(dSeconds, oMap);
    ClRandom oRandom(1);
    for (size_t i = 0; i < aImage.size(); ++i) {
      const double dLight = 5.0 + 0.17 * oMap.oCover.Data()[i] + 0.68 * oMap.oContact.Data()[i];
      aImage[i] = static_cast<uint8_t>(std::clamp(dLight + dNoise * oRandom.Gauss(), 0.0, 255.0));
      aMask[i] = static_cast<uint8_t>(255 - oMap.oContact.Data()[i]);
    }
  }
};

class Liveness : public testing::Test {
 protected:
  void SetUp() override {
    unsetenv("KELVARIN_FDSIM_FAULTS");
    FDSimReset();
    ASSERT_EQ(FD_VT40Initialize(nullptr), 0);
    ASSERT_EQ(FD_VT40CreateFakeDetectionVT40Handle(&m_hDetection), 0);
  }
  void TearDown() override {
    FDSimReset();
    while (FD_VT40Uninitialize() == 0) {
    }
  }

  double Score(const ClPicture& o) {
    double dScore = -1.0;
    EXPECT_EQ(FD_VT40GetFakeFingerDetectionScore(m_hDetection, o.nSide, o.nSide, o.aImage.data(),
                                                 o.aMask.data(), &dScore),
              0)
        << FDSimLastError();
    return dScore;
  }
  static FDSimState State() {
    FDSimState o = {};
    o.nStructSize = sizeof o;
    EXPECT_EQ(FDSimGetState(&o), 0);
    return o;
  }

  void* m_hDetection = nullptr;
};

TEST_F(Liveness, LivingPrintsScoreHighAndImitationsLow) {
  for (const double dNoise : {0.5, 3.0}) {
    for (const char* szLive : {"finger", "thumbs", "settling-slap:5"})
      EXPECT_GT(Score(ClPicture(szLive, 2.5, dNoise)), 60.0) << szLive;
    // One seed for each kind of imitation.
    for (const char* szFake : {"fake-finger:3", "fake-finger:4", "fake-finger:5"})
      EXPECT_LT(Score(ClPicture(szFake, 2.5, dNoise)), 25.0) << szFake;
    EXPECT_LT(Score(ClPicture(R"({"scanners": [{"fingers": [{"print": {"pores": 0}}]}]})", 0.0, dNoise)),
              25.0);
  }
  EXPECT_EQ(Score(ClPicture("empty", 0.0, 3.0)), 0.0);
  EXPECT_EQ(Score(ClPicture("dirty", 0.0, 3.0)), 0.0);
  EXPECT_EQ(State().nScores, 14u + 2u);
}

TEST_F(Liveness, PicturesOfAnySizeAreReadWithinTheirBounds) {
  double dScore = -1.0;
  const auto Score = [&](unsigned nWidth, unsigned nHeight, const uint8_t* pImage) {
    return FD_VT40GetFakeFingerDetectionScore(m_hDetection, nWidth, nHeight, pImage, pImage, &dScore);
  };
  const uint8_t nPixel = 0;
  EXPECT_EQ(Score(63, 64, &nPixel), -44);
  EXPECT_EQ(Score(64, 8193, &nPixel), -44);
  EXPECT_EQ(Score(64, 64, nullptr), -701);
  EXPECT_EQ(dScore, -1.0) << "a failing call leaves the score alone";
  // Under a sanitizer a read beyond a block of just this size ends the test.
  for (const auto& oSize : {std::pair<unsigned, unsigned>{64, 64}, {65, 97}, {640, 64}}) {
    const std::vector<uint8_t> aImage(static_cast<size_t>(oSize.first) * oSize.second, 200);
    EXPECT_EQ(Score(oSize.first, oSize.second, aImage.data()), 0);
    EXPECT_EQ(dScore, 0.0);
  }
}

TEST_F(Liveness, EachStepFailsOnOrderAndByTheEnvironment) {
  void* hOther = nullptr;
  FDSimFailCall("FD_VT40CreateFakeDetectionVT40Handle", 1, 1, -61);
  EXPECT_EQ(FD_VT40CreateFakeDetectionVT40Handle(&hOther), -61);
  EXPECT_EQ(hOther, nullptr);
  const std::vector<uint8_t> aImage(64 * 64, 0);
  double dScore = -1.0;
  FDSimOrderScore(42.5);
  EXPECT_EQ(FD_VT40GetFakeFingerDetectionScore(m_hDetection, 64, 64, aImage.data(), aImage.data(), &dScore),
            0);
  EXPECT_EQ(dScore, 42.5);

  setenv("KELVARIN_FDSIM_FAULTS", "FD_VT40Initialize=-101", 1);
  EXPECT_EQ(FD_VT40Initialize(nullptr), 0) << "the environment is read at rest only";
  EXPECT_EQ(FD_VT40Uninitialize(), 0);
  EXPECT_EQ(FD_VT40Uninitialize(), 0);
  EXPECT_EQ(FD_VT40Initialize(nullptr), -101);
  setenv("KELVARIN_FDSIM_FAULTS", "FD_VT40Initialize=much", 1);
  EXPECT_EQ(FD_VT40Initialize(nullptr), -44);
  unsetenv("KELVARIN_FDSIM_FAULTS");
  EXPECT_EQ(FD_VT40Initialize(nullptr), 0) << "faults go with the variable";
}

TEST_F(Liveness, ContextsLiveUntilTheyOrTheLibraryEnd) {
  void* hOther = nullptr;
  ASSERT_EQ(FD_VT40CreateFakeDetectionVT40Handle(&hOther), 0);
  EXPECT_EQ(State().nContexts, 2u);
  void* hGone = hOther;
  EXPECT_EQ(FD_VT40DestroyHandle(&hOther), 0);
  EXPECT_EQ(hOther, nullptr);
  EXPECT_EQ(FD_VT40DestroyHandle(&hGone), -43);
  long nValue = 0;
  EXPECT_EQ(FD_VT40GetPropertyLongA(m_hDetection, "nContexts", &nValue), 0);
  EXPECT_EQ(nValue, 1);
  EXPECT_EQ(FD_VT40Uninitialize(), 0);
  EXPECT_EQ(FD_VT40GetPropertyLongA(m_hDetection, "nScores", &nValue), -2);
  EXPECT_EQ(FD_VT40Initialize(nullptr), 0);
  EXPECT_EQ(FD_VT40GetPropertyLongA(m_hDetection, "nScores", &nValue), -43);
}

}  // namespace
}  // namespace Simulator
