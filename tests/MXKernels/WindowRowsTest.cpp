// Tests of the kernels of the filters and of the search for runs.
#include "KernelRows.h"

using namespace MXKernels;

namespace {

template <typename T, typename TKernel>
void ExpectMeansLikeReference(TKernel pfnKernel, TKernel pfnReference) {
  ForEveryLevelAndTail([&](size_t nCount, ClSamples& oSamples) {
    // Half widths from 0 to beyond the row; areas on both sides of where the arithmetic changes. The sum
    // of a window of 16-bit samples must fit 32 bits.
    const unsigned nMax = static_cast<T>(~T{0});
    const size_t nHalf = oSamples.Number(static_cast<unsigned>(nCount) + 2);
    const unsigned nMostRows =
        std::min<unsigned>(1000U, 65536U * 255U / nMax / static_cast<unsigned>(2 * nHalf + 1));
    const unsigned nRows = 1 + oSamples.Number(nMostRows);
    std::vector<uint32_t> aSums = oSamples.Row<uint32_t>(nCount, nRows * nMax);
    std::vector<uint32_t> aPrefix(nCount + 1);
    TpGuardedRow<T> oOut(nCount), oExpected(nCount);
    pfnReference(aSums.data(), nCount, nHalf, nRows, aPrefix.data(), oExpected.Data());
    pfnKernel(aSums.data(), nCount, nHalf, nRows, aPrefix.data(), oOut.Data());
    ExpectSameAndGuarded(oOut, oExpected);
  });
}

template <typename T, typename TKernel>
void ExpectColumnSumsLikeReference(TKernel pfnKernel, TKernel pfnReference) {
  ForEveryLevelAndTail([&](size_t nCount, ClSamples& oSamples) {
    const std::vector<T> aRow = oSamples.Row<T>(nCount);
    const std::vector<uint32_t> aSums = oSamples.Row<uint32_t>(nCount, 1U << 30);
    TpGuardedRow<uint32_t> oOut(aSums), oExpected(aSums);
    pfnReference(aRow.data(), oExpected.Data(), nCount);
    pfnKernel(aRow.data(), oOut.Data(), nCount);
    ExpectSameAndGuarded(oOut, oExpected);
  });
}

using RankKernel = void (*)(const uint8_t*, size_t, size_t, uint8_t*, uint8_t*) noexcept;

void ExpectWindowsLikeReference(RankKernel pfnKernel, RankKernel pfnReference) {
  ForEveryLevelAndTail([&](size_t nCount, ClSamples& oSamples) {
    const std::vector<uint8_t> aIn = oSamples.Row<uint8_t>(nCount);
    const size_t nHalf = oSamples.Number(nCount < 40 ? static_cast<unsigned>(nCount) + 1 : 40U);
    TpGuardedRow<uint8_t> oWork(nCount + 2 * nHalf), oOut(nCount), oInPlace(aIn), oExpected(nCount);
    pfnReference(aIn.data(), nCount, nHalf, oWork.Data(), oExpected.Data());
    pfnKernel(aIn.data(), nCount, nHalf, oWork.Data(), oOut.Data());
    pfnKernel(oInPlace.Data(), nCount, nHalf, oWork.Data(), oInPlace.Data());
    ExpectSameAndGuarded(oOut, oExpected);
    ExpectSameAndGuarded(oInPlace, oExpected);
    EXPECT_TRUE(oWork.GuardsIntact());
  });
}

}  // namespace

TEST(ColumnSums, EveryLevelEqualsTheReferenceForEveryTail) {
  ExpectColumnSumsLikeReference<uint8_t>(AddToColumnSumsU8, Reference::AddToColumnSumsU8);
  ExpectColumnSumsLikeReference<uint8_t>(TakeFromColumnSumsU8, Reference::TakeFromColumnSumsU8);
  ExpectColumnSumsLikeReference<uint16_t>(AddToColumnSumsU16, Reference::AddToColumnSumsU16);
  ExpectColumnSumsLikeReference<uint16_t>(TakeFromColumnSumsU16, Reference::TakeFromColumnSumsU16);
}

TEST(ColumnSums, MovingIsAddingOneRowAndTakingAnother) {
  ForEveryLevelAndTail([](size_t nCount, ClSamples& oSamples) {
    const auto aEnter = oSamples.Row<uint8_t>(nCount), aLeave = oSamples.Row<uint8_t>(nCount);
    const auto aWideEnter = oSamples.Row<uint16_t>(nCount), aWideLeave = oSamples.Row<uint16_t>(nCount);
    const auto aSums = oSamples.Row<uint32_t>(nCount, 1U << 30);
    TpGuardedRow<uint32_t> oOut(aSums), oExpected(aSums);
    MoveColumnSumsU8(aEnter.data(), aLeave.data(), oOut.Data(), nCount);
    MoveColumnSumsU16(aWideEnter.data(), aWideLeave.data(), oOut.Data(), nCount);
    Reference::AddToColumnSumsU8(aEnter.data(), oExpected.Data(), nCount);
    Reference::TakeFromColumnSumsU8(aLeave.data(), oExpected.Data(), nCount);
    Reference::AddToColumnSumsU16(aWideEnter.data(), oExpected.Data(), nCount);
    Reference::TakeFromColumnSumsU16(aWideLeave.data(), oExpected.Data(), nCount);
    ExpectSameAndGuarded(oOut, oExpected);
  });
}

TEST(SlidingMeanRow, EveryLevelEqualsTheReferenceForEveryTailAndWidth) {
  ExpectMeansLikeReference<uint8_t>(SlidingMeanRowU8, Reference::SlidingMeanRowU8);
  ExpectMeansLikeReference<uint16_t>(SlidingMeanRowU16, Reference::SlidingMeanRowU16);
}

TEST(SlidingMeanRow, ASumJustBelowAMultipleOfTheAreaIsCutAndTheMultipleIsNot) {
  // A single column of nRows samples with the sum q * nRows - 1 has the mean q - 1. The largest area of the
  // narrow arithmetic, 16384, and the first one of the wide arithmetic are among these.
  const ClLevelGuard oGuard;
  for (int n = 0; n < eLevelCount; ++n) {
    if (!SetLevel(static_cast<ELevel>(n))) continue;
    for (const uint32_t nRows : {3U, 49U, 225U, 10201U, 16383U, 16384U, 16385U, 99991U, 8388608U}) {
      std::vector<uint32_t> aSums, aPrefix(512);
      for (uint32_t q = 1; q <= 255; ++q) aSums.insert(aSums.end(), {q * nRows - 1, q * nRows});
      std::vector<uint8_t> aOut(aSums.size());
      SlidingMeanRowU8(aSums.data(), aSums.size(), 0, nRows, aPrefix.data(), aOut.data());
      for (size_t i = 0; i < aOut.size(); ++i)
        ASSERT_EQ(aOut[i], (i + 1) / 2) << nRows << " rows, place " << i;
    }
  }
}

TEST(SlidingMeanRow, TheWindowIsClippedAtBothEnds) {
  const std::vector<uint32_t> aSums = {10, 20, 60, 100, 7};
  std::vector<uint32_t> aPrefix(6);
  std::vector<uint8_t> aOut(5);
  SlidingMeanRowU8(aSums.data(), 5, 1, 1, aPrefix.data(), aOut.data());
  EXPECT_EQ(aOut, (std::vector<uint8_t>{15, 30, 60, 55, 53}));
}

TEST(AboveMeanRow, EveryLevelEqualsTheReferenceForEveryTailAndWindow) {
  ForEveryLevelAndTail([](size_t nCount, ClSamples& oSamples) {
    // Few rows let many samples lie at their mean; very many take the comparison beyond 32 bits.
    const unsigned nRows = 1 + oSamples.Number(oSamples.Number(3) == 0 ? 1U << 24 : 3U);
    const WindowThreshold oWindow = {
        oSamples.Number(9), oSamples.Number(9), nRows, static_cast<int32_t>(oSamples.Number(6)) - 3, 200, 7};
    const auto aIn = oSamples.Row<uint8_t>(nCount, 5);
    const auto aSums = oSamples.Row<uint32_t>(nCount, nRows * 5);
    std::vector<uint32_t> aPrefix(nCount + 1);
    TpGuardedRow<uint8_t> oOut(nCount), oExpected(nCount);
    Reference::AboveMeanRow(aIn.data(), aSums.data(), nCount, oWindow, aPrefix.data(), oExpected.Data());
    AboveMeanRow(aIn.data(), aSums.data(), nCount, oWindow, aPrefix.data(), oOut.Data());
    ExpectSameAndGuarded(oOut, oExpected);
  });
}

TEST(RankRows, EveryLevelEqualsTheReferenceForEveryTail) {
  ForEveryLevelAndTail([](size_t nCount, ClSamples& oSamples) {
    const auto aA = oSamples.Row<uint8_t>(nCount), aB = oSamples.Row<uint8_t>(nCount);
    TpGuardedRow<uint8_t> oMin(nCount), oExpectedMin(nCount), oMax(aA), oExpectedMax(nCount);
    Reference::MinRows(aA.data(), aB.data(), oExpectedMin.Data(), nCount);
    Reference::MaxRows(aA.data(), aB.data(), oExpectedMax.Data(), nCount);
    MinRows(aA.data(), aB.data(), oMin.Data(), nCount);
    MaxRows(oMax.Data(), aB.data(), oMax.Data(), nCount);
    ExpectSameAndGuarded(oMin, oExpectedMin);
    ExpectSameAndGuarded(oMax, oExpectedMax);
  });
}

TEST(RankWindows, EveryLevelEqualsTheReferenceForEveryTailAndWidth) {
  ExpectWindowsLikeReference(MinWindowRow, Reference::MinWindowRow);
  ExpectWindowsLikeReference(MaxWindowRow, Reference::MaxWindowRow);
}

TEST(RankWindows, TheWindowIsClippedAtBothEnds) {
  const std::vector<uint8_t> aIn = {9, 5, 7, 200, 8};
  std::vector<uint8_t> aWork(9), aOut(5);
  MinWindowRow(aIn.data(), 5, 2, aWork.data(), aOut.data());
  EXPECT_EQ(aOut, (std::vector<uint8_t>{5, 5, 5, 5, 7}));
  MaxWindowRow(aIn.data(), 5, 1, aWork.data(), aOut.data());
  EXPECT_EQ(aOut, (std::vector<uint8_t>{9, 9, 200, 200, 200}));
}

TEST(ZeroBitsRow, EveryLevelEqualsTheReferenceForEveryTail) {
  ForEveryLevelAndTail([](size_t nCount, ClSamples& oSamples) {
    const auto aIn = oSamples.Row<uint8_t>(nCount, 1 + oSamples.Number(254));
    TpGuardedRow<uint64_t> oBits((nCount + 63) / 64), oExpected((nCount + 63) / 64);
    Reference::ZeroBitsRow(aIn.data(), oExpected.Data(), nCount);
    ZeroBitsRow(aIn.data(), oBits.Data(), nCount);
    ExpectSameAndGuarded(oBits, oExpected);
  });
}

TEST(TapRows, EveryLevelEqualsTheReferenceForEveryTail) {
  ForEveryLevelAndTail([](size_t nCount, ClSamples& oSamples) {
    const size_t nTaps = 1 + oSamples.Number(12);
    // Rows may come more than once; taps may be negative.
    std::vector<size_t> aOffsets;
    for (size_t k = 0; k < nTaps; ++k) aOffsets.push_back(oSamples.Number(3) * nCount);
    std::vector<int32_t> aTaps;
    for (size_t k = 0; k < nTaps; ++k) aTaps.push_back(static_cast<int32_t>(oSamples.Number(8190)) - 4095);
    const auto aIn = oSamples.Row<uint8_t>(4 * nCount);
    const std::vector<int8_t> aSigned(aIn.begin(), aIn.end());
    TpGuardedRow<int32_t> oOut(nCount), oExpected(nCount);
    Reference::WeightRowsU8(aIn.data(), aOffsets.data(), aTaps.data(), nTaps, oExpected.Data(), nCount);
    WeightRowsU8(aIn.data(), aOffsets.data(), aTaps.data(), nTaps, oOut.Data(), nCount);
    ExpectSameAndGuarded(oOut, oExpected);
    Reference::WeightRowsI8(aSigned.data(), aOffsets.data(), aTaps.data(), nTaps, oExpected.Data(), nCount);
    WeightRowsI8(aSigned.data(), aOffsets.data(), aTaps.data(), nTaps, oOut.Data(), nCount);
    ExpectSameAndGuarded(oOut, oExpected);
    const auto aWords = oSamples.Row<uint32_t>(nCount + nTaps - 1, 255 * 4095);
    const std::vector<int32_t> aLine(aWords.begin(), aWords.end());
    Reference::WeightLine(aLine.data(), aTaps.data(), nTaps, oExpected.Data(), nCount);
    WeightLine(aLine.data(), aTaps.data(), nTaps, oOut.Data(), nCount);
    ExpectSameAndGuarded(oOut, oExpected);
  });
}
