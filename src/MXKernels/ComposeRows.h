// Row functions that put the finger mask's picture together: soft mask, even contrast, blend.
#pragma once

#include "MXKernels/Kernel.h"

namespace MXKernels {

/// Windows that lie along counts of the zeros in each column of a binary mask. pZeros has the columns from 4
/// before the first pixel to 4 beyond the last; those outside the image count 0.
struct SoftWindows {
  const uint8_t* m_pZeros;
  const uint8_t* m_pAreas;     ///< pixels of each window
  const uint16_t* m_pFactors;  ///< SoftFactor or TextureFactor of them
};

/// count * 16 * factor / 65536 is 255 * count / nArea, truncated, for windows of 4 to 7 by 4 to 7 pixels.
constexpr uint16_t SoftFactor(uint32_t nArea) {
  return static_cast<uint16_t>((255U * 4096U + nArea - 1) / nArea);
}

/// pOut[i] = 255 * (area - zeros) / area of the window of 7 columns around i, truncated.
extern const TpKernel<void(const SoftWindows& oWindows, uint8_t* pOut, size_t nCount) noexcept> SoftRow;

/// The same for the windows of 15 columns of a mask whose columns are doubled: 2 * nCount samples, areas and
/// factors, the latter of TextureFactor. Areas are 225 at most.
extern const TpKernel<void(const SoftWindows& oWindows, uint8_t* pOut, size_t nCount) noexcept>
    DoubledSoftRow;

/// pSums[i] = 2 * pCounts[i] + (pOther[i] == 0).
extern const TpKernel<TwoRows<uint8_t>> DoubleZerosRow;

/// pOut[i] = 255 - flat * pSoft[i] / 255 with flat = pSignal[i] * 255 / max(pEnvelope[i], 1), 255 at most;
/// the divisions truncate. pOut may be one of the inputs.
extern const TpKernel<void(const uint8_t* pSignal, const uint8_t* pEnvelope, const uint8_t* pSoft,
                           uint8_t* pOut, size_t nCount) noexcept>
    FlattenRow;

}  // namespace MXKernels
