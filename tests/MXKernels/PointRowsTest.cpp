// Tests of the kernels that treat each sample by itself.
#include "KernelRows.h"

using namespace MXKernels;

namespace {
using Bytes = std::vector<uint8_t>;

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

using PairRule = void (*)(const uint8_t*, const uint8_t*, uint8_t*, size_t) noexcept;
class RowsOfPairs : public testing::TestWithParam<std::pair<PairRule, PairRule>> {};

TEST_P(RowsOfPairs, EveryLevelEqualsTheReferenceForEveryTailAlsoInPlace) {
  const auto [pfnRow, pfnReference] = GetParam();
  ForEveryLevelAndTail([=](size_t nCount, ClSamples& oSamples) {
    const Bytes aLit = oSamples.Row<uint8_t>(nCount), aDark = oSamples.Row<uint8_t>(nCount);
    TpGuardedRow<uint8_t> oOut(nCount), oExpected(nCount), oOverLit(aLit), oOverDark(aDark);
    pfnReference(aLit.data(), aDark.data(), oExpected.Data(), nCount);
    pfnRow(aLit.data(), aDark.data(), oOut.Data(), nCount);
    pfnRow(oOverLit.Data(), aDark.data(), oOverLit.Data(), nCount);
    pfnRow(aLit.data(), oOverDark.Data(), oOverDark.Data(), nCount);
    ExpectSameAndGuarded(oOut, oExpected);
    ExpectSameAndGuarded(oOverLit, oExpected);
    ExpectSameAndGuarded(oOverDark, oExpected);
  });
}

INSTANTIATE_TEST_SUITE_P(PointRows, RowsOfPairs,
                         testing::Values(std::pair{&SubtractSaturated, &Reference::SubtractSaturated},
                                         std::pair{&AbsoluteDifferenceRow, &Reference::AbsoluteDifferenceRow},
                                         std::pair{&AndRow, &Reference::AndRow}));

TEST(SubtractSaturated, ADarkerLitPixelGivesZeroAndDoesNotWrap) {
  const Bytes aLit(100, 10), aDark(100, 11);
  Bytes aOut(100, 1);
  SubtractSaturated(aLit.data(), aDark.data(), aOut.data(), 100);
  EXPECT_EQ(aOut, Bytes(100, 0));
}

TEST(ClampAndThresholdRows, EveryLevelEqualsTheReferenceForEveryTail) {
  ForEveryLevelAndTail([](size_t nCount, ClSamples& oSamples) {
    const Bytes aIn = oSamples.Row<uint8_t>(nCount);
    const auto nLower = static_cast<uint8_t>(oSamples.Number(200));
    const auto nUpper = static_cast<uint8_t>(nLower + oSamples.Number(55));
    TpGuardedRow<uint8_t> oOut(aIn), oExpected(nCount);
    Reference::ClampRow(aIn.data(), oExpected.Data(), nCount, nLower, nUpper);
    ClampRow(oOut.Data(), oOut.Data(), nCount, nLower, nUpper);
    ExpectSameAndGuarded(oOut, oExpected);

    TpGuardedRow<uint8_t> oCut(nCount), oExpectedCut(nCount), oEqual(nCount), oExpectedEqual(nCount);
    Reference::ThresholdRow(aIn.data(), oExpectedCut.Data(), nCount, nUpper, 7, 200);
    ThresholdRow(aIn.data(), oCut.Data(), nCount, nUpper, 7, 200);
    ExpectSameAndGuarded(oCut, oExpectedCut);
    Reference::EqualRow(aIn.data(), oExpectedEqual.Data(), nCount, 255);
    EqualRow(aIn.data(), oEqual.Data(), nCount, 255);
    ExpectSameAndGuarded(oEqual, oExpectedEqual);
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
    TpGuardedRow<uint8_t> oOut(nAll), oExpected(nAll);
    Reference::AdjustBrightnessRow(aIn.data(), aReference.data(), oExpected.Data(), nAll, nValue, nMinimum);
    AdjustBrightnessRow(aIn.data(), aReference.data(), oOut.Data(), nAll, nValue, nMinimum);
    ExpectSameAndGuarded(oOut, oExpected);
  });
}

TEST(AdjustBrightnessRow, CapsDarkReferencesAndLimitsTheResult) {
  // 100 * 128 / 200 = 64; 10 * 128 / 2 passes 255; 1 * 128 / 3 = 42 with the reference raised to 3.
  const Bytes aIn = {100, 10, 1}, aReference = {200, 2, 1};
  Bytes aOut(3);
  AdjustBrightnessRow(aIn.data(), aReference.data(), aOut.data(), 3, 128, 2);
  EXPECT_EQ(aOut, (Bytes{64, 255, 64}));
  AdjustBrightnessRow(aIn.data(), aReference.data(), aOut.data(), 3, 128, 3);
  EXPECT_EQ(aOut, (Bytes{64, 255, 42}));
}

TEST(BalanceCellsRow, EveryLevelEqualsTheReferenceForEveryTailAlsoInPlace) {
  ForEveryLevelAndTail([](size_t nCells, ClSamples& oSamples) {
    std::vector<Bytes> aMeans;
    for (int k = 0; k < 4; ++k) aMeans.push_back(oSamples.Row<uint8_t>(nCells));
    const Bytes aUpper = oSamples.Row<uint8_t>(2 * nCells), aLower = oSamples.Row<uint8_t>(2 * nCells);
    TpGuardedRow<uint8_t> oUpper(aUpper), oLower(aLower), oExpectedUpper(2 * nCells),
        oExpectedLower(2 * nCells);
    BalanceCells oCells{{aMeans[0].data(), aMeans[1].data(), aMeans[2].data(), aMeans[3].data()},
                        aUpper.data(),
                        aLower.data(),
                        oExpectedUpper.Data(),
                        oExpectedLower.Data()};
    Reference::BalanceCellsRow(oCells, nCells);
    oCells.m_pUpper = oCells.m_pOutUpper = oUpper.Data();
    oCells.m_pLower = oCells.m_pOutLower = oLower.Data();
    BalanceCellsRow(oCells, nCells);
    ExpectSameAndGuarded(oUpper, oExpectedUpper);
    ExpectSameAndGuarded(oLower, oExpectedLower);
  });
}

TEST(BalanceCellsRow, DrawsEachPhaseToTheMeanOfAllFour) {
  // Means 99, 199, 99, 199 are raised to 100 and 200; the target is 150. A sample of 99 becomes
  // 100 * 150 / 100 - 1 = 149 in a weak phase and 100 * 150 / 200 - 1 = 74 in a strong one.
  const uint8_t nWeak = 99, nStrong = 199;
  const uint8_t aSamples[2] = {99, 99};
  uint8_t aUpper[2], aLower[2];
  BalanceCellsRow({{&nWeak, &nStrong, &nWeak, &nStrong}, aSamples, aSamples, aUpper, aLower}, 1);
  EXPECT_EQ(aUpper[0], 149);
  EXPECT_EQ(aUpper[1], 74);
  EXPECT_EQ(aLower[0], 149);
  EXPECT_EQ(aLower[1], 74);
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
  EXPECT_EQ(aBins[0], 2);
  EXPECT_EQ(aBins[3], 4);
  EXPECT_EQ(aBins[255], 2);
  EXPECT_EQ(aBins[4], 1);
}
