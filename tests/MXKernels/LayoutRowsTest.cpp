// Tests of the kernels that move samples and of the warp.
#include "KernelRows.h"

using namespace MXKernels;

namespace {
using Bytes = std::vector<uint8_t>;
}

TEST(LayoutRows, EveryLevelEqualsTheReferenceForEveryTail) {
  ForEveryLevelAndTail([](size_t nCount, ClSamples& oSamples) {
    const Bytes aIn = oSamples.Row<uint8_t>(nCount), aPairs = oSamples.Row<uint8_t>(2 * nCount);
    TpGuardedRow<uint8_t> oOut(nCount), oExpected(nCount);
    Reference::ReverseRow(aIn.data(), oExpected.Data(), nCount);
    ReverseRow(aIn.data(), oOut.Data(), nCount);
    ExpectSameAndGuarded(oOut, oExpected);

    TpGuardedRow<uint8_t> oEven(nCount), oOdd(nCount), oExpectedEven(nCount), oExpectedOdd(nCount);
    Reference::SplitPairsRow(aPairs.data(), oExpectedEven.Data(), oExpectedOdd.Data(), nCount);
    SplitPairsRow(aPairs.data(), oEven.Data(), oOdd.Data(), nCount);
    ExpectSameAndGuarded(oEven, oExpectedEven);
    ExpectSameAndGuarded(oOdd, oExpectedOdd);

    TpGuardedRow<uint8_t> oUp(2 * nCount), oExpectedUp(2 * nCount);
    Reference::ScaleUpRow(aIn.data(), oExpectedUp.Data(), nCount);
    ScaleUpRow(aIn.data(), oUp.Data(), nCount);
    ExpectSameAndGuarded(oUp, oExpectedUp);
  });
}

TEST(ScaleDownRow, EveryLevelEqualsTheReferenceForEveryTail) {
  ForEveryLevelAndTail([](size_t nCells, ClSamples& oSamples) {
    const Bytes aUpper = oSamples.Row<uint8_t>(2 * nCells), aLower = oSamples.Row<uint8_t>(2 * nCells);
    TpGuardedRow<uint8_t> aOut[3] = {TpGuardedRow<uint8_t>(nCells), TpGuardedRow<uint8_t>(nCells),
                                     TpGuardedRow<uint8_t>(nCells)};
    TpGuardedRow<uint8_t> aExpected[3] = {aOut[0], aOut[1], aOut[2]};
    Reference::ScaleDownRow(aUpper.data(), aLower.data(), nCells, aExpected[0].Data(), aExpected[1].Data(),
                            aExpected[2].Data());
    ScaleDownRow(aUpper.data(), aLower.data(), nCells, aOut[0].Data(), aOut[1].Data(), aOut[2].Data());
    for (int k = 0; k < 3; ++k) ExpectSameAndGuarded(aOut[k], aExpected[k]);
  });
}

TEST(ScaleDownRow, TheMeanIsCutAndTheExtremesAreThoseOfTheCell) {
  const uint8_t aUpper[2] = {255, 254}, aLower[2] = {255, 255};
  uint8_t nMean, nMax, nMin;
  ScaleDownRow(aUpper, aLower, 1, &nMean, &nMax, &nMin);
  EXPECT_EQ(nMean, 254);
  EXPECT_EQ(nMax, 255);
  EXPECT_EQ(nMin, 254);
}

TEST(WarpRow, EveryLevelEqualsTheReferenceForEveryTail) {
  constexpr size_t cnRowBytes = 61, cnRows = 40, cnPhases = 32;
  ForEveryLevelAndTail([](size_t nCount, ClSamples& oSamples) {
    const Bytes aSource = oSamples.Row<uint8_t>(cnRowBytes * cnRows);
    std::vector<int16_t> aWeights(16 * cnPhases);
    // Entries from harmless ones to the most extreme that 16 bits hold.
    for (size_t i = 0; i < aWeights.size(); ++i) {
      const int nSpan = i < 16 ? 32767 : 2000;
      aWeights[i] =
          static_cast<int16_t>(static_cast<int>(oSamples.Number(static_cast<unsigned>(2 * nSpan))) - nSpan);
    }
    std::vector<WarpMapEntry> aMap(nCount);
    for (WarpMapEntry& oEntry : aMap) {
      const auto nX = static_cast<int32_t>(oSamples.Number(cnRowBytes - 4));
      const auto nY = static_cast<int32_t>(oSamples.Number(cnRows - 4));
      oEntry.m_nOffset = oSamples.Number(9) == 0 ? -1 : nY * static_cast<int32_t>(cnRowBytes) + nX;
      oEntry.m_nPhase = oSamples.Number(cnPhases - 1);
    }
    const auto pWeights = reinterpret_cast<const int16_t(*)[4][4]>(aWeights.data());
    TpGuardedRow<uint8_t> oOut(nCount), oExpected(nCount);
    Reference::WarpRow(aMap.data(), nCount, aSource.data(), cnRowBytes, pWeights, 17, oExpected.Data());
    WarpRow(aMap.data(), nCount, aSource.data(), cnRowBytes, pWeights, 17, oOut.Data());
    ExpectSameAndGuarded(oOut, oExpected);
  });
}

TEST(WarpRow, RoundsUpByAllButOneThousandTwentyFourthAndClips) {
  const uint8_t aSource[16] = {0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 255, 255, 255, 255, 255, 255};
  int16_t aWeights[5][4][4] = {};
  aWeights[0][1][1] = 1;      // (1023 + 1) >> 10 = 1
  aWeights[1][1][1] = 1025;   // (1023 + 1025) >> 10 = 2
  aWeights[2][3][3] = -1024;  // below 0
  aWeights[3][3][3] = 2000;   // above 255
  for (int k = 0; k < 4; ++k)
    aWeights[4][3][k] = 32767;  // the largest sum of these pixels passes 16 bits by far
  const WarpMapEntry aMap[6] = {{0, 0}, {0, 1}, {0, 2}, {0, 3}, {0, 4}, {-1, 0}};
  const ClLevelGuard oGuard;
  for (int n = 0; n < eLevelCount; ++n) {
    if (!SetLevel(static_cast<ELevel>(n))) continue;
    // From the first entry on and from the last four, so that each of them is taken by the vectors.
    Bytes aOut(6), aLast(4);
    WarpRow(aMap, 6, aSource, 4, aWeights, 99, aOut.data());
    EXPECT_EQ(aOut, (Bytes{1, 2, 0, 255, 255, 99})) << LevelName(Level());
    WarpRow(aMap + 2, 4, aSource, 4, aWeights, 99, aLast.data());
    EXPECT_EQ(aLast, (Bytes{0, 255, 255, 99})) << LevelName(Level());
  }
}
