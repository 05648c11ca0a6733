// Vector variants of the kernels that put rolled prints together, and those that have no other form.
#include "MXKernels/RollRows.h"

#include <algorithm>

#include "KernelTargets.h"
#include "MXKernels/Reference.h"

#define HWY_TARGET_INCLUDE "RollRows.cpp"
#include <hwy/foreach_target.h>

#include "Elementwise-inl.h"

#if MXKERNELS_VECTOR_TARGET
HWY_BEFORE_NAMESPACE();
namespace MXKernels::HWY_NAMESPACE {

void WeightedBlendRow(const uint8_t* pIn, const uint8_t* pWeight, uint8_t* pInOut, size_t nCount) noexcept {
  const auto Half = [=](HalfBytes d, size_t i) HWY_ATTR {
    const hn::Rebind<uint16_t, HalfBytes> d16;
    const auto vWeight = hn::PromoteTo(d16, hn::LoadU(d, pWeight + i));
    // A blend of bytes is 65025 at most.
    return NarrowToBytes(
        d, DivideBy255(hn::PromoteTo(d16, hn::LoadU(d, pIn + i)) * vWeight +
                       hn::PromoteTo(d16, hn::LoadU(d, pInOut + i)) * (hn::Set(d16, 255) - vWeight)));
  };
  if (!ForEachVector(Bytes(), ByHalves(Half), pInOut, nCount)) {
    Reference::WeightedBlendRow(pIn, pWeight, pInOut, nCount);
  }
}

void BelowRow(const uint8_t* pIn, const uint8_t* pLimit, uint8_t* pOut, size_t nCount) noexcept {
  ForEachPair(pIn, pLimit, pOut, nCount, Reference::BelowRow, [](auto vIn, auto vLimit) HWY_ATTR {
    const Bytes d;
    // x86 has no unsigned comparison of bytes, but an unsigned maximum.
    const auto bAtLeast = hn::Max(vIn, vLimit) == vIn;
    return hn::IfThenElse(bAtLeast, hn::Zero(d), hn::Set(d, 255));
  });
}

}  // namespace MXKernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
#endif

#if HWY_ONCE
namespace MXKernels {

MXKERNELS_KERNEL(WeightedBlendRow);
MXKERNELS_KERNEL(BelowRow);

size_t CountBothBelowWhite(const uint8_t* pA, const uint8_t* pB, size_t nCount) noexcept {
  size_t nBelow = 0;
  for (size_t i = 0; i < nCount; ++i) nBelow += (pA[i] < 255) & (pB[i] < 255);
  return nBelow;
}

void SquaredDifferenceWhere(const uint8_t* pA, const uint8_t* pB, const uint8_t* pFirstMask,
                            const uint8_t* pSecondMask, size_t nCount, MaskedDifference& rTotal) noexcept {
  // Compilers turn these 32-bit sums into vectors; they hold 65536 terms of at most 65025.
  constexpr size_t cnBlock = 65536;
  for (size_t nBegin = 0; nBegin < nCount; nBegin += cnBlock) {
    const size_t nEnd = std::min(nCount, nBegin + cnBlock);
    uint32_t nSum = 0;
    uint32_t nTaken = 0;
    for (size_t i = nBegin; i < nEnd; ++i) {
      const uint32_t nTakes = (pFirstMask[i] & pSecondMask[i]) == 255;
      const int nDifference = pA[i] - pB[i];
      nSum += nTakes * static_cast<uint32_t>(nDifference * nDifference);
      nTaken += nTakes;
    }
    rTotal.m_nSum += nSum;
    rTotal.m_nCount += nTaken;
  }
}

}  // namespace MXKernels
#endif
