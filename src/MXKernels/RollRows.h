// Row functions that put rolled prints together and compare their frames.
#pragma once

#include "MXKernels/Kernel.h"

namespace MXKernels {

/// Common to all kernels of this header: any alignment; nothing but [0, nCount) is read or written.

/// pOut[i] = (pA[i] * pB[i] + pOut[i] * (255 - pB[i])) / 255, the division truncated: pB weighs pA.
extern const TpKernel<TwoRows<uint8_t>> WeightedBlendRow;

/// pOut[i] = pA[i] < pB[i] ? 255 : 0. pOut may equal any input.
extern const TpKernel<TwoRows<uint8_t>> BelowRow;

/// Number of i for which both pA[i] and pB[i] are below 255.
size_t CountBothBelowWhite(const uint8_t* pA, const uint8_t* pB, size_t nCount) noexcept;

/// What SquaredDifferenceWhere has added up.
struct MaskedDifference {
  uint64_t m_nSum = 0;    ///< of (pA[i] - pB[i])^2
  uint64_t m_nCount = 0;  ///< of the i that took part
};

/// Adds the i for which both pFirstMask[i] and pSecondMask[i] are 255.
void SquaredDifferenceWhere(const uint8_t* pA, const uint8_t* pB, const uint8_t* pFirstMask,
                            const uint8_t* pSecondMask, size_t nCount, MaskedDifference& rTotal) noexcept;

}  // namespace MXKernels
