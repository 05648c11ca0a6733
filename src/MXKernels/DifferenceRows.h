// Row functions that follow pictures over time or down their rows: how much changed, sums of rows, what
// stands out.
#pragma once

#include "MXKernels/Kernel.h"

namespace MXKernels {

/// Common to all kernels of this header: any alignment; nothing but [0, nCount) is read or written.

/// Sum over i of (pA[i] - pB[i])^2.
extern const TpKernel<uint64_t(const uint8_t* pA, const uint8_t* pB, size_t nCount) noexcept>
    SquaredDifference;

/// pOut[i] += pIn[i], and pOut[i] -= pIn[i], modulo 2^16 or 2^32.
extern const TpKernel<OneRow<uint8_t, uint16_t>, OneRow<uint8_t, uint32_t>, OneRow<uint16_t, uint32_t>>
    AddToSumsRow, TakeFromSumsRow;

/// pOut[i] += pA[i] - pB[i], modulo 2^16 or 2^32: a window of rows, whose sums pOut are, moves on by one row.
extern const TpKernel<TwoRows<uint8_t, uint16_t>, TwoRows<uint8_t, uint32_t>, TwoRows<uint16_t, uint32_t>>
    MoveSumsRow;

/// (pIn, pMean, pOut, nCount, nLimit): pOut[i] = |pIn[i] - pMean[i]| > nLimit ? 255 : 0. pOut overlaps no
/// input.
extern const TpKernel<TwoRows<uint16_t, uint8_t, uint16_t>> DeviationRow;

/// Subtracts the mean of the last eight pictures from pPicture, whose old samples replace the oldest of them:
/// mean = pSums[i] / 8; pSums[i] += pPicture[i] - pOldest[i], modulo 2^16; pOldest[i] = pPicture[i];
/// pPicture[i] = pPicture[i] > mean ? pPicture[i] - mean : 0. No overlap.
extern const TpKernel<void(uint8_t* pPicture, uint8_t* pOldest, uint16_t* pSums, size_t nCount) noexcept>
    RemoveBackgroundRow;

}  // namespace MXKernels
