// Row functions that turn samples to bits, for those who look for runs or count, and back.
#pragma once

#include "MXKernels/Kernel.h"

namespace MXKernels {

/// (pIn, pOut, nCount, nLimit): bit i % 64 of pOut[i / 64] is set when pIn[i] < nLimit, for i in [0, nCount).
///
/// pOut has (nCount + 63) / 64 words; the bits from nCount on are 0.
extern const TpKernel<OneRow<uint8_t, uint64_t, uint8_t>> BelowBitsRow;

/// The way back: pOut[i] = bit i % 64 of pBits[i / 64] is set ? 255 : 0, for i in [0, nCount).
extern const TpKernel<OneRow<uint64_t, uint8_t>> BytesOfBitsRow;

}  // namespace MXKernels
