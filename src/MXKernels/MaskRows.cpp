// Vector variants of the finger mask's kernels.
#include "MXKernels/MaskRows.h"

#include "KernelTargets.h"
#include "MXKernels/Reference.h"

#define HWY_TARGET_INCLUDE "MaskRows.cpp"
#include <hwy/foreach_target.h>

#include "Elementwise-inl.h"

#if MXKERNELS_VECTOR_TARGET
HWY_BEFORE_NAMESPACE();
namespace MXKernels::HWY_NAMESPACE {

/// Gives nBit where the neighbour is brighter. x86 can compare unsigned bytes only for equality.
HWY_INLINE hn::Vec<Bytes> Bit(const uint8_t* pNeighbour, hn::Vec<Bytes> vCentre, uint8_t nBit) {
  const Bytes d;
  return hn::IfThenZeroElse(hn::Max(hn::LoadU(d, pNeighbour), vCentre) == vCentre, hn::Set(d, nBit));
}

void TextureClassRow(const uint8_t* pAbove, const uint8_t* pCentre, const uint8_t* pBelow, uint8_t* pOut,
                     size_t nCount, const uint8_t* pClasses) noexcept {
  HWY_ALIGN uint8_t aClasses[16];
  for (int n = 0; n < 16; ++n) aClasses[n] = pClasses[n];
  const auto Rule = [=, &aClasses](Bytes d, size_t i) HWY_ATTR {
    const auto vCentre = hn::LoadU(d, pCentre + i);
    const auto vPattern = (Bit(pAbove + i, vCentre, 1) | Bit(pCentre + i + 1, vCentre, 2)) |
                          (Bit(pBelow + i, vCentre, 4) | Bit(pCentre + i - 1, vCentre, 8));
    return hn::TableLookupBytes(hn::LoadDup128(d, aClasses), vPattern);
  };
  if (!ForEachVector(Bytes(), Rule, pOut, nCount)) {
    Reference::TextureClassRow(pAbove, pCentre, pBelow, pOut, nCount, pClasses);
  }
}

void AddSquaredDistanceRow(const uint8_t* pShare, uint8_t nReference, uint16_t* pDistance,
                           size_t nCount) noexcept {
  using Words = hn::ScalableTag<uint16_t>;
  const auto Rule = [=](Words d, size_t i) HWY_ATTR {
    const hn::Rebind<uint8_t, Words> d8;
    const auto vDifference = hn::PromoteTo(d, hn::LoadU(d8, pShare + i)) - hn::Set(d, nReference);
    const auto vSquare = vDifference * vDifference;
    // 43691 / 2^18 is a sixth, near enough for every 16-bit number.
    const auto vSixth = hn::ShiftRight<2>(hn::MulHigh(vSquare, hn::Set(d, 43691)));
    return hn::LoadU(d, pDistance + i) + vSixth;
  };
  if (!ForEachVector(Words(), Rule, pDistance, nCount)) {
    Reference::AddSquaredDistanceRow(pShare, nReference, pDistance, nCount);
  }
}

void FingerRow(const uint16_t* pDistance, const uint8_t* pNear, const uint8_t* pFar, uint8_t* pMask,
               size_t nCount, uint16_t nDistanceLimit, int32_t nFog) noexcept {
  const auto Rule = [=](BytesOfWords d, size_t i) HWY_ATTR {
    const hn::Rebind<int32_t, BytesOfWords> d32;
    const hn::Rebind<uint16_t, BytesOfWords> d16;
    const auto vDistance = hn::PromoteTo(d32, hn::LoadU(d16, pDistance + i));
    const auto vNear = hn::PromoteTo(d32, hn::LoadU(d, pNear + i)) * hn::Set(d32, 100);
    const auto vFar = hn::PromoteTo(d32, hn::LoadU(d, pFar + i)) * hn::Set(d32, nFog);
    const auto bFinger = hn::And(vDistance < hn::Set(d32, nDistanceLimit), vFar < vNear);
    return hn::DemoteTo(d, hn::IfThenElseZero(bFinger, hn::Set(d32, 255)));
  };
  if (!ForEachVector(BytesOfWords(), Rule, pMask, nCount)) {
    Reference::FingerRow(pDistance, pNear, pFar, pMask, nCount, nDistanceLimit, nFog);
  }
}

}  // namespace MXKernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
#endif

#if HWY_ONCE
namespace MXKernels {

MXKERNELS_KERNEL(TextureClassRow);
MXKERNELS_KERNEL(AddSquaredDistanceRow);
MXKERNELS_KERNEL(FingerRow);

}  // namespace MXKernels
#endif
