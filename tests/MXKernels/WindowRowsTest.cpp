// Tests of the kernels of the filters and of the search for runs.
#include <functional>

#include "KernelRows.h"

using namespace MXKernels;

namespace {

using Sums = std::vector<uint32_t>;

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
    const Sums aSums = oSamples.Row<uint32_t>(nCount, nRows * nMax);
    Sums aPrefix(nCount + 1);
    ExpectLikeReference(
        pfnKernel, pfnReference,
        [&](auto pfn, auto* pOut) { pfn(aSums.data(), nCount, nHalf, nRows, aPrefix.data(), pOut); },
        std::vector<T>(nCount));
  });
}

/// The three kernels of column sums; the reference of moving is adding one row and taking another.
template <typename T, typename TKernel, typename TMove>
void ExpectColumnSumsLikeReference(TKernel pfnAdd, TKernel pfnPlainAdd, TKernel pfnTake, TKernel pfnPlainTake,
                                   TMove pfnMove) {
  ForEveryLevelAndTail([&](size_t nCount, ClSamples& oSamples) {
    const auto aEnter = oSamples.Row<T>(nCount), aLeave = oSamples.Row<T>(nCount);
    const Sums aSums = oSamples.Row<uint32_t>(nCount, 1U << 30);
    const auto fnCall = [&](auto pfn, auto* pSums) { pfn(aEnter.data(), pSums, nCount); };
    ExpectLikeReference(pfnAdd, pfnPlainAdd, fnCall, aSums);
    ExpectLikeReference(pfnTake, pfnPlainTake, fnCall, aSums);
    const auto fnPlainMove = [=](const T* pEnter, const T* pLeave, uint32_t* pSums, size_t nSums) noexcept {
      pfnPlainAdd(pEnter, pSums, nSums);
      pfnPlainTake(pLeave, pSums, nSums);
    };
    using Move = std::function<void(const T*, const T*, uint32_t*, size_t)>;
    ExpectLikeReference(
        Move(pfnMove), Move(fnPlainMove),
        [&](const Move& fn, auto* pSums) { fn(aEnter.data(), aLeave.data(), pSums, nCount); }, aSums);
  });
}

}  // namespace

TEST(ColumnSums, EveryLevelEqualsTheReferenceForEveryTail) {
  ExpectColumnSumsLikeReference<uint8_t>(AddToColumnSumsU8, Reference::AddToColumnSumsU8,
                                         TakeFromColumnSumsU8, Reference::TakeFromColumnSumsU8,
                                         MoveColumnSumsU8);
  ExpectColumnSumsLikeReference<uint16_t>(AddToColumnSumsU16, Reference::AddToColumnSumsU16,
                                          TakeFromColumnSumsU16, Reference::TakeFromColumnSumsU16,
                                          MoveColumnSumsU16);
}

TEST(SlidingMeanRow, EveryLevelEqualsTheReferenceForEveryTailAndWidth) {
  ExpectMeansLikeReference<uint8_t>(SlidingMeanRowU8, Reference::SlidingMeanRowU8);
  ExpectMeansLikeReference<uint16_t>(SlidingMeanRowU16, Reference::SlidingMeanRowU16);
}

TEST(SlidingMeanRow, ASumJustBelowAMultipleOfTheAreaIsCutAndTheMultipleIsNot) {
  // A single column of nRows samples with the sum q * nRows - 1 has the mean q - 1. The largest area of the
  // narrow arithmetic, 16384, and the first one of the wide arithmetic are among these.
  ForEveryLevel([] {
    for (const uint32_t nRows : {3U, 49U, 225U, 10201U, 16383U, 16384U, 16385U, 99991U, 8388608U}) {
      Sums aSums, aPrefix(512);
      for (uint32_t q = 1; q <= 255; ++q) aSums.insert(aSums.end(), {q * nRows - 1, q * nRows});
      Bytes aOut(aSums.size());
      SlidingMeanRowU8(aSums.data(), aSums.size(), 0, nRows, aPrefix.data(), aOut.data());
      for (size_t i = 0; i < aOut.size(); ++i)
        ASSERT_EQ(aOut[i], (i + 1) / 2) << nRows << " rows, place " << i;
    }
  });
}

TEST(AboveMeanRow, EveryLevelEqualsTheReferenceForEveryTailAndWindow) {
  ForEveryLevelAndTail([](size_t nCount, ClSamples& oSamples) {
    // Few rows let many samples lie at their mean; very many take the comparison beyond 32 bits.
    const unsigned nRows = 1 + oSamples.Number(oSamples.Number(3) == 0 ? 1U << 24 : 3U);
    const WindowThreshold oWindow = {
        oSamples.Number(9), oSamples.Number(9), nRows, static_cast<int32_t>(oSamples.Number(6)) - 3, 200, 7};
    const auto aIn = oSamples.Row<uint8_t>(nCount, 5);
    const auto aSums = oSamples.Row<uint32_t>(nCount, nRows * 5);
    Sums aPrefix(nCount + 1);
    EXPECT_LIKE_REFERENCE(
        AboveMeanRow,
        [&](auto pfn, auto* pOut) { pfn(aIn.data(), aSums.data(), nCount, oWindow, aPrefix.data(), pOut); },
        Bytes(nCount));
  });
}

TEST(RankRows, EveryLevelEqualsTheReferenceForEveryTailAndWidthAlsoInPlace) {
  ForEveryLevelAndTail([](size_t nCount, ClSamples& oSamples) {
    // Every second row is black and nearly black: what lies outside it must not show.
    const Bytes aA = oSamples.Row<uint8_t>(nCount, nCount % 2 == 0 ? 255 : 1);
    const Bytes aB = oSamples.Row<uint8_t>(nCount);
    const auto fnRows = [&](auto pfn, auto* pOut) { pfn(pOut, aB.data(), pOut, nCount); };
    EXPECT_LIKE_REFERENCE(MinRows, fnRows, aA);
    EXPECT_LIKE_REFERENCE(MaxRows, fnRows, aA);
    const size_t nHalf = oSamples.Number(nCount < 40 ? static_cast<unsigned>(nCount) + 1 : 40U);
    const auto fnWindows = [&](auto pfn, auto* pOut, auto* pInPlace) {
      TpGuardedRow<uint8_t> oWork(nCount + 2 * nHalf);
      pfn(aA.data(), nCount, nHalf, oWork.Data(), pOut);
      pfn(pInPlace, nCount, nHalf, oWork.Data(), pInPlace);
      EXPECT_TRUE(oWork.GuardsIntact());
    };
    EXPECT_LIKE_REFERENCE(MinWindowRow, fnWindows, Bytes(nCount), aA);
    EXPECT_LIKE_REFERENCE(MaxWindowRow, fnWindows, Bytes(nCount), aA);
  });
}

TEST(ZeroBitsRow, EveryLevelEqualsTheReferenceForEveryTail) {
  ForEveryLevelAndTail([](size_t nCount, ClSamples& oSamples) {
    const auto aIn = oSamples.Row<uint8_t>(nCount, 1 + oSamples.Number(254));
    EXPECT_LIKE_REFERENCE(
        ZeroBitsRow, [&](auto pfn, auto* pBits) { pfn(aIn.data(), pBits, nCount); },
        std::vector<uint64_t>((nCount + 63) / 64));
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
    const std::vector<int32_t> aOut(nCount);
    const auto fnRows = [&](const auto& aRows) {
      return [&](auto pfn, auto* pOut) {
        pfn(aRows.data(), aOffsets.data(), aTaps.data(), nTaps, pOut, nCount);
      };
    };
    EXPECT_LIKE_REFERENCE(WeightRowsU8, fnRows(aIn), aOut);
    EXPECT_LIKE_REFERENCE(WeightRowsI8, fnRows(aSigned), aOut);
    const auto aWords = oSamples.Row<uint32_t>(nCount + nTaps - 1, 255 * 4095);
    const std::vector<int32_t> aLine(aWords.begin(), aWords.end());
    EXPECT_LIKE_REFERENCE(
        WeightLine, [&](auto pfn, auto* pOut) { pfn(aLine.data(), aTaps.data(), nTaps, pOut, nCount); },
        aOut);
  });
}
