// The row function of the geometric warp: a map of source positions and a table of 4 by 4 weights.
#pragma once

#include "MXKernels/Kernel.h"

namespace MXKernels {

/// Where an output sample comes from: the byte offset of the top left of its 4 by 4 window in the
/// source, or a negative number for none, and the index of its weights.
struct WarpMapEntry {
  int32_t m_nOffset;
  uint32_t m_nPhase;
};

/// pOut[i] = clip((1023 + sum of w[r][k] * P[r][k]) >> 10) with w the weights of pMap[i].m_nPhase and
/// P[r][k] the source byte at m_nOffset + r * nRowBytes + k; nBackground where m_nOffset is negative.
///
/// Domain  every window of the map lies inside the source, every phase inside the table; the sum of
///         |weights| of an entry stays below 2^22. pOut doesn't overlap the source.
extern const TpKernel<void(const WarpMapEntry* pMap, size_t nCount, const uint8_t* pSource, size_t nRowBytes,
                           const int16_t (*pWeights)[4][4], uint8_t nBackground, uint8_t* pOut) noexcept>
    WarpRow;

}  // namespace MXKernels
