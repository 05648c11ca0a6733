// Tests of the kernels that treat each sample by itself.
#include "KernelRows.h"

using namespace MXKernels;

namespace {

/// Every pair of bytes: all first ones against all second ones.
void AllPairs(Bytes& aFirst, Bytes& aSecond) {
  for (int a = 0; a < 256; ++a) {
    for (int b = 0; b < 256; ++b) {
      aFirst.push_back(static_cast<uint8_t>(a));
      aSecond.push_back(static_cast<uint8_t>(b));
    }
  }
}

}  // namespace

TEST(PointRows, EveryLevelEqualsTheReferenceForEveryTailAlsoInPlace) {
  using PairRule = void (*)(const uint8_t*, const uint8_t*, uint8_t*, size_t) noexcept;
  const std::pair<PairRule, PairRule> aRules[] = {{SubtractSaturated, Reference::SubtractSaturated},
                                                  {AbsoluteDifferenceRow, Reference::AbsoluteDifferenceRow},
                                                  {AndRow, Reference::AndRow}};
  ForEveryLevelAndTail([&](size_t nCount, ClSamples& oSamples) {
    const Bytes aLit = oSamples.Row<uint8_t>(nCount), aDark = oSamples.Row<uint8_t>(nCount);
    for (const auto& [pfnRow, pfnReference] : aRules) {
      const auto fnApart = [&](auto pfn, auto* pOut) { pfn(aLit.data(), aDark.data(), pOut, nCount); };
      ExpectLikeReference(pfnRow, pfnReference, fnApart, Bytes(nCount));
      const auto fnOverLit = [&](auto pfn, auto* pOut) { pfn(pOut, aDark.data(), pOut, nCount); };
      ExpectLikeReference(pfnRow, pfnReference, fnOverLit, aLit);
      const auto fnOverDark = [&](auto pfn, auto* pOut) { pfn(aLit.data(), pOut, pOut, nCount); };
      ExpectLikeReference(pfnRow, pfnReference, fnOverDark, aDark);
    }
    const auto nLower = static_cast<uint8_t>(oSamples.Number(200));
    const auto nUpper = static_cast<uint8_t>(nLower + oSamples.Number(55));
    EXPECT_LIKE_REFERENCE(
        ClampRow, [&](auto pfn, auto* pOut) { pfn(pOut, pOut, nCount, nLower, nUpper); }, aLit);
    EXPECT_LIKE_REFERENCE(
        ThresholdRow, [&](auto pfn, auto* pOut) { pfn(pOut, pOut, nCount, nUpper, 7, 200); }, aLit);
    EXPECT_LIKE_REFERENCE(
        EqualRow, [&](auto pfn, auto* pOut) { pfn(pOut, pOut, nCount, 255); }, aLit);
  });
}

TEST(InvertedBlendRow, EveryLevelDividesExactlyForAllPairsOfSamples) {
  Bytes aIn, aMask;
  AllPairs(aIn, aMask);
  ForEveryLevelAndTail([&](size_t nCount, ClSamples&) {
    const size_t nAll = nCount == 0 ? aIn.size() : nCount;
    TpGuardedRow<uint8_t> oOut(nAll);
    InvertedBlendRow(aIn.data(), aMask.data(), oOut.Data(), nAll);
    EXPECT_TRUE(oOut.GuardsIntact());
    const Bytes aOut = oOut.Row();
    for (size_t i = 0; i < nAll; ++i) ASSERT_EQ(aOut[i], 255 - aIn[i] * aMask[i] / 255);
  });
}

TEST(AdjustBrightnessRow, EveryLevelDividesExactlyForAllPairsOfSamples) {
  Bytes aIn, aReference;
  AllPairs(aIn, aReference);
  ForEveryLevelAndTail([&](size_t nCount, ClSamples& oSamples) {
    const size_t nAll = nCount % 16 == 0 ? aIn.size() : nCount;
    const auto nValue = static_cast<uint8_t>(nCount == 0 ? 255 : oSamples.Number(255));
    const auto nMinimum = static_cast<uint8_t>(nCount == 0 ? 1 : 1 + oSamples.Number(30));
    EXPECT_LIKE_REFERENCE(
        AdjustBrightnessRow,
        [&](auto pfn, auto* pOut) { pfn(aIn.data(), aReference.data(), pOut, nAll, nValue, nMinimum); },
        Bytes(nAll));
  });
}

TEST(BalanceCellsRow, EveryLevelEqualsTheReferenceForEveryTailInPlace) {
  ForEveryLevelAndTail([](size_t nCells, ClSamples& oSamples) {
    Bytes aMeans[4];
    for (Bytes& aMean : aMeans) aMean = oSamples.Row<uint8_t>(nCells);
    EXPECT_LIKE_REFERENCE(
        BalanceCellsRow,
        [&](auto pfn, auto* pUpper, auto* pLower) {
          pfn({{aMeans[0].data(), aMeans[1].data(), aMeans[2].data(), aMeans[3].data()},
               pUpper,
               pLower,
               pUpper,
               pLower},
              nCells);
        },
        oSamples.Row<uint8_t>(2 * nCells), oSamples.Row<uint8_t>(2 * nCells));
  });
}

TEST(LookUpAndHistogramRows, CountAndReplaceEachSample) {
  uint8_t aTable[256];
  for (int n = 0; n < 256; ++n) aTable[n] = static_cast<uint8_t>(255 - n);
  const Bytes aIn = {0, 3, 3, 255, 3};
  Bytes aOut(5);
  LookUpRow(aIn.data(), aOut.data(), 5, aTable);
  EXPECT_EQ(aOut, (Bytes{255, 252, 252, 0, 252}));
  std::vector<int32_t> aBins(256, 1);
  HistogramRow(aIn.data(), 5, aBins.data());
  EXPECT_EQ((std::vector<int32_t>{aBins[0], aBins[3], aBins[255], aBins[4]}),
            (std::vector<int32_t>{2, 4, 2, 1}));
}
