// Row functions that look for runs of samples.
#pragma once

#include "MXKernels/Kernel.h"

namespace MXKernels {

/// (pIn, pOut, nCount, nLimit): bit i % 64 of pOut[i / 64] is set when pIn[i] < nLimit, for i in [0, nCount).
///
/// pOut has (nCount + 63) / 64 words; the bits from nCount on are 0.
extern const TpKernel<OneRow<uint8_t, uint64_t, uint8_t>> BelowBitsRow;

}  // namespace MXKernels
