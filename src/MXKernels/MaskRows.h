// The row function of the finger mask's texture classes.
#pragma once

#include "MXKernels/Kernel.h"

namespace MXKernels {

/// pOut[i] = pClasses[pattern]. Bit 0 of the pattern is set when pAbove[i] is greater than pCentre[i], bit 1
/// when pCentre[i + 1] is, bit 2 when pBelow[i] is, bit 3 when pCentre[i - 1] is. Reads pCentre[-1] and
/// pCentre[nCount] as well. pClasses has 16 entries. No overlap.
extern const TpKernel<void(const uint8_t* pAbove, const uint8_t* pCentre, const uint8_t* pBelow,
                           uint8_t* pOut, size_t nCount, const uint8_t* pClasses) noexcept>
    TextureClassRow;

}  // namespace MXKernels
