// Row functions of the linear filters: weighted sums of rows and of neighbours in a row.
#pragma once

#include "MXKernels/Kernel.h"

namespace MXKernels {

template <typename T>
using WeightedRows = void(const T* pIn, const size_t* pOffsets, const int32_t* pTaps, size_t nTaps,
                          int32_t* pLine, size_t nCount) noexcept;

/// pLine[i] = sum over k in [0, nTaps) of pTaps[k] * pIn[pOffsets[k] + i], modulo 2^32.
extern const TpKernel<WeightedRows<uint8_t>, WeightedRows<int8_t>> WeightRows;

/// pSums[i] = sum over k in [0, nTaps) of pTaps[k] * pLine[i + k], modulo 2^32. No overlap.
extern const TpKernel<void(const int32_t* pLine, const int32_t* pTaps, size_t nTaps, int32_t* pSums,
                           size_t nCount) noexcept>
    WeightLine;

}  // namespace MXKernels
