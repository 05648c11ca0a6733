// Vector variants of the finger mask's kernels.
#include "MXKernels/MaskRows.h"

#include "KernelTargets.h"
#include "MXKernels/Level.h"
#include "MXKernels/Reference.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "MaskRows.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "Elementwise-inl.h"

#if MXKERNELS_VECTOR_TARGET
HWY_BEFORE_NAMESPACE();
namespace MXKernels {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

using Bytes = hn::ScalableTag<uint8_t>;

struct RuleTexture {
  const uint8_t* m_pAbove;
  const uint8_t* m_pCentre;
  const uint8_t* m_pBelow;
  const uint8_t* m_pClasses;

  /// nBit where the neighbour is brighter; x86 compares bytes unsigned only for equality.
  template <typename D>
  static hn::Vec<D> Bit(D d, hn::Vec<D> vNeighbour, hn::Vec<D> vCentre, uint8_t nBit) {
    return hn::IfThenZeroElse(hn::Max(vNeighbour, vCentre) == vCentre, hn::Set(d, nBit));
  }

  template <typename D>
  hn::Vec<D> operator()(D d, size_t i) const {
    const uint8_t* pCentre = m_pCentre + i;
    const auto vCentre = hn::LoadU(d, pCentre);
    const auto vPattern =
        (Bit(d, hn::LoadU(d, m_pAbove + i), vCentre, 1) | Bit(d, hn::LoadU(d, pCentre + 1), vCentre, 2)) |
        (Bit(d, hn::LoadU(d, m_pBelow + i), vCentre, 4) | Bit(d, hn::LoadU(d, pCentre - 1), vCentre, 8));
    return hn::TableLookupBytes(hn::LoadDup128(d, m_pClasses), vPattern);
  }
};

void TextureClassRow(const uint8_t* pAbove, const uint8_t* pCentre, const uint8_t* pBelow, uint8_t* pOut,
                     size_t nCount, const uint8_t* pClasses) noexcept {
  HWY_ALIGN uint8_t aClasses[16];
  for (int n = 0; n < 16; ++n) aClasses[n] = pClasses[n];
  if (!ForEachVector(Bytes(), RuleTexture{pAbove, pCentre, pBelow, aClasses}, pOut, nCount)) {
    Reference::TextureClassRow(pAbove, pCentre, pBelow, pOut, nCount, pClasses);
  }
}

struct RuleDistance {
  const uint8_t* m_pShare;
  const uint16_t* m_pDistance;
  uint8_t m_nReference;
  template <typename D>
  hn::Vec<D> operator()(D d, size_t i) const {
    const hn::Rebind<uint8_t, D> d8;
    const auto vDifference = hn::PromoteTo(d, hn::LoadU(d8, m_pShare + i)) - hn::Set(d, m_nReference);
    const auto vSquare = vDifference * vDifference;
    // 43691 / 2^18 is a sixth, near enough for every 16-bit number.
    const auto vSixth = hn::ShiftRight<2>(hn::MulHigh(vSquare, hn::Set(d, 43691)));
    return hn::LoadU(d, m_pDistance + i) + vSixth;
  }
};

void AddSquaredDistanceRow(const uint8_t* pShare, uint8_t nReference, uint16_t* pDistance,
                           size_t nCount) noexcept {
  if (!ForEachVector(hn::ScalableTag<uint16_t>(), RuleDistance{pShare, pDistance, nReference}, pDistance,
                     nCount)) {
    Reference::AddSquaredDistanceRow(pShare, nReference, pDistance, nCount);
  }
}

struct RuleFinger {
  const uint16_t* m_pDistance;
  const uint8_t* m_pNear;
  const uint8_t* m_pFar;
  uint16_t m_nLimit;
  int32_t m_nFog;
  template <typename D>
  hn::Vec<D> operator()(D d, size_t i) const {
    const hn::Rebind<int32_t, D> d32;
    const hn::Rebind<uint16_t, D> d16;
    const auto vDistance = hn::PromoteTo(d32, hn::LoadU(d16, m_pDistance + i));
    const auto vNear = hn::PromoteTo(d32, hn::LoadU(d, m_pNear + i)) * hn::Set(d32, 100);
    const auto vFar = hn::PromoteTo(d32, hn::LoadU(d, m_pFar + i)) * hn::Set(d32, m_nFog);
    const auto bFinger = hn::And(vDistance<hn::Set(d32, m_nLimit), vNear> vFar);
    return hn::DemoteTo(d, hn::IfThenElseZero(bFinger, hn::Set(d32, 255)));
  }
};

void FingerRow(const uint16_t* pDistance, const uint8_t* pNear, const uint8_t* pFar, uint8_t* pMask,
               size_t nCount, uint16_t nDistanceLimit, int32_t nFog) noexcept {
  const hn::Rebind<uint8_t, hn::ScalableTag<int32_t>> d;
  if (!ForEachVector(d, RuleFinger{pDistance, pNear, pFar, nDistanceLimit, nFog}, pMask, nCount)) {
    Reference::FingerRow(pDistance, pNear, pFar, pMask, nCount, nDistanceLimit, nFog);
  }
}

}  // namespace HWY_NAMESPACE
}  // namespace MXKernels
HWY_AFTER_NAMESPACE();
#endif

#if HWY_ONCE
namespace MXKernels {

MXKERNELS_TABLE(TextureClassRow);
MXKERNELS_TABLE(AddSquaredDistanceRow);
MXKERNELS_TABLE(FingerRow);

void TextureClassRow(const uint8_t* pAbove, const uint8_t* pCentre, const uint8_t* pBelow, uint8_t* pOut,
                     size_t nCount, const uint8_t* pClasses) noexcept {
  MXKERNELS_CALL(TextureClassRow)(pAbove, pCentre, pBelow, pOut, nCount, pClasses);
}

void AddSquaredDistanceRow(const uint8_t* pShare, uint8_t nReference, uint16_t* pDistance,
                           size_t nCount) noexcept {
  MXKERNELS_CALL(AddSquaredDistanceRow)(pShare, nReference, pDistance, nCount);
}

void FingerRow(const uint16_t* pDistance, const uint8_t* pNear, const uint8_t* pFar, uint8_t* pMask,
               size_t nCount, uint16_t nDistanceLimit, int32_t nFog) noexcept {
  MXKERNELS_CALL(FingerRow)(pDistance, pNear, pFar, pMask, nCount, nDistanceLimit, nFog);
}

}  // namespace MXKernels
#endif
