// Tests of the kernels that follow pictures over time.
#include "KernelRows.h"

using namespace MXKernels;

TEST(SquaredDifference, EveryLevelEqualsTheReferenceForEveryTail) {
  ForEveryLevelAndTail([](size_t nCount, ClSamples& oSamples) {
    const auto aA = oSamples.Row<uint8_t>(nCount), aB = oSamples.Row<uint8_t>(nCount);
    EXPECT_EQ(SquaredDifference(aA.data(), aB.data(), nCount),
              Reference::SquaredDifference(aA.data(), aB.data(), nCount));
  });
}

TEST(SquaredDifference, TheLongestRowsDoNotWrapALane) {
  // One sample more than the 32-bit lanes of the widest vector can hold between two foldings.
  constexpr size_t cnCount = (size_t{64} << 14) + 1;
  const std::vector<uint8_t> aWhite(cnCount, 255), aBlack(cnCount, 0);
  const ClLevelGuard oGuard;
  for (const ELevel eLevel : {eLevelScalar, eLevelSse4, eLevelAvx2, eLevelAvx3}) {
    if (!SetLevel(eLevel)) continue;
    EXPECT_EQ(SquaredDifference(aWhite.data(), aBlack.data(), cnCount), uint64_t{65025} * cnCount)
        << LevelName(eLevel);
    EXPECT_EQ(SquaredDifference(aBlack.data(), aWhite.data(), cnCount), uint64_t{65025} * cnCount);
  }
}

TEST(SumsRows, EveryLevelEqualsTheReferenceForEveryTailAndGivesBackWhatItTook) {
  ForEveryLevelAndTail([](size_t nCount, ClSamples& oSamples) {
    const auto aStart = oSamples.Row<uint16_t>(nCount);
    const auto aRow = oSamples.Row<uint8_t>(nCount);
    TpGuardedRow<uint16_t> oSums(aStart), oExpected(aStart);
    AddToSumsRow(aRow.data(), oSums.Data(), nCount);
    Reference::AddToSumsRow(aRow.data(), oExpected.Data(), nCount);
    ExpectSameAndGuarded(oSums, oExpected);
    TakeFromSumsRow(aRow.data(), oSums.Data(), nCount);
    EXPECT_EQ(oSums.Row(), aStart);
    EXPECT_TRUE(oSums.GuardsIntact());
  });
}

TEST(DeviationRow, EveryLevelEqualsTheReferenceForEveryTailAndTheLimitItselfIsInside) {
  ForEveryLevelAndTail([](size_t nCount, ClSamples& oSamples) {
    const auto aIn = oSamples.Row<uint16_t>(nCount);
    auto aMean = oSamples.Row<uint16_t>(nCount);
    for (size_t i = 0; i < nCount; i += 2) aMean[i] = static_cast<uint16_t>(aIn[i] + 20 + i % 5);
    TpGuardedRow<uint8_t> oOut(nCount), oExpected(nCount);
    DeviationRow(aIn.data(), aMean.data(), oOut.Data(), nCount, 22);
    Reference::DeviationRow(aIn.data(), aMean.data(), oExpected.Data(), nCount, 22);
    ExpectSameAndGuarded(oOut, oExpected);
  });
  const uint16_t aIn[] = {100, 100, 100, 100}, aMean[] = {78, 77, 122, 123};
  uint8_t aOut[4];
  DeviationRow(aIn, aMean, aOut, 4, 22);
  EXPECT_EQ(std::vector<uint8_t>(aOut, aOut + 4), (std::vector<uint8_t>{0, 255, 0, 255}));
}

TEST(RemoveBackgroundRow, EveryLevelEqualsTheReferenceForEveryTail) {
  ForEveryLevelAndTail([](size_t nCount, ClSamples& oSamples) {
    const auto aPicture = oSamples.Row<uint8_t>(nCount), aOldest = oSamples.Row<uint8_t>(nCount);
    const auto aSums = oSamples.Row<uint16_t>(nCount);
    TpGuardedRow<uint8_t> oPicture(aPicture), oOldest(aOldest);
    TpGuardedRow<uint8_t> oExpected(aPicture), oExpectedOldest(aOldest);
    TpGuardedRow<uint16_t> oSums(aSums), oExpectedSums(aSums);
    RemoveBackgroundRow(oPicture.Data(), oOldest.Data(), oSums.Data(), nCount);
    Reference::RemoveBackgroundRow(oExpected.Data(), oExpectedOldest.Data(), oExpectedSums.Data(), nCount);
    ExpectSameAndGuarded(oPicture, oExpected);
    ExpectSameAndGuarded(oOldest, oExpectedOldest);
    ExpectSameAndGuarded(oSums, oExpectedSums);
  });
}

TEST(RemoveBackgroundRow, ABrightObjectThatStaysFadesWithinEightPictures) {
  uint8_t aHistory[8] = {};
  uint16_t nSum = 0;
  std::vector<uint8_t> aLeft;
  for (int n = 0; n < 10; ++n) {
    uint8_t nPixel = 200;
    RemoveBackgroundRow(&nPixel, &aHistory[n % 8], &nSum, 1);
    aLeft.push_back(nPixel);
  }
  EXPECT_EQ(aLeft, (std::vector<uint8_t>{200, 175, 150, 125, 100, 75, 50, 25, 0, 0}));
}
