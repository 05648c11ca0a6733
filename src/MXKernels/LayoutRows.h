// Row functions that move samples: mirror, halve, double.
#pragma once

#include "MXKernels/Kernel.h"

namespace MXKernels {

/// pOut[i] = pIn[nCount - 1 - i]. The rows must not overlap.
extern const TpKernel<OneRow<uint8_t>> ReverseRow;

/// The 2 by 2 cells of two rows: pMean[i] = (sum of the four) >> 2, pMax[i], pMin[i] the largest
/// and the smallest of them, for i in [0, nCells). No overlap.
extern const TpKernel<void(const uint8_t* pUpper, const uint8_t* pLower, size_t nCells, uint8_t* pMean,
                           uint8_t* pMax, uint8_t* pMin) noexcept>
    ScaleDownRow;

/// pOut[2 * i] = pOut[2 * i + 1] = pIn[i] for i in [0, nCount). No overlap.
extern const TpKernel<OneRow<uint8_t>> ScaleUpRow;

}  // namespace MXKernels
