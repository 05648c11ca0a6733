// The scenes in which hands move, by what each preview frame would see of them.
#include <gtest/gtest.h>

#include "scene/PlatenScene.h"
#include "scene/SceneReader.h"

namespace Simulator {
namespace {

/// For each of so many preview frames: '.' nothing, 'm' four fingers of which some move, 's' four that lie still.
std::string Course(const std::string& sScene, int nFrames) {
  // One that stays keeps its prints from being made anew for each seed.
  static const ClPlatenScene s_aKept[] = {ClPlatenScene(FindScene("slap-right").aScanners[0]),
                                          ClPlatenScene(FindScene("slap-left").aScanners[0])};
  const ClPlatenScene oScene(FindScene(sScene).aScanners[0]);
  std::string sCourse;
  for (int n = 0; n < nFrames; ++n) {
    ClPlatenFacts oFacts;
    oScene.Count(n / 15.0, oFacts);
    sCourse += oFacts.nFingers == 0 ? '.' : oFacts.nFingers < 4 || oFacts.nMoving > 0 ? 'm' : 's';
  }
  return sCourse;
}

/// Frames of the first stretch of a kind behind nFrom, which moves behind it.
size_t Stretch(const std::string& sCourse, char nKind, size_t& nFrom) {
  const size_t nBegin = sCourse.find(nKind, nFrom);
  nFrom = std::min(sCourse.find_first_not_of(nKind, nBegin), sCourse.size());
  return nFrom - nBegin;
}

TEST(StagedScenes, HandsSettleSlideOnOrLeaveInTheSecondFrameThatSeesThemAtRest) {
  for (int nSeed = 1; nSeed <= 50; ++nSeed) {
    const std::string sSeed = ":" + std::to_string(nSeed);
    SCOPED_TRACE(sSeed);
    const std::string sSettling = Course("settling-slap" + sSeed, 120);
    size_t nAt = 0;
    EXPECT_GE(Stretch(sSettling, 'm', nAt), 8u);
    EXPECT_GE(Stretch(sSettling, 's', nAt), 28u) << "two seconds";
    EXPECT_GE(Stretch(sSettling, '.', nAt), 14u) << "away for one";
    EXPECT_EQ(sSettling[nAt], 'm') << "and back";
    const std::string sSliding = Course("sliding-slap" + sSeed, 90);
    EXPECT_EQ(sSliding.find_last_not_of('m') + 1, sSliding.find('m')) << "never still";
    const std::string sEarly = Course("early-lift" + sSeed, 25);
    nAt = 0;
    EXPECT_EQ(Stretch(sEarly, 's', nAt), 2u);
    EXPECT_EQ(sEarly.find('s', nAt), std::string::npos);
  }
}

}  // namespace
}  // namespace Simulator
