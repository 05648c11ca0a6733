// Generated fingers against what a judge of fingerprints sees in them: minutiae, ridges, and whose they are.
#include <gmock/gmock.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "FingerDistance.h"
#include "Seeds.h"
#include "Skeleton.h"
#include "scene/FingerContent.h"
#include "scene/Random.h"
#include "scene/RidgeFlow.h"

namespace Simulator {
namespace {

constexpr const char* caszPatterns[cnPatterns] = {"left-loop", "right-loop",  "whorl",
                                                  "arch",      "tented-arch", "double-loop"};

ClFingerDescription Finger(int nPattern, uint64_t nSeed) {
  ClFingerDescription o;
  o.oPrint.ePattern = static_cast<EPattern>(nPattern);
  o.oPrint.nSeed = nSeed;
  return o;
}

ClPlatenMap Drawn(const ClFingerContent& oFinger) {
  ClPlatenMap oMap;
  oMap.Clear();
  oFinger.Draw(0.0, oMap);
  return oMap;
}

/// How many points of the first list have one of the second list within so many pixels and half a right
/// angle; and of how many of these the kinds agree.
template <typename TFirst, typename TSecond>
std::pair<double, double> Agreement(const TFirst& aFirst, const TSecond& aSecond) {
  int nMet = 0, nAlike = 0;
  for (const auto& o : aFirst) {
    double dNearest = 9.0;
    bool bAlike = false;
    for (const auto& oOther : aSecond) {
      const double dAway = std::hypot(o.dX - oOther.dX, o.dY - oOther.dY);
      if (dAway >= dNearest || Between(o.dDirection, oOther.dDirection) > 0.25 * Portable::cdPi) continue;
      dNearest = dAway;
      bAlike = o.bEnding == oOther.bEnding;
    }
    nMet += dNearest < 9.0;
    nAlike += bAlike;
  }
  return {nMet / std::max(1.0, static_cast<double>(aFirst.size())),
          nAlike / std::max(1.0, static_cast<double>(nMet))};
}

TEST(PrintTruth, TheMinutiaeThatItListsAreThoseThatThinnedRidgesShow) {
  double dListed = 0.0, dFound = 0.0, dAlike = 0.0;
  int nFingers = 0;
  for (int nPattern = 0; nPattern < cnPatterns; ++nPattern) {
    ClFingerDescription oFinger = Finger(nPattern, 50u + static_cast<unsigned>(nPattern));
    oFinger.oPrint.dPores = oFinger.dDryness = 0.0;
    oFinger.oPrint.nCreases = 0;
    oFinger.dAngle = -12.0;
    oFinger.oStretch = {0.6, -0.5, 7.0};
    const ClFingerContent oContent(oFinger);
    const ClPlatenMap oMap = Drawn(oContent);
    const std::vector<ClFoundMinutia> aFound = ClSkeleton(oMap).Minutiae();
    std::vector<ClMinutia> aTruth;
    oContent.AddMinutiae(0.0, aTruth);
    std::vector<ClFoundMinutia> aAll, aListed;
    for (const ClMinutia& o : aTruth) {
      if (o.ePoint != ePointEnding && o.ePoint != ePointBifurcation) continue;
      aAll.push_back({o.ePoint == ePointEnding, o.dX, o.dY, o.dDirection});
      if (o.bDown && ClSkeleton::Inside(oMap.oCover, o.dX, o.dY)) aListed.push_back(aAll.back());
    }
    const auto oListed = Agreement(aListed, aFound), oFound = Agreement(aFound, aAll);
    if (std::getenv("KELVARIN_TEST_SEEDS"))
      std::printf("truth %s %zu %zu %.2f %.2f %.2f\n", caszPatterns[nPattern], aListed.size(), aFound.size(),
                  oListed.first, oFound.first, oListed.second);
    dListed += oListed.first;
    dFound += oFound.first;
    dAlike += oListed.second;
    ++nFingers;
    EXPECT_GE(aListed.size(), 15u) << nPattern;
    EXPECT_LE(aListed.size(), 75u) << nPattern;
  }
  EXPECT_GE(dListed / nFingers, 0.8);
  EXPECT_GE(dFound / nFingers, 0.8);
  EXPECT_GE(dAlike / nFingers, 0.78);
}

/// The direction of what a picture shows within 9 pixels of a position, from its gradients; and how clear
/// it is.
std::pair<double, double> GradientDirection(const TpPlane<uint8_t>& o, int nX, int nY) {
  double dAlike = 0.0, dCross = 0.0, dAll = 0.0;
  for (int y = nY - 9; y <= nY + 9; ++y) {
    for (int x = nX - 9; x <= nX + 9; ++x) {
      const double dRight = o.At(x + 1, y) - o.At(x - 1, y), dUp = o.At(x, y - 1) - o.At(x, y + 1);
      dAlike += dRight * dRight - dUp * dUp;
      dCross += 2.0 * dRight * dUp;
      dAll += dRight * dRight + dUp * dUp;
    }
  }
  return {0.5 * std::atan2(dCross, dAlike) + 0.5 * Portable::cdPi, std::hypot(dAlike, dCross) / (dAll + 1.0)};
}

/// How many ridges begin on a line of 2 dReach pixels across a position.
int RidgesAcross(const TpPlane<uint8_t>& o, double dX, double dY, double dNormal, double dReach) {
  int nRidges = 0;
  bool bBefore = true;
  for (double d = -dReach; d < dReach; d += 0.5) {
    const bool bRidge = o.At(static_cast<int>(std::lround(dX + d * std::cos(dNormal))),
                             static_cast<int>(std::lround(dY - d * std::sin(dNormal)))) >= 128;
    nRidges += bRidge && !bBefore;
    bBefore = bRidge;
  }
  return nRidges;
}

TEST(PrintTruth, RidgesRunAsThePictureShowsThemAndAsFarApart) {
  ClFingerDescription oFinger = Finger(ePatternDoubleLoop, 4);
  oFinger.oPrint.dPores = oFinger.dDryness = 0.0;
  oFinger.oPrint.nCreases = 0;
  oFinger.dAngle = 25.0;
  const ClFingerContent oContent(oFinger);
  const ClPlatenMap oMap = Drawn(oContent);
  TpPlane<ClRidgeHere> oRidges(200, 200);
  oContent.AddRidges(0.0, oRidges);
  int nSquares = 0, nOff = 0;
  double dListed = 0.0, dCounted = 0.0;
  for (int y = 5; y < 195; ++y) {
    for (int x = 5; x < 195; ++x) {
      const ClRidgeHere& o = oRidges.At(x, y);
      const double dX = x * 8 + 3.5, dY = y * 8 + 3.5;
      if (o.fPeriod == 0.0f || !ClSkeleton::Inside(oMap.oCover, dX, dY)) continue;
      const auto oSeen = GradientDirection(oMap.oContact, x * 8 + 4, y * 8 + 4);
      if (oSeen.second < 0.6) continue;
      ++nSquares;
      nOff += Between(2.0 * oSeen.first, 2.0 * o.fDirection) > 0.42;
      dListed += 50.0 / o.fPeriod;
      dCounted += RidgesAcross(oMap.oContact, dX, dY, o.fDirection + 0.5 * Portable::cdPi, 25.0);
    }
  }
  EXPECT_GT(nSquares, 1000);
  EXPECT_LT(nOff, nSquares / 20);
  EXPECT_NEAR(dCounted / dListed, 1.0, 0.05);
}

/// A copy of the finger, laid down once more.
ClFingerDescription LaidAgain(ClFingerDescription o, unsigned nTime) {
  ClRandom oRandom(Mix(o.oPrint.nSeed, 77u + nTime));
  o.dXMm += oRandom.Range(-6.0, 6.0);
  o.dYMm += oRandom.Range(-6.0, 6.0);
  o.dAngle = oRandom.Range(-18.0, 18.0);
  o.dPressure = oRandom.Range(0.45, 0.8);
  o.dDryness = oRandom.Range(0.0, 0.15);
  o.oStretch = {oRandom.Range(-0.4, 0.4), oRandom.Range(-0.4, 0.4), oRandom.Range(-4.0, 4.0)};
  return o;
}

// KELVARIN_TEST_SEEDS=16 prints the rows from which scripts/finger-distances makes its table.
TEST(GeneratedFingers, NoTwoAreNearerThanTheSameFingerLaidDownTwice) {
  const unsigned nSeeds = static_cast<unsigned>(Seeds()), nTimes = nSeeds > 2 ? 3 : 2;
  std::vector<std::vector<ClFingerCapture>> aFingers;
  std::vector<int> aPatterns;
  for (int nPattern = 0; nPattern < cnPatterns; ++nPattern) {
    for (unsigned nSeed = 1; nSeed <= nSeeds; ++nSeed) {
      aFingers.emplace_back();
      aPatterns.push_back(nPattern);
      for (unsigned nTime = 0; nTime < nTimes; ++nTime)
        aFingers.back().emplace_back(Drawn(ClFingerContent(LaidAgain(Finger(nPattern, nSeed), nTime))));
    }
  }
  double dFarthestSame = 0.0, dNearestOther = 1.0;
  const auto Note = [&](const char* szKind, int nPattern, double d, double& dExtreme, bool bMost) {
    if (std::getenv("KELVARIN_TEST_SEEDS")) std::printf("%s %s %.4f\n", szKind, caszPatterns[nPattern], d);
    dExtreme = bMost ? std::max(dExtreme, d) : std::min(dExtreme, d);
  };
  for (size_t i = 0; i < aFingers.size(); ++i) {
    for (unsigned a = 0; a < nTimes; ++a)
      for (unsigned b = a + 1; b < nTimes; ++b)
        Note("same", aPatterns[i], aFingers[i][a].DistanceTo(aFingers[i][b]), dFarthestSame, true);
    for (size_t k = i + 1; k < aFingers.size(); ++k)
      Note(aPatterns[i] == aPatterns[k] ? "alike" : "other", aPatterns[i],
           aFingers[i][0].DistanceTo(aFingers[k][1]), dNearestOther, false);
  }
  EXPECT_LT(dFarthestSame, dNearestOther);
  EXPECT_LT(dFarthestSame, 0.5);
}

TEST(GeneratedFingers, ASeedWithAnotherPatternIsAnotherFinger) {
  // These two flow alike.
  const ClFingerCapture oWhorl(Drawn(ClFingerContent(Finger(ePatternWhorl, 6))));
  const ClFingerCapture oDouble(Drawn(ClFingerContent(Finger(ePatternDoubleLoop, 6))));
  EXPECT_GT(oWhorl.DistanceTo(oDouble), 0.5);
}

TEST(GeneratedFingers, PatternsAreDrawnAsOftenAsPopulationsShowThem) {
  int anCount[cnPatterns] = {};
  for (uint64_t nSeed = 0; nSeed < 4000; ++nSeed) {
    ClPrintDescription o;
    o.ePattern = ePatternAny;
    o.nSeed = nSeed;
    ++anCount[PatternOf(o)];
  }
  EXPECT_NEAR(anCount[ePatternLeftLoop], 1352, 100);
  EXPECT_NEAR(anCount[ePatternRightLoop], 1268, 100);
  EXPECT_NEAR(anCount[ePatternWhorl] + anCount[ePatternDoubleLoop], 1116, 100);
  EXPECT_NEAR(anCount[ePatternArch], 148, 45);
  EXPECT_NEAR(anCount[ePatternTentedArch], 116, 40);
}

/// What the ridges of a finger measure: the mean and the spread of their period.
std::pair<double, double> PeriodsOf(const ClFingerDescription& oFinger) {
  TpPlane<ClRidgeHere> oRidges(200, 200);
  ClFingerContent(oFinger).AddRidges(0.0, oRidges);
  double dSum = 0.0, dSquares = 0.0, dCount = 0.0;
  for (size_t i = 0; i < oRidges.Count(); ++i) {
    const double d = oRidges.Data()[i].fPeriod;
    if (d == 0.0) continue;
    dSum += d, dSquares += d * d, ++dCount;
  }
  const double dMean = dSum / dCount;
  return {dMean, std::sqrt(dSquares / dCount - dMean * dMean)};
}

TEST(GeneratedFingers, RidgesLieAsFarApartAsTheSceneSaysAndNotEverywhereAlike) {
  ClFingerDescription oFinger = Finger(ePatternRightLoop, 5);
  oFinger.oPrint.dRidgePeriodMm = 0.5;
  const auto oWide = PeriodsOf(oFinger);
  EXPECT_NEAR(oWide.first * cdPixelMm, 0.5, 0.05);
  EXPECT_GT(oWide.second, 0.7);
  EXPECT_LT(oWide.second, 1.7);
  oFinger.oPrint.dRidgePeriodMm = 0.0;
  oFinger.oPrint.eSkin = eSkinChild;
  EXPECT_NEAR(PeriodsOf(oFinger).first * cdPixelMm, 0.345, 0.05);
}

ptrdiff_t Contact(const ClFingerDescription& oFinger) {
  const ClPlatenMap oMap = Drawn(ClFingerContent(oFinger));
  return std::count_if(oMap.oContact.Data(), oMap.oContact.Data() + oMap.oContact.Count(),
                       [](uint8_t n) { return n >= 128; });
}

TEST(GeneratedFingers, SweatFillsValleysAndCreasesScarsAndCutsBreakRidges) {
  const ClFingerDescription oPlain = Finger(ePatternWhorl, 3);
  ClFingerDescription oSweaty = oPlain, oCreased = oPlain, oScarred = oPlain, oCut = oPlain, oOld = oPlain;
  oSweaty.dSweat = 0.8;
  oCreased.oPrint.nCreases = 30;
  oScarred.oPrint.nScars = 3;
  oCut.oPrint.nCuts = 3;
  oOld.oPrint.eSkin = eSkinElderly;
  const ptrdiff_t nPlain = Contact(oPlain);
  EXPECT_GT(Contact(oSweaty), nPlain * 11 / 10);
  for (const ClFingerDescription* p : {&oCreased, &oScarred, &oCut, &oOld})
    EXPECT_LT(Contact(*p), nPlain * 99 / 100);
}

TEST(GeneratedFingers, StretchLeavesTheMiddleWhereItIsAndTakesTheEdgeAlong) {
  ClFingerDescription oFinger = Finger(ePatternWhorl, 3);
  oFinger.dAngle = 30.0;
  std::vector<ClMinutia> aBefore, aAfter;
  ClFingerContent(oFinger).AddMinutiae(0.0, aBefore);
  oFinger.oStretch = {1.0, 0.0, 0.0};
  ClFingerContent(oFinger).AddMinutiae(0.0, aAfter);
  ASSERT_EQ(aBefore.size(), aAfter.size());
  int nStay = 0, nGo = 0;
  for (size_t i = 0; i < aBefore.size(); ++i) {
    const double dMoved = aAfter[i].dX - aBefore[i].dX,
                 dFromMiddle = std::hypot(aBefore[i].dX - 799.5, aBefore[i].dY - 799.5);
    EXPECT_NEAR(aAfter[i].dY, aBefore[i].dY, 0.01);
    if (dFromMiddle < 40.0) {
      EXPECT_NEAR(dMoved, 0.0, 0.5);
      ++nStay;
    } else if (dFromMiddle > 190.0) {
      EXPECT_GT(dMoved, 0.6 / cdPixelMm);
      ++nGo;
    }
  }
  EXPECT_GT(nStay, 0);
  EXPECT_GT(nGo, 0);
}

}  // namespace
}  // namespace Simulator
