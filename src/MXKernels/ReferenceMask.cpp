// The plain twins of the finger mask's kernels.
#include <algorithm>
#include <cmath>
#include <numeric>

#include "MXKernels/Reference.h"

namespace MXKernels::Reference {

void MoveClassCountsRow(const uint8_t* pEnter, const uint8_t* pLeave, uint8_t* pCounts, uint8_t* pTriples,
                        size_t nStride, size_t nCount) noexcept {
  for (size_t i = 0; i < nCount; ++i) {
    if (pEnter[i] == pLeave[i]) continue;
    // The uncounted classes wrap to large numbers.
    const size_t nMore = pEnter[i] - size_t{1}, nLess = pLeave[i] - size_t{1};
    if (nMore < cnCountedClasses) ++pCounts[nMore * nStride + i];
    if (nLess < cnCountedClasses) --pCounts[nLess * nStride + i];
  }
  for (size_t k = 0; k < cnCountedClasses; ++k) {
    const uint8_t* pCount = pCounts + k * nStride - cnTextureHalf;
    uint8_t* pTriple = pTriples + k * nStride;
    for (size_t i = 0; i < nCount + 12; ++i) {
      pTriple[i] = static_cast<uint8_t>(pCount[i] + pCount[i + 1] + pCount[i + 2]);
    }
  }
}

void TextureDistanceRow(const TextureWindows& oWindows, const uint8_t* pSignal,
                        const BrightnessLimits& oLimits, uint16_t* pDistance, size_t nCount) noexcept {
  for (size_t i = 0; i < nCount; ++i) {
    if (pSignal[i] < oLimits.m_nBack || pSignal[i] > oLimits.m_nFront) {
      pDistance[i] = pSignal[i] < oLimits.m_nBack ? oLimits.m_nLimit : uint16_t{0};
      continue;
    }
    uint32_t nSum = 0;
    const auto AddClass = [&](uint8_t nPixels, size_t nClass) {
      const uint32_t nShare = uint32_t{nPixels} * 4 * oWindows.m_pFactors[i] >> 16;
      const int nDifference = static_cast<int>(nShare) - oWindows.m_pReference[nClass];
      nSum += static_cast<uint32_t>(nDifference * nDifference) / 6;
    };
    uint8_t nRest = oWindows.m_pInner[i];
    const uint8_t* p = oWindows.m_pTriples + i;
    for (size_t n = 1; n <= cnCountedClasses; ++n, p += oWindows.m_nStride) {
      const auto nPixels = static_cast<uint8_t>(p[0] + p[3] + p[6] + p[9] + p[12]);
      nRest = static_cast<uint8_t>(nRest - nPixels);
      AddClass(nPixels, n);
    }
    AddClass(nRest, 0);
    pDistance[i] = static_cast<uint16_t>(std::sqrt(static_cast<double>(nSum)) * 256);
  }
}

bool BelowLimitRow(const uint32_t* pSums, size_t nWidth, const uint32_t* pLimits, uint32_t, uint32_t*,
                   uint8_t* pOut, size_t nCount) noexcept {
  bool bAny = false;
  uint32_t nSum = std::accumulate(pSums, pSums + nWidth - 1, 0U);
  for (size_t i = 0; i < nCount; ++i) {
    nSum += pSums[i + nWidth - 1];
    pOut[i] = nSum < pLimits[i] ? 255 : 0;
    bAny = bAny || nSum < pLimits[i];
    nSum -= pSums[i];
  }
  return bAny;
}

void PrefixSumsRow(const uint16_t* pSums, uint32_t* pPrefix, size_t nCount) noexcept {
  pPrefix[0] = 0;
  for (size_t i = 0; i < nCount; ++i) pPrefix[i + 1] = pPrefix[i] + pSums[i];
}

void FogRow(const FogWindows& oWindows, int32_t nFog, uint8_t* pMask, size_t nCount) noexcept {
  const auto TwiceTheMean = [](uint32_t nSum, float fFactor) {
    return static_cast<int32_t>((static_cast<float>(nSum) + 0.25F) * fFactor);
  };
  for (size_t i = 0; i < nCount; ++i) {
    if (pMask[i] == 0) continue;
    const uint16_t* pNear = oWindows.m_pNear + i;
    const uint32_t nNear = std::accumulate(pNear, pNear + oWindows.m_nNearWidth, 0U);
    const uint32_t nFar = oWindows.m_pFar[i + oWindows.m_nFarWidth] - oWindows.m_pFar[i];
    if (TwiceTheMean(nNear, oWindows.m_pNearFactors[i]) * 100 <=
        TwiceTheMean(nFar, oWindows.m_pFarFactors[i]) * nFog) {
      pMask[i] = 0;
    }
  }
}

void MoveZerosRow(const uint8_t* pEnter, const uint8_t* pLeave, uint8_t* pCounts, size_t nCount) noexcept {
  for (size_t i = 0; i < nCount; ++i) {
    pCounts[i] = static_cast<uint8_t>(pCounts[i] + (pEnter[i] == 0 ? 1 : 0) - (pLeave[i] == 0 ? 1 : 0));
  }
}

void FewZerosRow(const uint8_t* pCounts, size_t nWidth, const uint8_t* pLimits, uint8_t*, uint8_t* pOut,
                 size_t nCount) noexcept {
  uint32_t nSum = std::accumulate(pCounts, pCounts + nWidth - 1, 0U);
  for (size_t i = 0; i < nCount; ++i) {
    nSum += pCounts[i + nWidth - 1];
    pOut[i] = nSum <= pLimits[i] ? 255 : 0;
    nSum -= pCounts[i];
  }
}

namespace {

template <typename TPick>
void RankOf7(const uint8_t* const* ppRows, uint8_t* pWork, uint8_t* pOut, size_t nCount,
             const TPick& fnPick) noexcept {
  std::copy(ppRows[0], ppRows[0] + nCount, pWork);
  for (size_t k = 1; k < 7; ++k) std::transform(pWork, pWork + nCount, ppRows[k], pWork, fnPick);
  std::copy(pWork, pWork + nCount, pOut);
  for (size_t k = 1; k <= std::min<size_t>(3, nCount); ++k) {
    std::transform(pOut, pOut + nCount - k, pWork + k, pOut, fnPick);
    std::transform(pOut + k, pOut + nCount, pWork, pOut + k, fnPick);
  }
}

}  // namespace

void MinOf7RowsRow(const uint8_t* const* ppRows, uint8_t* pWork, uint8_t* pOut, size_t nCount) noexcept {
  RankOf7(ppRows, pWork, pOut, nCount, [](uint8_t nA, uint8_t nB) { return std::min(nA, nB); });
}

void MaxOf7RowsRow(const uint8_t* const* ppRows, uint8_t* pWork, uint8_t* pOut, size_t nCount) noexcept {
  RankOf7(ppRows, pWork, pOut, nCount, [](uint8_t nA, uint8_t nB) { return std::max(nA, nB); });
}

void FadeRow(uint8_t* pInOut, uint32_t nFactor, size_t nCount) noexcept {
  for (size_t i = 0; i < nCount; ++i) pInOut[i] = static_cast<uint8_t>(pInOut[i] * nFactor >> 16);
}

void MoveLimitedSumsRow(const uint8_t* pEnter, const uint8_t* pLeave, uint16_t* pSums, size_t nCount,
                        uint8_t nMost) noexcept {
  for (size_t i = 0; i < nCount; ++i) {
    pSums[i] = static_cast<uint16_t>(pSums[i] + std::min(pEnter[i], nMost) - std::min(pLeave[i], nMost));
  }
}

void MeanOf7Row(const uint16_t* pSums, const uint16_t* pFactors, uint8_t* pOut, size_t nCount) noexcept {
  uint32_t nSum = std::accumulate(pSums, pSums + 6, 0U);
  for (size_t i = 0; i < nCount; ++i) {
    nSum += pSums[i + 6];
    pOut[i] = static_cast<uint8_t>(nSum * pFactors[i] >> 19);
    nSum -= pSums[i];
  }
}

void SoftRow(const SoftWindows& oWindows, uint8_t* pOut, size_t nCount) noexcept {
  for (size_t i = 0; i < nCount; ++i) {
    const uint8_t* pZeros = oWindows.m_pZeros + i + 1;
    const uint32_t nSet = oWindows.m_pAreas[i] - std::accumulate(pZeros, pZeros + 7, 0U);
    pOut[i] = static_cast<uint8_t>(nSet * 16 * oWindows.m_pFactors[i] >> 16);
  }
}

void DoubledSoftRow(const SoftWindows& oWindows, uint8_t* pOut, size_t nCount) noexcept {
  for (size_t i = 0; i < nCount; ++i) {
    const uint8_t* pZeros = oWindows.m_pZeros + i;
    const uint32_t nTwice = 2 * std::accumulate(pZeros + 1, pZeros + 8, 0U);
    for (size_t k = 0; k < 2; ++k) {
      const uint32_t nSet = oWindows.m_pAreas[2 * i + k] - nTwice - pZeros[8 * k];
      pOut[2 * i + k] = static_cast<uint8_t>(nSet * 4 * oWindows.m_pFactors[2 * i + k] >> 16);
    }
  }
}

void DoubleZerosRow(const uint8_t* pCounts, const uint8_t* pOther, uint8_t* pSums, size_t nCount) noexcept {
  for (size_t i = 0; i < nCount; ++i) {
    pSums[i] = static_cast<uint8_t>(2 * pCounts[i] + (pOther[i] == 0 ? 1 : 0));
  }
}

void FlattenRow(const uint8_t* pSignal, const uint8_t* pEnvelope, const uint8_t* pSoft, uint8_t* pOut,
                size_t nCount) noexcept {
  for (size_t i = 0; i < nCount; ++i) {
    const int nFlat = std::min(pSignal[i] * 255 / std::max<int>(pEnvelope[i], 1), 255);
    pOut[i] = static_cast<uint8_t>(255 - nFlat * pSoft[i] / 255);
  }
}

}  // namespace MXKernels::Reference
