// Vector variant of the warp's kernel: sixteen products a sample, the sums of four samples added at once.
#include "MXKernels/WarpRow.h"

#include <cstring>

#include "KernelTargets.h"
#include "MXKernels/Reference.h"

#define HWY_TARGET_INCLUDE "WarpRow.cpp"
#include <hwy/foreach_target.h>

#include "Elementwise-inl.h"

#if MXKERNELS_VECTOR_TARGET
HWY_BEFORE_NAMESPACE();
namespace MXKernels::HWY_NAMESPACE {

using Bytes16 = hn::FixedTag<uint8_t, 16>;
using Words4 = hn::FixedTag<int32_t, 4>;

HWY_INLINE uint32_t LoadWord(const uint8_t* p) {
  uint32_t nWord;
  std::memcpy(&nWord, p, sizeof(nWord));
  return nWord;
}

/// The 4 by 4 window as 16 bytes, row after row.
HWY_INLINE hn::Vec<Bytes16> LoadWindow(const uint8_t* pWindow, size_t nRowBytes) {
  const hn::FixedTag<uint32_t, 4> d32;
  const hn::FixedTag<uint64_t, 2> d64;
  const auto vRow0 = hn::Set(d32, LoadWord(pWindow));
  const auto vRow1 = hn::Set(d32, LoadWord(pWindow + nRowBytes));
  const auto vRow2 = hn::Set(d32, LoadWord(pWindow + 2 * nRowBytes));
  const auto vRow3 = hn::Set(d32, LoadWord(pWindow + 3 * nRowBytes));
  const auto vUpper = hn::BitCast(d64, hn::InterleaveLower(d32, vRow0, vRow1));
  const auto vLower = hn::BitCast(d64, hn::InterleaveLower(d32, vRow2, vRow3));
  return hn::BitCast(Bytes16(), hn::InterleaveLower(d64, vUpper, vLower));
}

/// Four partial sums that together are the weighted sum of the window; 0 for a sample without a source.
HWY_INLINE hn::Vec<Words4> PartialSums(const WarpMapEntry& oEntry, const uint8_t* pSource, size_t nRowBytes,
                                       const int16_t (*pWeights)[4][4]) {
  const Words4 d32;
  const hn::FixedTag<int16_t, 8> d16;
  auto vSums = hn::Zero(d32);
  if (oEntry.m_nOffset < 0) return vSums;
  const auto vWindow = LoadWindow(pSource + oEntry.m_nOffset, nRowBytes);
  const hn::Half<Bytes16> dHalf;
  const int16_t* pW = &pWeights[oEntry.m_nPhase][0][0];
  auto vHigh = hn::Zero(d32);
  vSums = hn::ReorderWidenMulAccumulate(d32, hn::PromoteTo(d16, hn::LowerHalf(dHalf, vWindow)),
                                        hn::LoadU(d16, pW), vSums, vHigh);
  vSums = hn::ReorderWidenMulAccumulate(d32, hn::PromoteTo(d16, hn::UpperHalf(dHalf, vWindow)),
                                        hn::LoadU(d16, pW + 8), vSums, vHigh);
  return vSums + vHigh;
}

void WarpRow(const WarpMapEntry* pMap, size_t nCount, const uint8_t* pSource, size_t nRowBytes,
             const int16_t (*pWeights)[4][4], uint8_t nBackground, uint8_t* pOut) noexcept {
  const Words4 d32;
  const hn::FixedTag<int64_t, 2> d64;
  const hn::Rebind<uint8_t, Words4> d8;
  const auto vRounding = hn::Set(d32, 1023);
  size_t i = 0;
  for (; i + 4 <= nCount; i += 4) {
    const WarpMapEntry* p = pMap + i;
    const auto vA = PartialSums(p[0], pSource, nRowBytes, pWeights);
    const auto vB = PartialSums(p[1], pSource, nRowBytes, pWeights);
    const auto vC = PartialSums(p[2], pSource, nRowBytes, pWeights);
    const auto vD = PartialSums(p[3], pSource, nRowBytes, pWeights);
    // Two halvings bring the total of each sample into its lane.
    const auto vAB = hn::InterleaveLower(d32, vA, vB) + hn::InterleaveUpper(d32, vA, vB);
    const auto vCD = hn::InterleaveLower(d32, vC, vD) + hn::InterleaveUpper(d32, vC, vD);
    const auto vSum =
        hn::BitCast(d32, hn::InterleaveLower(d64, hn::BitCast(d64, vAB), hn::BitCast(d64, vCD))) +
        hn::BitCast(d32, hn::InterleaveUpper(d64, hn::BitCast(d64, vAB), hn::BitCast(d64, vCD)));
    hn::StoreU(LimitToBytes(d8, hn::ShiftRight<10>(vSum + vRounding)), d8, pOut + i);
    if (HWY_UNLIKELY((p[0].m_nOffset | p[1].m_nOffset | p[2].m_nOffset | p[3].m_nOffset) < 0)) {
      for (size_t k = 0; k < 4; ++k) {
        if (p[k].m_nOffset < 0) pOut[i + k] = nBackground;
      }
    }
  }
  Reference::WarpRow(pMap + i, nCount - i, pSource, nRowBytes, pWeights, nBackground, pOut + i);
}

}  // namespace MXKernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
#endif

#if HWY_ONCE
namespace MXKernels {

MXKERNELS_KERNEL(WarpRow);

}  // namespace MXKernels
#endif
