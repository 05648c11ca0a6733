// Vector variants of the kernels that put rolled prints together, and those that have no other form.
#include "MXKernels/RollRows.h"

#include <algorithm>

#include "KernelTargets.h"
#include "MXKernels/Level.h"
#include "MXKernels/Reference.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "RollRows.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "Elementwise-inl.h"

#if MXKERNELS_VECTOR_TARGET
HWY_BEFORE_NAMESPACE();
namespace MXKernels {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

using Bytes = hn::ScalableTag<uint8_t>;

struct RuleWeightedBlend {
  const uint8_t* m_pIn;
  const uint8_t* m_pWeight;
  const uint8_t* m_pInOut;
  template <typename D>
  hn::Vec<D> operator()(D d, size_t i) const {
    return FromHalves(d, i, [this](auto dHalf, size_t j) HWY_ATTR {
      const hn::Rebind<uint16_t, decltype(dHalf)> d16;
      const auto vWeight = hn::PromoteTo(d16, hn::LoadU(dHalf, m_pWeight + j));
      // A blend of bytes is 65025 at most.
      return NarrowToBytes(dHalf, DivideBy255(hn::PromoteTo(d16, hn::LoadU(dHalf, m_pIn + j)) * vWeight +
                                              hn::PromoteTo(d16, hn::LoadU(dHalf, m_pInOut + j)) *
                                                  (hn::Set(d16, 255) - vWeight)));
    });
  }
};

void WeightedBlendRow(const uint8_t* pIn, const uint8_t* pWeight, uint8_t* pInOut, size_t nCount) noexcept {
  if (!ForEachVector(Bytes(), RuleWeightedBlend{pIn, pWeight, pInOut}, pInOut, nCount)) {
    Reference::WeightedBlendRow(pIn, pWeight, pInOut, nCount);
  }
}

struct RuleBelow {
  const uint8_t* m_pIn;
  const uint8_t* m_pLimit;
  template <typename D>
  hn::Vec<D> operator()(D d, size_t i) const {
    const auto vIn = hn::LoadU(d, m_pIn + i);
    // x86 has no unsigned comparison of bytes, but an unsigned maximum.
    const auto bAtLeast = hn::Max(vIn, hn::LoadU(d, m_pLimit + i)) == vIn;
    return hn::IfThenElse(bAtLeast, hn::Zero(d), hn::Set(d, 255));
  }
};

void BelowRow(const uint8_t* pIn, const uint8_t* pLimit, uint8_t* pOut, size_t nCount) noexcept {
  if (!ForEachVector(Bytes(), RuleBelow{pIn, pLimit}, pOut, nCount)) {
    Reference::BelowRow(pIn, pLimit, pOut, nCount);
  }
}

}  // namespace HWY_NAMESPACE
}  // namespace MXKernels
HWY_AFTER_NAMESPACE();
#endif

#if HWY_ONCE
namespace MXKernels {

MXKERNELS_TABLE(WeightedBlendRow);
MXKERNELS_TABLE(BelowRow);

void WeightedBlendRow(const uint8_t* pIn, const uint8_t* pWeight, uint8_t* pInOut, size_t nCount) noexcept {
  MXKERNELS_CALL(WeightedBlendRow)(pIn, pWeight, pInOut, nCount);
}

void BelowRow(const uint8_t* pIn, const uint8_t* pLimit, uint8_t* pOut, size_t nCount) noexcept {
  MXKERNELS_CALL(BelowRow)(pIn, pLimit, pOut, nCount);
}

size_t CountBothBelowWhite(const uint8_t* pA, const uint8_t* pB, size_t nCount) noexcept {
  size_t nBelow = 0;
  for (size_t i = 0; i < nCount; ++i) nBelow += (pA[i] < 255) & (pB[i] < 255);
  return nBelow;
}

void SquaredDifferenceWhere(const uint8_t* pA, const uint8_t* pB, const uint8_t* pFirstMask,
                            const uint8_t* pSecondMask, size_t nCount, MaskedDifference& rTotal) noexcept {
  // Sums of 32 bits in registers, which compilers turn into vectors; 65025 * 65536 fits them.
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
