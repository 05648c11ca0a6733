// Row functions that divide a frame by a reference: brightness and local white balance.
#pragma once

#include "MXKernels/Kernel.h"

namespace MXKernels {

/// (pIn, pReference, pOut, nCount, nValue, nMinimum): pOut[i] = pIn[i] * nValue / max(pReference[i],
/// nMinimum), truncated and limited to 255. nMinimum >= 1. pOut may equal either input.
extern const TpKernel<TwoRows<uint8_t, uint8_t, uint8_t, uint8_t>> AdjustBrightnessRow;

}  // namespace MXKernels
