// Tests of the kernels that follow pictures over time.
#include "KernelRows.h"

using namespace MXKernels;

TEST(DifferenceRows, EveryLevelEqualsTheReferenceForEveryTail) {
  ForEveryLevelAndTail([](size_t nCount, ClSamples& oSamples) {
    const Bytes aA = oSamples.Row<uint8_t>(nCount), aB = oSamples.Row<uint8_t>(nCount);
    const Words aSums = oSamples.Row<uint16_t>(nCount);
    EXPECT_EQ(SquaredDifference(aA.data(), aB.data(), nCount),
              Reference::SquaredDifference(aA.data(), aB.data(), nCount));
    const auto fnSum = [&](auto pfn, auto* pSums) { pfn(aA.data(), pSums, nCount); };
    EXPECT_LIKE_REFERENCE(AddToSumsRow, fnSum, aSums);
    EXPECT_LIKE_REFERENCE(TakeFromSumsRow, fnSum, aSums);
    EXPECT_LIKE_REFERENCE(
        RemoveBackgroundRow,
        [&](auto pfn, auto* pPicture, auto* pOldest, auto* pSums) { pfn(pPicture, pOldest, pSums, nCount); },
        aA, aB, aSums);
    // Every second mean lies within or just beyond the limit.
    Words aMean = oSamples.Row<uint16_t>(nCount);
    for (size_t i = 0; i < nCount; i += 2) aMean[i] = static_cast<uint16_t>(aSums[i] + 20 + i % 5);
    EXPECT_LIKE_REFERENCE(
        DeviationRow, [&](auto pfn, auto* pOut) { pfn(aSums.data(), aMean.data(), pOut, nCount, 22); },
        Bytes(nCount));
  });
}

TEST(SquaredDifference, TheLongestRowsDoNotWrapALane) {
  // One sample more than the 32-bit lanes of the widest vector can hold between two foldings.
  constexpr size_t cnCount = (size_t{64} << 14) + 1;
  const Bytes aWhite(cnCount, 255), aBlack(cnCount, 0);
  ForEveryLevel([&] {
    EXPECT_EQ(SquaredDifference(aWhite.data(), aBlack.data(), cnCount), uint64_t{65025} * cnCount);
    EXPECT_EQ(SquaredDifference(aBlack.data(), aWhite.data(), cnCount), uint64_t{65025} * cnCount);
  });
}

TEST(RemoveBackgroundRow, ABrightObjectThatStaysFadesWithinEightPictures) {
  uint8_t aHistory[8] = {};
  uint16_t nSum = 0;
  Bytes aLeft;
  for (int n = 0; n < 10; ++n) {
    uint8_t nPixel = 200;
    RemoveBackgroundRow(&nPixel, &aHistory[n % 8], &nSum, 1);
    aLeft.push_back(nPixel);
  }
  EXPECT_EQ(aLeft, (Bytes{200, 175, 150, 125, 100, 75, 50, 25, 0, 0}));
}
