// The plain twins of the kernels that look at more than one sample: windows, runs, cells, neighbours, the
// warp.
#include <algorithm>
#include <cmath>

#include "MXKernels/Reference.h"

namespace MXKernels::Reference {
namespace {

template <typename TPick>
void WindowRow(const uint8_t* pIn, size_t nCount, size_t nHalf, uint8_t* pWork, uint8_t* pOut,
               TPick oPick) noexcept {
  std::copy(pIn, pIn + nCount, pWork);
  for (size_t x = 0; x < nCount; ++x) {
    const size_t nEnd = nHalf < nCount - x ? x + nHalf + 1 : nCount;
    uint8_t nBest = pWork[x];
    for (size_t i = x > nHalf ? x - nHalf : 0; i < nEnd; ++i) nBest = oPick(nBest, pWork[i]);
    pOut[x] = nBest;
  }
}

}  // namespace

template <typename T, typename TSum>
void AddToSumsRow(const T* pRow, TSum* pSums, size_t nCount) noexcept {
  for (size_t i = 0; i < nCount; ++i) pSums[i] = static_cast<TSum>(pSums[i] + pRow[i]);
}
template OneRow<uint8_t, uint16_t> AddToSumsRow<uint8_t, uint16_t>;
template OneRow<uint8_t, uint32_t> AddToSumsRow<uint8_t, uint32_t>;
template OneRow<uint16_t, uint32_t> AddToSumsRow<uint16_t, uint32_t>;

template <typename T, typename TSum>
void TakeFromSumsRow(const T* pRow, TSum* pSums, size_t nCount) noexcept {
  for (size_t i = 0; i < nCount; ++i) pSums[i] = static_cast<TSum>(pSums[i] - pRow[i]);
}
template OneRow<uint8_t, uint16_t> TakeFromSumsRow<uint8_t, uint16_t>;
template OneRow<uint8_t, uint32_t> TakeFromSumsRow<uint8_t, uint32_t>;
template OneRow<uint16_t, uint32_t> TakeFromSumsRow<uint16_t, uint32_t>;

template <typename T, typename TSum>
void MoveSumsRow(const T* pEnter, const T* pLeave, TSum* pSums, size_t nCount) noexcept {
  for (size_t i = 0; i < nCount; ++i) pSums[i] = static_cast<TSum>(pSums[i] + pEnter[i] - pLeave[i]);
}
template TwoRows<uint8_t, uint16_t> MoveSumsRow<uint8_t, uint16_t>;
template TwoRows<uint8_t, uint32_t> MoveSumsRow<uint8_t, uint32_t>;
template TwoRows<uint16_t, uint32_t> MoveSumsRow<uint16_t, uint32_t>;

template <typename TSum, typename T>
void SlidingMeanRow(const TSum* pSums, size_t nCount, size_t nHalf, uint32_t nRows, TSum*, T* pOut) noexcept {
  uint32_t nSum = 0;
  for (size_t x = 0; x < std::min(nHalf, nCount); ++x) nSum += pSums[x];
  for (size_t x = 0; x < nCount; ++x) {
    if (x + nHalf < nCount) nSum += pSums[x + nHalf];
    if (x > nHalf) nSum -= pSums[x - nHalf - 1];
    const size_t nColumns = std::min(x + nHalf + 1, nCount) - (x > nHalf ? x - nHalf : 0);
    const uint32_t nArea = std::max(nRows * static_cast<uint32_t>(nColumns), uint32_t{1});
    pOut[x] = static_cast<T>(nSum / nArea);
  }
}
template MeanRow<uint16_t, uint8_t> SlidingMeanRow<uint16_t, uint8_t>;
template MeanRow<uint32_t, uint8_t> SlidingMeanRow<uint32_t, uint8_t>;
template MeanRow<uint32_t, uint16_t> SlidingMeanRow<uint32_t, uint16_t>;

template <typename TSum>
void AboveMeanRow(const uint8_t* pIn, const TSum* pSums, size_t nCount, const WindowThreshold& oWindow, TSum*,
                  uint8_t* pOut) noexcept {
  int64_t nSum = 0;
  for (size_t x = 0; x < std::min(oWindow.m_nRight, nCount); ++x) nSum += pSums[x];
  for (size_t x = 0; x < nCount; ++x) {
    if (x + oWindow.m_nRight < nCount) nSum += pSums[x + oWindow.m_nRight];
    if (x > oWindow.m_nLeft) nSum -= pSums[x - oWindow.m_nLeft - 1];
    const size_t nColumns = std::min(x + oWindow.m_nRight + 1, nCount) - (x - std::min(x, oWindow.m_nLeft));
    const int64_t nArea = int64_t{oWindow.m_nRows} * static_cast<int64_t>(nColumns);
    pOut[x] = (pIn[x] + oWindow.m_nOffset) * nArea > nSum ? oWindow.m_nAbove : oWindow.m_nBelow;
  }
}
template ThresholdByMeanRow<uint16_t> AboveMeanRow<uint16_t>;
template ThresholdByMeanRow<uint32_t> AboveMeanRow<uint32_t>;

void MinRows(const uint8_t* pA, const uint8_t* pB, uint8_t* pOut, size_t nCount) noexcept {
  for (size_t i = 0; i < nCount; ++i) pOut[i] = std::min(pA[i], pB[i]);
}

void MaxRows(const uint8_t* pA, const uint8_t* pB, uint8_t* pOut, size_t nCount) noexcept {
  for (size_t i = 0; i < nCount; ++i) pOut[i] = std::max(pA[i], pB[i]);
}

void MinWindowRow(const uint8_t* pIn, size_t nCount, size_t nHalf, uint8_t* pWork, uint8_t* pOut) noexcept {
  WindowRow(pIn, nCount, nHalf, pWork, pOut, [](uint8_t nA, uint8_t nB) { return std::min(nA, nB); });
}

void MaxWindowRow(const uint8_t* pIn, size_t nCount, size_t nHalf, uint8_t* pWork, uint8_t* pOut) noexcept {
  WindowRow(pIn, nCount, nHalf, pWork, pOut, [](uint8_t nA, uint8_t nB) { return std::max(nA, nB); });
}

template <typename T>
void WeightRows(const T* pIn, const size_t* pOffsets, const int32_t* pTaps, size_t nTaps, int32_t* pLine,
                size_t nCount) noexcept {
  for (size_t i = 0; i < nCount; ++i) {
    uint32_t nSum = 0;
    for (size_t k = 0; k < nTaps; ++k) {
      nSum += static_cast<uint32_t>(pTaps[k]) * static_cast<uint32_t>(pIn[pOffsets[k] + i]);
    }
    pLine[i] = static_cast<int32_t>(nSum);
  }
}
template WeightedRows<uint8_t> WeightRows<uint8_t>;
template WeightedRows<int8_t> WeightRows<int8_t>;

void WeightLine(const int32_t* pLine, const int32_t* pTaps, size_t nTaps, int32_t* pSums,
                size_t nCount) noexcept {
  for (size_t i = 0; i < nCount; ++i) {
    uint32_t nSum = 0;
    for (size_t k = 0; k < nTaps; ++k) {
      nSum += static_cast<uint32_t>(pTaps[k]) * static_cast<uint32_t>(pLine[i + k]);
    }
    pSums[i] = static_cast<int32_t>(nSum);
  }
}

void BelowBitsRow(const uint8_t* pIn, uint64_t* pBits, size_t nCount, uint8_t nLimit) noexcept {
  std::fill_n(pBits, (nCount + 63) / 64, uint64_t{0});
  for (size_t i = 0; i < nCount; ++i) pBits[i / 64] |= static_cast<uint64_t>(pIn[i] < nLimit) << (i % 64);
}

void BytesOfBitsRow(const uint64_t* pBits, uint8_t* pOut, size_t nCount) noexcept {
  for (size_t i = 0; i < nCount; ++i) pOut[i] = (pBits[i / 64] >> (i % 64) & 1) != 0 ? 255 : 0;
}

void ReverseRow(const uint8_t* pIn, uint8_t* pOut, size_t nCount) noexcept {
  std::reverse_copy(pIn, pIn + nCount, pOut);
}

void ScaleDownRow(const uint8_t* pUpper, const uint8_t* pLower, size_t nCells, uint8_t* pMean, uint8_t* pMax,
                  uint8_t* pMin) noexcept {
  for (size_t i = 0; i < nCells; ++i) {
    const uint8_t nA = pUpper[2 * i], nB = pUpper[2 * i + 1], nC = pLower[2 * i], nD = pLower[2 * i + 1];
    pMean[i] = static_cast<uint8_t>((nA + nB + nC + nD) >> 2);
    pMax[i] = std::max(std::max(nA, nB), std::max(nC, nD));
    pMin[i] = std::min(std::min(nA, nB), std::min(nC, nD));
  }
}

void ScaleUpRow(const uint8_t* pIn, uint8_t* pOut, size_t nCount) noexcept {
  for (size_t i = 0; i < nCount; ++i) pOut[2 * i] = pOut[2 * i + 1] = pIn[i];
}

void PhaseSumsRow(const uint8_t* pIn, size_t nCount, size_t nHalf, uint16_t*, uint16_t* pSums) noexcept {
  for (size_t nPhase = 0; nPhase < 2; ++nPhase) {
    unsigned nSum = 0;
    for (size_t i = nPhase; i < std::min(2 * nHalf, nCount); i += 2) nSum += pIn[i];
    for (size_t i = nPhase; i < nCount; i += 2) {
      if (i + 2 * nHalf < nCount) nSum += pIn[i + 2 * nHalf];
      if (i > 2 * nHalf + 1) nSum -= pIn[i - 2 * nHalf - 2];
      pSums[i] = static_cast<uint16_t>(nSum);
    }
  }
}

void BalancePairRow(const BalancePair& oPair, size_t nCount) noexcept {
  for (size_t nCell = 0; nCell + 2 <= nCount; nCell += 2) {
    int aMeans[4];
    for (size_t k = 0; k < 4; ++k) {
      const size_t i = nCell + k % 2;
      uint32_t& nSum = oPair.m_apSums[k / 2][i];
      nSum += static_cast<uint32_t>(oPair.m_apEnter[k / 2][i]) - oPair.m_apLeave[k / 2][i];
      const auto nArea = static_cast<uint32_t>(std::lround(1 / oPair.m_pPerArea[i]));
      aMeans[k] = static_cast<int>(nSum / nArea) + 1;
    }
    const int nTarget = (aMeans[0] + aMeans[1] + aMeans[2] + aMeans[3]) / 4;
    for (size_t k = 0; k < 4; ++k) {
      const size_t i = nCell + k % 2;
      const int nResult = (oPair.m_apIn[k / 2][i] + 1) * nTarget / aMeans[k] - 1;
      oPair.m_apOut[k / 2][i] = static_cast<uint8_t>(std::min(std::max(nResult, 0), 255));
    }
  }
}

void WarpRow(const WarpMapEntry* pMap, size_t nCount, const uint8_t* pSource, size_t nRowBytes,
             const int16_t (*pWeights)[4][4], uint8_t nBackground, uint8_t* pOut) noexcept {
  for (size_t i = 0; i < nCount; ++i) {
    if (pMap[i].m_nOffset < 0) {
      pOut[i] = nBackground;
      continue;
    }
    const uint8_t* pWindow = pSource + pMap[i].m_nOffset;
    const int16_t(&aWeights)[4][4] = pWeights[pMap[i].m_nPhase];
    int32_t nSum = 1023;
    for (size_t r = 0; r < 4; ++r) {
      for (size_t k = 0; k < 4; ++k) nSum += aWeights[r][k] * pWindow[r * nRowBytes + k];
    }
    pOut[i] = static_cast<uint8_t>(std::min(std::max(nSum >> 10, 0), 255));
  }
}

void WarpGroupsRow(const WarpGroup* pMap, size_t nCount, const uint8_t* pSource, size_t nRowBytes,
                   const int16_t (*pWeights)[4][4], uint8_t nBackground, uint8_t* pOut) noexcept {
  for (size_t i = 0; i < nCount; ++i) {
    const WarpMapEntry oEntry = EntryOf(pMap[i / 4], i % 4, nRowBytes);
    WarpRow(&oEntry, 1, pSource, nRowBytes, pWeights, nBackground, pOut + i);
  }
}

void TextureClassRow(const uint8_t* pAbove, const uint8_t* pCentre, const uint8_t* pBelow, uint8_t* pOut,
                     size_t nCount, const uint8_t* pClasses) noexcept {
  for (size_t i = 0; i < nCount; ++i) {
    const uint8_t nCentre = pCentre[i];
    const int nPattern = (pAbove[i] > nCentre ? 1 : 0) | (pCentre[i + 1] > nCentre ? 2 : 0) |
                         (pBelow[i] > nCentre ? 4 : 0) | (*(pCentre + i - 1) > nCentre ? 8 : 0);
    pOut[i] = pClasses[nPattern];
  }
}

}  // namespace MXKernels::Reference
