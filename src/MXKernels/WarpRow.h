// The row functions of the geometric warp: a map of source positions and a table of 4 by 4 weights.
#pragma once

#include "MXKernels/Kernel.h"

namespace MXKernels {

/// Where an output sample comes from: the byte offset of the top left of its 4 by 4 window in the
/// source, or a negative number for none, and the index of its weights.
struct WarpMapEntry {
  int32_t m_nOffset;
  uint32_t m_nPhase;
};

/// The same for four samples whose windows lie near each other in the source.
struct WarpGroup {
  uint32_t m_nBase;  ///< byte offset of the group; with cnLooseGroup, unless its windows lie side by side
  uint16_t m_aWeights[4];  ///< 32 times the phase, or cnNoWeights for none
  uint8_t m_aSteps[4];     ///< 32 times the columns and 1 times the rows from the group to the window
};
/// Of windows side by side, all are in the row of the base, none begins more than 4 columns after it, and the
/// source has 8 bytes from the base on in each of the four rows.
constexpr uint32_t cnLooseGroup = 0x80000000;
constexpr uint16_t cnNoWeights = 0xFFFF;

/// Common to both: pOut[i] = clip((1023 + sum of w[r][k] * P[r][k]) >> 10) with w the weights of the phase
/// and P[r][k] the source byte at offset + r * nRowBytes + k; nBackground where there is none.
///
/// Domain  every window of the map lies inside the source, every phase inside the table; the sum of
///         |weights| of an entry stays below 2^22. pOut doesn't overlap the source.
extern const TpKernel<void(const WarpMapEntry* pMap, size_t nCount, const uint8_t* pSource, size_t nRowBytes,
                           const int16_t (*pWeights)[4][4], uint8_t nBackground, uint8_t* pOut) noexcept>
    WarpRow;
/// nCount samples of whole groups; of the last group maybe only the first samples.
extern const TpKernel<void(const WarpGroup* pMap, size_t nCount, const uint8_t* pSource, size_t nRowBytes,
                           const int16_t (*pWeights)[4][4], uint8_t nBackground, uint8_t* pOut) noexcept>
    WarpGroupsRow;

/// The entry of the sample n of a group.
inline WarpMapEntry EntryOf(const WarpGroup& oGroup, size_t n, size_t nRowBytes) noexcept {
  if (oGroup.m_aWeights[n] == cnNoWeights) return {-1, 0};
  const size_t nStep = oGroup.m_aSteps[n];
  const size_t nOffset = (oGroup.m_nBase & ~cnLooseGroup) + nStep % 32 * nRowBytes + nStep / 32;
  return {static_cast<int32_t>(nOffset), oGroup.m_aWeights[n] / 32U};
}

}  // namespace MXKernels
