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

// Quotients are computed in floats. A quotient of integers p / b with b up to 256 that isn't an integer stays
// at least 1 / 256 below the next one. Up to 2^16 a float is off by at most 2^-9 there, so that the division,
// rounded correctly, never reaches that integer, and the truncation gives the integer division.

void AdjustBrightnessRow(const uint8_t* pIn, const uint8_t* pReference, uint8_t* pOut, size_t nCount,
                         uint8_t nValue, uint8_t nMinimum) noexcept {
  const auto Rule = [=](BytesOfWords d, size_t i) HWY_ATTR {
    const hn::Rebind<int32_t, BytesOfWords> d32;
    const hn::Rebind<float, BytesOfWords> dFloat;
    const auto vReference = hn::Max(hn::LoadU(d, pReference + i), hn::Set(d, nMinimum));
    const auto vIn = hn::ConvertTo(dFloat, hn::PromoteTo(d32, hn::LoadU(d, pIn + i)));
    const auto vScaled = vIn * hn::Set(dFloat, static_cast<float>(nValue));
    const auto vQuotient = vScaled / hn::ConvertTo(dFloat, hn::PromoteTo(d32, vReference));
    return LimitToBytes(d, hn::ConvertTo(d32, vQuotient));
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
