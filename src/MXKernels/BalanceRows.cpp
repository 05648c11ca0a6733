// Vector variants of the kernels that divide by a reference.
#include "MXKernels/BalanceRows.h"

#include "KernelTargets.h"
#include "MXKernels/Reference.h"

#define HWY_TARGET_INCLUDE "BalanceRows.cpp"
#include <hwy/foreach_target.h>

#include "Elementwise-inl.h"

#if MXKERNELS_VECTOR_TARGET
HWY_BEFORE_NAMESPACE();
namespace MXKernels::HWY_NAMESPACE {

void AdjustBrightnessRow(const uint8_t* pIn, const uint8_t* pReference, uint8_t* pOut, size_t nCount,
                         uint8_t nValue, uint8_t nMinimum) noexcept {
  const auto Rule = [=](BytesOfWords d, size_t i) HWY_ATTR {
    const hn::Rebind<int32_t, BytesOfWords> d32;
    const Floats dFloat;
    const auto vReference = hn::Max(hn::LoadU(d, pReference + i), hn::Set(d, nMinimum));
    const auto vIn = hn::ConvertTo(dFloat, hn::PromoteTo(d32, hn::LoadU(d, pIn + i)));
    const auto vRaised = hn::MulAdd(vIn, hn::Set(dFloat, static_cast<float>(nValue)), hn::Set(dFloat, 0.5F));
    return DivideToBytes(vRaised, hn::ConvertTo(dFloat, hn::PromoteTo(d32, vReference)), 0);
  };
  if (!ForEachVector(BytesOfWords(), Rule, pOut, nCount)) {
    Reference::AdjustBrightnessRow(pIn, pReference, pOut, nCount, nValue, nMinimum);
  }
}

}  // namespace MXKernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
#endif

#if HWY_ONCE
namespace MXKernels {

MXKERNELS_KERNEL(AdjustBrightnessRow);

}  // namespace MXKernels
#endif
