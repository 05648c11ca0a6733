// Vector variants of the kernels that put the finger mask's picture together.
#include "MXKernels/ComposeRows.h"

#include "KernelTargets.h"
#include "MXKernels/Reference.h"

#define HWY_TARGET_INCLUDE "ComposeRows.cpp"
#include <hwy/foreach_target.h>

#include "Elementwise-inl.h"

#if MXKERNELS_VECTOR_TARGET
HWY_BEFORE_NAMESPACE();
namespace MXKernels::HWY_NAMESPACE {

using ComposeWords = hn::ScalableTag<uint16_t>;
using ComposeBytes = hn::Rebind<uint8_t, ComposeWords>;

/// Zeros of the 7 columns around column i.
HWY_INLINE hn::Vec<ComposeBytes> ZerosOf7(const uint8_t* pZeros, size_t i) {
  const auto Zeros = [=](size_t k) HWY_ATTR { return hn::LoadU(ComposeBytes(), pZeros + i + k + 1); };
  return ((Zeros(0) + Zeros(1)) + (Zeros(2) + Zeros(3))) + ((Zeros(4) + Zeros(5)) + Zeros(6));
}

/// The share of a window's pixels that are set; nShift is that of the factor.
template <int nShift>
HWY_INLINE hn::Vec<ComposeBytes> SoftShare(hn::Vec<ComposeBytes> vZeros, const SoftWindows& oWindows,
                                           size_t i) {
  const ComposeWords d;
  const ComposeBytes d8;
  const auto vSet = hn::PromoteTo(d, hn::LoadU(d8, oWindows.m_pAreas + i) - vZeros);
  return NarrowToBytes(d8, hn::MulHigh(hn::ShiftLeft<nShift>(vSet), hn::LoadU(d, oWindows.m_pFactors + i)));
}

void SoftRow(const SoftWindows& oWindows, uint8_t* pOut, size_t nCount) noexcept {
  const auto Rule = [=, &oWindows](ComposeBytes, size_t i)
                        HWY_ATTR { return SoftShare<4>(ZerosOf7(oWindows.m_pZeros, i), oWindows, i); };
  if (!ForEachVector(ComposeBytes(), Rule, pOut, nCount)) Reference::SoftRow(oWindows, pOut, nCount);
}

/// A window of the first column of a pair reaches half a pair further to the left, that of the second one to
/// the right.
HWY_INLINE void DoubledSoftPairs(const SoftWindows& oWindows, uint8_t* pOut, size_t i) {
  const ComposeBytes d;
  const auto vSeven = ZerosOf7(oWindows.m_pZeros, i);
  const auto vTwice = vSeven + vSeven;
  const auto vFirst = vTwice + hn::LoadU(d, oWindows.m_pZeros + i);
  const auto vSecond = vTwice + hn::LoadU(d, oWindows.m_pZeros + i + 8);
  uint8_t aZeros[2 * hn::MaxLanes(ComposeBytes())];
  hn::StoreInterleaved2(vFirst, vSecond, d, aZeros);
  for (size_t k = 0; k < 2; ++k) {
    const size_t nAt = k * hn::Lanes(d);
    hn::StoreU(SoftShare<2>(hn::LoadU(d, aZeros + nAt), oWindows, 2 * i + nAt), d, pOut + 2 * i + nAt);
  }
}

void DoubledSoftRow(const SoftWindows& oWindows, uint8_t* pOut, size_t nCount) noexcept {
  const size_t nLanes = hn::Lanes(ComposeBytes());
  if (nCount < nLanes) return Reference::DoubledSoftRow(oWindows, pOut, nCount);
  for (size_t i = 0; i + nLanes <= nCount; i += nLanes) DoubledSoftPairs(oWindows, pOut, i);
  DoubledSoftPairs(oWindows, pOut, nCount - nLanes);
}

void DoubleZerosRow(const uint8_t* pCounts, const uint8_t* pOther, uint8_t* pSums, size_t nCount) noexcept {
  ForEachPair(pCounts, pOther, pSums, nCount, Reference::DoubleZerosRow,
              [](auto vCounts, auto vOther) HWY_ATTR {
                const Bytes d;
                return vCounts + vCounts + hn::IfThenElseZero(vOther == hn::Zero(d), hn::Set(d, 1));
              });
}

/// Quotients are worked out in floats as for AdjustBrightnessRow: p / b is at least 1 / 255 below the next
/// whole number, and floats up to 2^16 are off by less.
template <typename V>
HWY_INLINE V FlatSamples(V vSignal, V vEnvelope) {
  const hn::DFromV<V> d;
  const hn::Half<hn::DFromV<V>> dHalf;
  const hn::Rebind<int32_t, hn::Half<hn::DFromV<V>>> d32;
  const hn::Rebind<float, hn::Half<hn::DFromV<V>>> dFloat;
  const auto Half = [=](auto vS, auto vE) HWY_ATTR {
    const auto vQuotient =
        hn::ConvertTo(dFloat, hn::PromoteTo(d32, vS)) / hn::ConvertTo(dFloat, hn::PromoteTo(d32, vE));
    return hn::DemoteTo(dHalf, hn::ConvertTo(d32, vQuotient));
  };
  const auto vScaled = hn::ShiftLeft<8>(vSignal) - vSignal;
  const auto vDivisor = hn::Max(vEnvelope, hn::Set(d, 1));
  const auto vUpper = Half(hn::UpperHalf(dHalf, vScaled), hn::UpperHalf(dHalf, vDivisor));
  return hn::Min(hn::Combine(d, vUpper, Half(hn::LowerHalf(vScaled), hn::LowerHalf(vDivisor))),
                 hn::Set(d, 255));
}

void FlattenRow(const uint8_t* pSignal, const uint8_t* pEnvelope, const uint8_t* pSoft, uint8_t* pOut,
                size_t nCount) noexcept {
  const auto Rule = [=](ComposeBytes d8, size_t i) HWY_ATTR {
    const ComposeWords d;
    const auto vWhite = hn::Set(d, 255);
    const auto vSoft8 = hn::LoadU(d8, pSoft + i);
    if (hn::AllTrue(d8, vSoft8 == hn::Zero(d8))) return hn::Set(d8, 255);
    const auto vFlat = FlatSamples(hn::PromoteTo(d, hn::LoadU(d8, pSignal + i)),
                                   hn::PromoteTo(d, hn::LoadU(d8, pEnvelope + i)));
    return NarrowToBytes(d8, vWhite - DivideBy255(vFlat * hn::PromoteTo(d, vSoft8)));
  };
  if (!ForEachVector(ComposeBytes(), Rule, pOut, nCount)) {
    Reference::FlattenRow(pSignal, pEnvelope, pSoft, pOut, nCount);
  }
}

}  // namespace MXKernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
#endif

#if HWY_ONCE
namespace MXKernels {

MXKERNELS_KERNEL(SoftRow);
MXKERNELS_KERNEL(DoubledSoftRow);
MXKERNELS_KERNEL(DoubleZerosRow);
MXKERNELS_KERNEL(FlattenRow);

}  // namespace MXKernels
#endif
