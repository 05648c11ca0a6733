// Row functions that treat each sample by itself: difference, distance, limits, threshold and such.
#pragma once

#include "MXKernels/Kernel.h"

namespace MXKernels {

/// Common to all kernels of this header: any alignment; pOut may equal any input, but must not
/// overlap one otherwise; nothing but [0, nCount) is read or written.

/// pOut[i] = pA[i] > pB[i] ? pA[i] - pB[i] : 0.
extern const TpKernel<TwoRows<uint8_t>> SubtractSaturated;

/// pOut[i] = |pA[i] - pB[i]|.
extern const TpKernel<TwoRows<uint8_t>> AbsoluteDifferenceRow;

/// pOut[i] = pA[i] & pB[i].
extern const TpKernel<TwoRows<uint8_t>> AndRow;

/// (pIn, pOut, nCount, nLower, nUpper): pOut[i] = pIn[i] limited to nLower and nUpper; nLower <= nUpper.
extern const TpKernel<OneRow<uint8_t, uint8_t, uint8_t, uint8_t>> ClampRow;

/// (pIn, pOut, nCount, nThreshold, nBelow, nAbove): pOut[i] = pIn[i] < nThreshold ? nBelow : nAbove.
extern const TpKernel<OneRow<uint8_t, uint8_t, uint8_t, uint8_t, uint8_t>> ThresholdRow;

/// (pIn, pOut, nCount, nValue): pOut[i] = pIn[i] == nValue ? 255 : 0.
extern const TpKernel<OneRow<uint8_t, uint8_t, uint8_t>> EqualRow;

/// Adds 1 to pBins[pIn[i]] for each i; 256 bins.
void HistogramRow(const uint8_t* pIn, size_t nCount, int32_t* pBins) noexcept;

}  // namespace MXKernels
