// Vector variants of the finger mask's texture classes.
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

}  // namespace MXKernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
#endif

#if HWY_ONCE
namespace MXKernels {

MXKERNELS_KERNEL(TextureClassRow);

}  // namespace MXKernels
#endif
