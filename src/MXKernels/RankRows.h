// Row functions of the minimum and maximum filters.
#pragma once

#include "MXKernels/Kernel.h"

namespace MXKernels {

/// pOut[i] = the smaller (larger) of pA[i] and pB[i]. pOut may equal either input.
extern const TpKernel<TwoRows<uint8_t>> MinRows, MaxRows;

using RankWindow = void(const uint8_t* pIn, size_t nCount, size_t nHalf, uint8_t* pWork,
                        uint8_t* pOut) noexcept;

/// pOut[x] = the smallest (largest) of pIn[x - nHalf .. x + nHalf], the window clipped to
/// [0, nCount). pOut may equal pIn.
///
/// pWork is scratch of nCount + 2 * nHalf bytes.
/// Cost   some log2 of the window width passes over the row.
extern const TpKernel<RankWindow> MinWindowRow, MaxWindowRow;

}  // namespace MXKernels
