// Row functions of the linear filters: weighted sums of rows and of neighbours in a row.
#pragma once

#include <cstddef>
#include <cstdint>

namespace MXKernels {

/// pLine[i] = sum over k in [0, nTaps) of pTaps[k] * pIn[pOffsets[k] + i], modulo 2^32.
void WeightRowsU8(const uint8_t* pIn, const size_t* pOffsets, const int32_t* pTaps, size_t nTaps,
                  int32_t* pLine, size_t nCount) noexcept;
void WeightRowsI8(const int8_t* pIn, const size_t* pOffsets, const int32_t* pTaps, size_t nTaps,
                  int32_t* pLine, size_t nCount) noexcept;

/// pSums[i] = sum over k in [0, nTaps) of pTaps[k] * pLine[i + k], modulo 2^32. No overlap.
void WeightLine(const int32_t* pLine, const int32_t* pTaps, size_t nTaps, int32_t* pSums,
                size_t nCount) noexcept;

}  // namespace MXKernels
