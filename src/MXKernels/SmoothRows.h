// Row functions of the finger mask's signal: extremes and means of windows of 7 by 7 pixels, fades.
#pragma once

#include "MXKernels/Kernel.h"

namespace MXKernels {

using RankOf7Rows = void(const uint8_t* const* ppRows, uint8_t* pWork, uint8_t* pOut, size_t nCount) noexcept;

/// pOut[i] = the smallest (largest) sample of the columns i - 3 to i + 3 of seven rows, clipped to
/// [0, nCount). A row outside the image is replaced by the nearest one inside.
///
/// pWork is scratch of nCount + 6 bytes. pOut is none of the rows.
extern const TpKernel<RankOf7Rows> MinOf7RowsRow, MaxOf7RowsRow;

/// (pEnter, pLeave, pSums, nCount, nMost): pSums[i] += min(pEnter[i], nMost) - min(pLeave[i], nMost).
extern const TpKernel<TwoRows<uint8_t, uint16_t, uint8_t>> MoveLimitedSumsRow;

/// sum * factor / 2^19 is sum / nArea, truncated, for all sums of samples in windows of 4 to 7 by 4 to 7
/// pixels.
constexpr uint16_t MeanFactor(uint32_t nArea) {
  return static_cast<uint16_t>(((1U << 19) + nArea - 1) / nArea);
}

/// pOut[i] = the sum of pSums[i .. i + 6] * pFactors[i] / 2^19, truncated; MeanFactor makes it the mean.
extern const TpKernel<void(const uint16_t* pSums, const uint16_t* pFactors, uint8_t* pOut,
                           size_t nCount) noexcept>
    MeanOf7Row;

/// sample * factor / 2^16 is sample * nNumerator / nDenominator, truncated, for all bytes;
/// nNumerator < nDenominator <= 256.
constexpr uint16_t FadeFactor(uint32_t nNumerator, uint32_t nDenominator) {
  return static_cast<uint16_t>((nNumerator * 65536 + nDenominator - 1) / nDenominator);
}

/// pInOut[i] = pInOut[i] * nFactor / 2^16, truncated; factors are below 2^16.
extern const TpKernel<void(uint8_t* pInOut, uint32_t nFactor, size_t nCount) noexcept> FadeRow;

}  // namespace MXKernels
