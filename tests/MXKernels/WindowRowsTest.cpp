// Tests of the kernels that look at more than one sample: windows, neighbours, the warp, splines.
#include <cmath>

#include "KernelRows.h"

using namespace MXKernels;

namespace {

using Sums = std::vector<uint32_t>;
using Doubles = std::vector<double>;

template <typename TSum, typename T>
void ExpectMeansLikeReference(size_t nCount, ClSamples& oSamples) {
  // Half widths from 0 to beyond the row; areas on both sides of where the arithmetic changes. The sum of a
  // window must fit 32 bits, and a window of 16-bit sums has 256 pixels at most.
  const unsigned nMax = static_cast<T>(~T{0});
  const unsigned nMostHalf = sizeof(TSum) == 2 ? 12U : static_cast<unsigned>(nCount) + 2;
  const size_t nHalf = oSamples.Number(nMostHalf);
  const auto nWidth = static_cast<unsigned>(2 * nHalf + 1);
  const unsigned nMostRows =
      sizeof(TSum) == 2 ? 256U / nWidth - 1 : std::min<unsigned>(1000U, 65536U * 255U / nMax / nWidth);
  const unsigned nRows = 1 + oSamples.Number(nMostRows);
  const auto aSums = oSamples.Row<TSum>(nCount, nRows * nMax);
  std::vector<TSum> aPrefix(nCount + 1);
  ExpectLikeReference(
      [&](auto* pOut) { SlidingMeanRow(aSums.data(), nCount, nHalf, nRows, aPrefix.data(), pOut); },
      std::vector<T>(nCount));
}

template <typename TSum>
void ExpectThresholdLikeReference(size_t nCount, ClSamples& oSamples) {
  // Few rows let many samples lie at their mean; very many take the comparison beyond the bits of the sums.
  const unsigned nMany = sizeof(TSum) == 2 ? 13U : 1U << 24;
  const unsigned nRows = 1 + oSamples.Number(oSamples.Number(3) == 0 ? nMany - 1 : 3U);
  const WindowThreshold oWindow = {
      oSamples.Number(9), oSamples.Number(8), nRows, static_cast<int32_t>(oSamples.Number(6)) - 3, 200, 7};
  const unsigned nMax = sizeof(TSum) == 2 && nCount % 2 == 0 ? 255 : 5;
  const auto aIn = oSamples.Row<uint8_t>(nCount, nMax);
  const auto aSums = oSamples.Row<TSum>(nCount, nRows * nMax);
  std::vector<TSum> aPrefix(nCount + 1);
  ExpectLikeReference(
      [&](auto* pOut) { AboveMeanRow(aIn.data(), aSums.data(), nCount, oWindow, aPrefix.data(), pOut); },
      Bytes(nCount));
}

/// Positions on both sides of the point, and some at it.
Doubles Places(size_t nCount, ClSamples& oSamples) {
  Doubles aX(nCount);
  for (double& dX : aX) dX = oSamples.Number(3) == 0 ? 800 : oSamples.Number(1600000) / 1000.0;
  return aX;
}

}  // namespace

TEST(SlidingMeanRow, EveryLevelEqualsTheReferenceForEveryTailAndWidth) {
  ForEveryLevelAndTail(ExpectMeansLikeReference<uint32_t, uint8_t>);
  ForEveryLevelAndTail(ExpectMeansLikeReference<uint32_t, uint16_t>);
  ForEveryLevelAndTail(ExpectMeansLikeReference<uint16_t, uint8_t>);
}

TEST(SlidingMeanRow, DividesEverySumOf16BitsExactly) {
  ForEveryLevel([] {
    for (uint32_t nArea = 1; nArea <= 256; ++nArea) {
      Words aSums(255 * nArea + 1), aPrefix(aSums.size() + 1);
      for (size_t n = 0; n < aSums.size(); ++n) aSums[n] = static_cast<uint16_t>(n);
      Bytes aOut(aSums.size());
      SlidingMeanRow(aSums.data(), aSums.size(), 0, nArea, aPrefix.data(), aOut.data());
      for (size_t n = 0; n < aSums.size(); ++n) ASSERT_EQ(aOut[n], n / nArea) << n << " by " << nArea;
    }
  });
}

TEST(SlidingMeanRow, ASumJustBelowAMultipleOfTheAreaIsCutAndTheMultipleIsNot) {
  // A single column of nRows samples with the sum q * nRows - 1 has the mean q - 1. The largest area of the
  // narrow arithmetic, 16384, and the first one of the wide arithmetic are among these.
  ForEveryLevel([] {
    for (const uint32_t nRows : {3U, 49U, 225U, 10201U, 16383U, 16384U, 16385U, 99991U, 8388608U}) {
      Sums aSums, aPrefix(512);
      for (uint32_t q = 1; q <= 255; ++q) aSums.insert(aSums.end(), {q * nRows - 1, q * nRows});
      Bytes aOut(aSums.size());
      SlidingMeanRow(aSums.data(), aSums.size(), 0, nRows, aPrefix.data(), aOut.data());
      for (size_t i = 0; i < aOut.size(); ++i)
        ASSERT_EQ(aOut[i], (i + 1) / 2) << nRows << " rows, place " << i;
    }
  });
}

TEST(AboveMeanRow, EveryLevelEqualsTheReferenceForEveryTailAndWindow) {
  ForEveryLevelAndTail(ExpectThresholdLikeReference<uint32_t>);
  ForEveryLevelAndTail(ExpectThresholdLikeReference<uint16_t>);
}

TEST(RankWindows, EveryLevelEqualsTheReferenceForEveryTailAndWidthAlsoInPlace) {
  ForEveryLevelAndTail([](size_t nCount, ClSamples& oSamples) {
    // Every second row is black or nearly black: samples outside it must not show.
    const Bytes aIn = oSamples.Row<uint8_t>(nCount, nCount % 2 == 0 ? 255 : 1);
    const size_t nHalf = oSamples.Number(nCount < 40 ? static_cast<unsigned>(nCount) + 1 : 40U);
    for (const auto* pKernel : {&MinWindowRow, &MaxWindowRow}) {
      Bytes aWork(nCount + 2 * nHalf);
      ExpectLikeReference(
          [&](auto* pOut, auto* pInPlace) {
            (*pKernel)(aIn.data(), nCount, nHalf, aWork.data(), pOut);
            (*pKernel)(pInPlace, nCount, nHalf, aWork.data(), pInPlace);
          },
          Bytes(nCount), aIn);
    }
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
    const auto aWords = oSamples.Row<uint32_t>(nCount + nTaps - 1, 255 * 4095);
    const std::vector<int32_t> aLine(aWords.begin(), aWords.end()), aOut(nCount);
    ExpectLikeReference(
        [&](auto* pUnsigned, auto* pSigned, auto* pAlong) {
          WeightRows(aIn.data(), aOffsets.data(), aTaps.data(), nTaps, pUnsigned, nCount);
          WeightRows(aSigned.data(), aOffsets.data(), aTaps.data(), nTaps, pSigned, nCount);
          WeightLine(aLine.data(), aTaps.data(), nTaps, pAlong, nCount);
        },
        aOut, aOut, aOut);
  });
}

TEST(TextureClassRow, EveryLevelEqualsTheReferenceForEveryTail) {
  const uint8_t aClasses[16] = {0, 1, 1, 2, 1, 5, 2, 3, 1, 2, 5, 3, 2, 3, 3, 4};
  ForEveryLevelAndTail([&](size_t nCount, ClSamples& oSamples) {
    // Few grey levels, so that equal neighbours occur.
    const Bytes aAbove = oSamples.Row<uint8_t>(nCount, 3), aBelow = oSamples.Row<uint8_t>(nCount, 3);
    const Bytes aCentre = oSamples.Row<uint8_t>(nCount + 2, nCount % 2 ? 3 : 255);
    ExpectLikeReference(
        [&](auto* pOut) {
          TextureClassRow(aAbove.data(), aCentre.data() + 1, aBelow.data(), pOut, nCount, aClasses);
        },
        Bytes(nCount));
  });
}

TEST(WarpRows, EveryLevelEqualsTheReferenceForEveryTail) {
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
    // Every second group is loose; the others reach to the last byte of the source.
    std::vector<WarpGroup> aGroups(nCount / 4 + 1);
    for (WarpGroup& oGroup : aGroups) {
      const bool bLoose = oSamples.Number(1) == 0;
      oGroup.m_nBase = bLoose ? cnLooseGroup | oSamples.Number(cnRowBytes * (cnRows - 35))
                              : oSamples.Number(cnRowBytes * (cnRows - 3) - 8);
      for (size_t k = 0; k < 4; ++k) {
        oGroup.m_aWeights[k] = static_cast<uint16_t>(32 * oSamples.Number(cnPhases - 1));
        oGroup.m_aSteps[k] =
            static_cast<uint8_t>(32 * oSamples.Number(4) + (bLoose ? oSamples.Number(31) : 0));
        if (bLoose && oSamples.Number(3) == 0) oGroup.m_aWeights[k] = cnNoWeights;
      }
    }
    const auto pWeights = reinterpret_cast<const int16_t(*)[4][4]>(aWeights.data());
    ExpectLikeReference(
        [&](auto* pOut, auto* pGrouped) {
          WarpRow(aMap.data(), nCount, aSource.data(), cnRowBytes, pWeights, 17, pOut);
          WarpGroupsRow(aGroups.data(), nCount, aSource.data(), cnRowBytes, pWeights, 17, pGrouped);
        },
        Bytes(nCount), Bytes(nCount));
  });
}

TEST(SplineRows, EveryLevelEqualsTheReferenceForEveryTail) {
  ForEveryLevelAndTail([](size_t nCount, ClSamples& oSamples) {
    const Doubles aX = Places(nCount, oSamples), aStart = Places(nCount, oSamples);
    for (const SplinePoint oPoint :
         {SplinePoint{800, 0}, SplinePoint{800, 1e-200}, SplinePoint{-3.7, 640000.3}}) {
      ExpectLikeReference(
          [&](auto* pSum, auto* pA, auto* pB) {
            AddSplineBasisRow(aX.data(), nCount, oPoint, 1.0 / 3, pSum);
            AddSplineBasisPairRow(aX.data(), nCount, oPoint, -0.7, 1e-9, pA, pB);
          },
          aStart, aStart, aStart);
    }
  });
}

TEST(SplineRows, AddWhatTheFormulaSaysAndNothingAtThePointItself) {
  const Doubles aX = {2, 5, 1e150, std::nan("")};
  Doubles aSum = {10, 10, 10, 10};
  AddSplineBasisRow(aX.data(), 4, {2, 0}, 0.5, aSum.data());
  EXPECT_EQ(aSum[0], 10);
  EXPECT_NEAR(aSum[1], 10 + 0.5 * 9 * std::log(9.0), 1e-12);
  EXPECT_NEAR(aSum[2] / (0.5 * 1e300 * std::log(1e300)), 1, 1e-12);
  EXPECT_TRUE(std::isnan(aSum[3]));
}
