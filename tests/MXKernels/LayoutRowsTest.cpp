// Tests of the kernels that move samples and of the warp.
#include "KernelRows.h"

using namespace MXKernels;

TEST(LayoutRows, EveryLevelEqualsTheReferenceForEveryTail) {
  ForEveryLevelAndTail([](size_t nCount, ClSamples& oSamples) {
    const Bytes aIn = oSamples.Row<uint8_t>(2 * nCount), aLower = oSamples.Row<uint8_t>(2 * nCount);
    const Bytes aOut(nCount);
    EXPECT_LIKE_REFERENCE(
        ReverseRow, [&](auto pfn, auto* pOut) { pfn(aIn.data(), pOut, nCount); }, aOut);
    EXPECT_LIKE_REFERENCE(
        SplitPairsRow, [&](auto pfn, auto* pEven, auto* pOdd) { pfn(aIn.data(), pEven, pOdd, nCount); }, aOut,
        aOut);
    EXPECT_LIKE_REFERENCE(
        ScaleUpRow, [&](auto pfn, auto* pOut) { pfn(aIn.data(), pOut, nCount); }, Bytes(2 * nCount));
    EXPECT_LIKE_REFERENCE(
        ScaleDownRow,
        [&](auto pfn, auto* pMean, auto* pMax, auto* pMin) {
          pfn(aIn.data(), aLower.data(), nCount, pMean, pMax, pMin);
        },
        aOut, aOut, aOut);
  });
}

TEST(WarpRow, EveryLevelEqualsTheReferenceForEveryTail) {
  constexpr size_t cnRowBytes = 61, cnRows = 40, cnPhases = 32;
  ForEveryLevelAndTail([](size_t nCount, ClSamples& oSamples) {
    const Bytes aSource = oSamples.Row<uint8_t>(cnRowBytes * cnRows);
    std::vector<int16_t> aWeights(16 * cnPhases);
    // Entries from harmless ones to the most extreme that 16 bits hold.
    for (size_t i = 0; i < aWeights.size(); ++i) {
      const unsigned nSpan = i < 16 ? 32767 : 2000;
      aWeights[i] =
          static_cast<int16_t>(static_cast<int>(oSamples.Number(2 * nSpan)) - static_cast<int>(nSpan));
    }
    std::vector<WarpMapEntry> aMap(nCount);
    for (WarpMapEntry& oEntry : aMap) {
      const unsigned nX = oSamples.Number(cnRowBytes - 4), nY = oSamples.Number(cnRows - 4);
      oEntry.m_nOffset = oSamples.Number(9) == 0 ? -1 : static_cast<int32_t>(nY * cnRowBytes + nX);
      oEntry.m_nPhase = oSamples.Number(cnPhases - 1);
    }
    const auto pWeights = reinterpret_cast<const int16_t(*)[4][4]>(aWeights.data());
    EXPECT_LIKE_REFERENCE(
        WarpRow,
        [&](auto pfn, auto* pOut) {
          pfn(aMap.data(), nCount, aSource.data(), cnRowBytes, pWeights, 17, pOut);
        },
        Bytes(nCount));
  });
}

TEST(WarpRow, RoundsUpByAllButOneThousandTwentyFourthAndClips) {
  const uint8_t aSource[16] = {0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 255, 255, 255, 255, 255, 255};
  int16_t aWeights[5][4][4] = {};
  aWeights[0][1][1] = 1;                                    // (1023 + 1) >> 10 = 1
  aWeights[1][1][1] = 1025;                                 // (1023 + 1025) >> 10 = 2
  aWeights[2][3][3] = -1024;                                // below 0
  aWeights[3][3][3] = 2000;                                 // above 255
  for (int16_t& nWeight : aWeights[4][3]) nWeight = 32767;  // the largest sum passes 16 bits by far
  const WarpMapEntry aMap[6] = {{0, 0}, {0, 1}, {0, 2}, {0, 3}, {0, 4}, {-1, 0}};
  ForEveryLevel([&] {
    // From the first entry on and from the last four, so that each of them is taken by the vectors.
    Bytes aOut(6), aLast(4);
    WarpRow(aMap, 6, aSource, 4, aWeights, 99, aOut.data());
    EXPECT_EQ(aOut, (Bytes{1, 2, 0, 255, 255, 99}));
    WarpRow(aMap + 2, 4, aSource, 4, aWeights, 99, aLast.data());
    EXPECT_EQ(aLast, (Bytes{0, 255, 255, 99}));
  });
}
