// Row functions that put rolled prints together and compare their frames.
#pragma once

#include "MXKernels/Kernel.h"

namespace MXKernels {

/// Common to all kernels of this header: any alignment; nothing but [0, nCount) is read or written.

/// pOut[i] = (pA[i] * pB[i] + pOut[i] * (255 - pB[i])) / 255, the division truncated: pB weighs pA.
extern const TpKernel<TwoRows<uint8_t>> WeightedBlendRow;

/// Sum of (pA[i] - pB[i])^2 over the i of [0, nCount) whose bits i % 64 of the words i / 64 are both set.
extern const TpKernel<uint64_t(const uint8_t* pA, const uint8_t* pB, const uint64_t* pBitsA,
                               const uint64_t* pBitsB, size_t nCount) noexcept>
    SquaredDifferenceWhere;

}  // namespace MXKernels
