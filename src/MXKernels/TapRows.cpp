// Vector variants of the linear filters' kernels.
#include "MXKernels/TapRows.h"

#include "KernelTargets.h"
#include "MXKernels/Reference.h"

#define HWY_TARGET_INCLUDE "TapRows.cpp"
#include <hwy/foreach_target.h>

#include "Elementwise-inl.h"

#if MXKERNELS_VECTOR_TARGET
HWY_BEFORE_NAMESPACE();
namespace MXKernels::HWY_NAMESPACE {

using Words = hn::ScalableTag<int32_t>;

/// The sums stay in registers over all taps: samples are loaded, but no sum is stored in between.
template <typename T>
void WeightRows(const T* pIn, const size_t* pOffsets, const int32_t* pTaps, size_t nTaps, int32_t* pLine,
                size_t nCount) noexcept {
  const auto Rule = [=](Words d, size_t i) HWY_ATTR {
    const hn::Rebind<T, Words> dRow;
    auto vSum = hn::Zero(d);
    for (size_t k = 0; k < nTaps; ++k) {
      vSum += hn::PromoteTo(d, hn::LoadU(dRow, pIn + pOffsets[k] + i)) * hn::Set(d, pTaps[k]);
    }
    return vSum;
  };
  if (!ForEachVector(Words(), Rule, pLine, nCount)) {
    Reference::WeightRows(pIn, pOffsets, pTaps, nTaps, pLine, nCount);
  }
}

void WeightLine(const int32_t* pLine, const int32_t* pTaps, size_t nTaps, int32_t* pSums,
                size_t nCount) noexcept {
  const auto Rule = [=](Words d, size_t i) HWY_ATTR {
    auto vSum = hn::Zero(d);
    for (size_t k = 0; k < nTaps; ++k) vSum += hn::LoadU(d, pLine + i + k) * hn::Set(d, pTaps[k]);
    return vSum;
  };
  if (!ForEachVector(Words(), Rule, pSums, nCount)) {
    Reference::WeightLine(pLine, pTaps, nTaps, pSums, nCount);
  }
}

}  // namespace MXKernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
#endif

#if HWY_ONCE
namespace MXKernels {

constexpr decltype(WeightRows) WeightRows{MXKERNELS_LEVELS(WeightRows), MXKERNELS_LEVELS(WeightRows)};
MXKERNELS_KERNEL(WeightLine);

}  // namespace MXKernels
#endif
