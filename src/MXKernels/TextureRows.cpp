// Vector variants of the kernels of the finger mask's texture.
#include "MXKernels/TextureRows.h"

#include "KernelTargets.h"
#include "MXKernels/Reference.h"

#define HWY_TARGET_INCLUDE "TextureRows.cpp"
#include <hwy/foreach_target.h>

#include "Elementwise-inl.h"

#if MXKERNELS_VECTOR_TARGET
HWY_BEFORE_NAMESPACE();
namespace MXKernels::HWY_NAMESPACE {

using TextureWords = hn::ScalableTag<uint16_t>;
using TextureBytes = hn::Rebind<uint8_t, TextureWords>;

void MoveClassCountsRow(const uint8_t* pEnter, const uint8_t* pLeave, uint8_t* pCounts, uint8_t* pTriples,
                        size_t nStride, size_t nCount) noexcept {
  const Bytes d;
  const size_t nLanes = hn::Lanes(d);
  if (nCount == 0 || nCount % nLanes != 0) {
    return Reference::MoveClassCountsRow(pEnter, pLeave, pCounts, pTriples, nStride, nCount);
  }
  const auto vOne = hn::Set(d, 1);
  for (size_t i = 0; i < nCount; i += nLanes) {
    const auto vEnter = hn::LoadU(d, pEnter + i), vLeave = hn::LoadU(d, pLeave + i);
    uint8_t* pCount = pCounts + i;
    for (uint8_t n = 1; n <= cnCountedClasses; ++n, pCount += nStride) {
      const auto vClass = hn::Set(d, n);
      const auto vMore = hn::LoadU(d, pCount) + hn::IfThenElseZero(vEnter == vClass, vOne);
      hn::StoreU(vMore - hn::IfThenElseZero(vLeave == vClass, vOne), d, pCount);
    }
  }
  for (size_t k = 0; k < cnCountedClasses; ++k) {
    const uint8_t* pCount = pCounts + k * nStride - cnTextureHalf;
    const auto Triple = [=](Bytes, size_t i) HWY_ATTR {
      return hn::LoadU(d, pCount + i) + hn::LoadU(d, pCount + i + 1) + hn::LoadU(d, pCount + i + 2);
    };
    ForEachVector(d, Triple, pTriples + k * nStride, nCount + 12);
  }
}

/// 256 times the root of each number, truncated.
///
/// A float's root is rounded correctly: it can reach the next whole number, but never miss one. 65536 times
/// the number less the square of what was found then is negative.
template <typename V>
HWY_INLINE hn::Vec<hn::Half<TextureWords>> Roots(V vNumbers) {
  const hn::Half<TextureWords> dOut;
  const hn::Rebind<int32_t, hn::Half<TextureWords>> d32;
  const hn::Rebind<float, hn::Half<TextureWords>> dFloat;
  const auto v = hn::PromoteTo(d32, vNumbers);
  const auto vRoot = hn::ConvertTo(d32, hn::Sqrt(hn::ConvertTo(dFloat, v)) * hn::Set(dFloat, 256.0F));
  return hn::DemoteTo(dOut, vRoot + hn::ShiftRight<31>(hn::ShiftLeft<16>(v) - vRoot * vRoot));
}

/// (share - reference)^2 / 6 of each window.
template <typename V>
HWY_INLINE V SquaredDeviation(V vCount, V vFactor, uint8_t nReference) {
  const TextureWords d;
  const auto vDifference = hn::MulHigh(hn::ShiftLeft<2>(vCount), vFactor) - hn::Set(d, nReference);
  // 43691 / 2^18 is a sixth, near enough for every 16-bit number.
  return hn::ShiftRight<2>(hn::MulHigh(vDifference * vDifference, hn::Set(d, 43691)));
}

HWY_INLINE hn::Vec<TextureWords> TextureDistances(const TextureWindows& oWindows, size_t i) {
  const TextureWords d;
  const TextureBytes d8;
  const auto vFactor = hn::LoadU(d, oWindows.m_pFactors + i);
  auto vSum = hn::Zero(d);
  auto vRest = hn::LoadU(d8, oWindows.m_pInner + i);
  const uint8_t* pTriples = oWindows.m_pTriples + i;
  for (size_t k = 0; k < cnCountedClasses; ++k, pTriples += oWindows.m_nStride) {
    const auto vCount = (hn::LoadU(d8, pTriples) + hn::LoadU(d8, pTriples + 3)) +
                        (hn::LoadU(d8, pTriples + 6) + hn::LoadU(d8, pTriples + 9)) +
                        hn::LoadU(d8, pTriples + 12);
    vRest = vRest - vCount;
    vSum += SquaredDeviation(hn::PromoteTo(d, vCount), vFactor, oWindows.m_pReference[k + 1]);
  }
  return vSum + SquaredDeviation(hn::PromoteTo(d, vRest), vFactor, oWindows.m_pReference[0]);
}

void TextureDistanceRow(const TextureWindows& oWindows, const uint8_t* pSignal,
                        const BrightnessLimits& oLimits, uint16_t* pDistance, size_t nCount) noexcept {
  const auto Rule = [=, &oWindows](TextureWords d, size_t i) HWY_ATTR {
    const auto vSignal = hn::PromoteTo(d, hn::LoadU(TextureBytes(), pSignal + i));
    const auto vBack = hn::Set(d, oLimits.m_nBack), vFront = hn::Set(d, oLimits.m_nFront);
    // x86 has no unsigned comparison of 16 bits; a difference that saturates is 0 just where it holds.
    const auto bDark = hn::SaturatedSub(vBack, vSignal) != hn::Zero(d);
    const auto bBright = hn::SaturatedSub(vSignal, vFront) != hn::Zero(d);
    const auto vLimit = hn::IfThenElseZero(bDark, hn::Set(d, oLimits.m_nLimit));
    const auto bDecided = hn::Or(bDark, bBright);
    if (hn::AllTrue(d, bDecided)) return vLimit;
    const auto vDistance = TextureDistances(oWindows, i);
    const hn::Half<TextureWords> dHalf;
    const auto vRoot =
        hn::Combine(d, Roots(hn::UpperHalf(dHalf, vDistance)), Roots(hn::LowerHalf(vDistance)));
    return hn::IfThenElse(bDecided, vLimit, vRoot);
  };
  if (!ForEachVector(TextureWords(), Rule, pDistance, nCount)) {
    Reference::TextureDistanceRow(oWindows, pSignal, oLimits, pDistance, nCount);
  }
}

}  // namespace MXKernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
#endif

#if HWY_ONCE
namespace MXKernels {

MXKERNELS_KERNEL(MoveClassCountsRow);
MXKERNELS_KERNEL(TextureDistanceRow);

}  // namespace MXKernels
#endif
