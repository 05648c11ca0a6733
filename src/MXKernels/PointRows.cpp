// Vector variants of the kernels that treat each sample by itself.
#include "MXKernels/PointRows.h"

#include "KernelTargets.h"
#include "MXKernels/Reference.h"

#define HWY_TARGET_INCLUDE "PointRows.cpp"
#include <hwy/foreach_target.h>

#include "Elementwise-inl.h"

#if MXKERNELS_VECTOR_TARGET
HWY_BEFORE_NAMESPACE();
namespace MXKernels::HWY_NAMESPACE {

void SubtractSaturated(const uint8_t* pLit, const uint8_t* pDark, uint8_t* pOut, size_t nCount) noexcept {
  ForEachPair(pLit, pDark, pOut, nCount, Reference::SubtractSaturated,
              [](auto vLit, auto vDark) HWY_ATTR { return hn::SaturatedSub(vLit, vDark); });
}

void AbsoluteDifferenceRow(const uint8_t* pA, const uint8_t* pB, uint8_t* pOut, size_t nCount) noexcept {
  ForEachPair(pA, pB, pOut, nCount, Reference::AbsoluteDifferenceRow, [](auto vA, auto vB) HWY_ATTR {
    return hn::Or(hn::SaturatedSub(vA, vB), hn::SaturatedSub(vB, vA));
  });
}

void AndRow(const uint8_t* pA, const uint8_t* pB, uint8_t* pOut, size_t nCount) noexcept {
  ForEachPair(pA, pB, pOut, nCount, Reference::AndRow,
              [](auto vA, auto vB) HWY_ATTR { return hn::And(vA, vB); });
}

void ClampRow(const uint8_t* pIn, uint8_t* pOut, size_t nCount, uint8_t nLower, uint8_t nUpper) noexcept {
  const auto Rule = [=](Bytes d, size_t i) HWY_ATTR {
    return hn::Min(hn::Max(hn::LoadU(d, pIn + i), hn::Set(d, nLower)), hn::Set(d, nUpper));
  };
  if (!ForEachVector(Bytes(), Rule, pOut, nCount)) Reference::ClampRow(pIn, pOut, nCount, nLower, nUpper);
}

void ThresholdRow(const uint8_t* pIn, uint8_t* pOut, size_t nCount, uint8_t nThreshold, uint8_t nBelow,
                  uint8_t nAbove) noexcept {
  const auto Rule = [=](Bytes d, size_t i) HWY_ATTR {
    const auto vIn = hn::LoadU(d, pIn + i);
    // x86 has no unsigned comparison of bytes, but an unsigned maximum.
    const auto bAbove = hn::Max(vIn, hn::Set(d, nThreshold)) == vIn;
    return hn::IfThenElse(bAbove, hn::Set(d, nAbove), hn::Set(d, nBelow));
  };
  if (!ForEachVector(Bytes(), Rule, pOut, nCount)) {
    Reference::ThresholdRow(pIn, pOut, nCount, nThreshold, nBelow, nAbove);
  }
}

void EqualRow(const uint8_t* pIn, uint8_t* pOut, size_t nCount, uint8_t nValue) noexcept {
  const auto Rule = [=](Bytes d, size_t i) HWY_ATTR {
    const auto bEqual = hn::LoadU(d, pIn + i) == hn::Set(d, nValue);
    return hn::VecFromMask(d, bEqual);
  };
  if (!ForEachVector(Bytes(), Rule, pOut, nCount)) Reference::EqualRow(pIn, pOut, nCount, nValue);
}

}  // namespace MXKernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
#endif

#if HWY_ONCE
namespace MXKernels {

MXKERNELS_KERNEL(SubtractSaturated);
MXKERNELS_KERNEL(AbsoluteDifferenceRow);
MXKERNELS_KERNEL(AndRow);
MXKERNELS_KERNEL(ClampRow);
MXKERNELS_KERNEL(ThresholdRow);
MXKERNELS_KERNEL(EqualRow);

}  // namespace MXKernels
#endif
