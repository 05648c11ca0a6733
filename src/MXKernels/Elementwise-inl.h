// The loop that all sample-by-sample kernels share, compiled once for each target.
#if defined(MXKERNELS_ELEMENTWISE_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef MXKERNELS_ELEMENTWISE_INL_H
#undef MXKERNELS_ELEMENTWISE_INL_H
#else
#define MXKERNELS_ELEMENTWISE_INL_H
#endif

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace MXKernels::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

using Bytes = hn::ScalableTag<uint8_t>;
/// As many bytes as a vector has 32-bit numbers.
using BytesOfWords = hn::Rebind<uint8_t, hn::ScalableTag<int32_t>>;

/// pOut[i] = oRule(d, i) for i in [0, nCount), a vector at a time; false when nCount is less than a vector.
///
/// The last vector overlaps the one before it. It is worked out first and stored last, so that pOut may
/// be one of the inputs: no sample that was already replaced is read again.
template <typename D, typename TRule>
HWY_INLINE bool ForEachVector(D d, const TRule& oRule, hn::TFromD<D>* pOut, size_t nCount) {
  const size_t nLanes = hn::Lanes(d);
  if (nCount < nLanes) return false;
  const auto vLast = oRule(d, nCount - nLanes);
  for (size_t i = 0; i + nLanes <= nCount; i += nLanes) hn::StoreU(oRule(d, i), d, pOut + i);
  hn::StoreU(vLast, d, pOut + nCount - nLanes);
  return true;
}

/// pOut[i] = fnPick(pA[i], pB[i]), worked out on vectors of bytes, and by fnReference for fewer than one
/// holds.
template <typename TPick>
HWY_INLINE void ForEachPair(const uint8_t* pA, const uint8_t* pB, uint8_t* pOut, size_t nCount,
                            TwoRows<uint8_t>& fnReference, const TPick& fnPick) {
  const auto Rule = [=](Bytes d, size_t i) HWY_ATTR {
    const auto vA = hn::LoadU(d, pA + i);
    return fnPick(vA, hn::LoadU(d, pB + i));
  };
  if (!ForEachVector(Bytes(), Rule, pOut, nCount)) fnReference(pA, pB, pOut, nCount);
}

/// 32-bit numbers limited to 0 .. 255. The limit above comes first because x86 narrows by way of 16 bits,
/// where a number from 32768 on would turn into 0.
template <typename D, typename V>
HWY_INLINE hn::Vec<D> LimitToBytes(D d, V v) {
  return hn::DemoteTo(d, hn::Min(v, hn::Set(hn::DFromV<V>(), 255)));
}

using Floats = hn::Rebind<float, BytesOfWords>;
/// Added to a float below 2^22, this leaves the nearest integer in the lowest bits of the sum.
constexpr float cfToInteger = 8388608.0F;

/// p / m - nLess, truncated and limited to 0 .. 255, for integers m from 1 to 256 and p up to 2^16. vRaised
/// is p + 1/2.
///
/// A quotient is an integer or at least 1 / m away from one. With half of that it stays on its side whatever
/// the error of a reciprocal with one step of refinement, which is less than 2^-20 of it. Less one half, the
/// nearest integer is the truncated quotient.
HWY_INLINE hn::Vec<BytesOfWords> DivideToBytes(hn::Vec<Floats> vRaised, hn::Vec<Floats> vDivisor, int nLess) {
  const Floats d;
  const auto vRough = hn::ApproximateReciprocal(vDivisor);
  const auto vReciprocal = vRough * hn::NegMulAdd(vDivisor, vRough, hn::Set(d, 2.0F));
  const auto vResult =
      hn::MulAdd(vRaised, vReciprocal, hn::Set(d, cfToInteger - 0.5F - static_cast<float>(nLess)));
  const auto vLimited = hn::Min(hn::Max(vResult, hn::Set(d, cfToInteger)), hn::Set(d, cfToInteger + 255));
  return hn::TruncateTo(BytesOfWords(), hn::BitCast(hn::Rebind<uint32_t, Floats>(), vLimited));
}

#if HWY_TARGET != HWY_SCALAR
using HalfBytes = hn::Half<Bytes>;

/// Makes a rule for vectors of bytes out of one that needs 16 bits for each sample and so takes half a vector
/// at a time.
template <typename TRule>
HWY_INLINE auto ByHalves(const TRule& oRule) {
  return [=](Bytes d, size_t i) HWY_ATTR {
    const HalfBytes dHalf;
    return hn::Combine(d, oRule(dHalf, i + hn::Lanes(dHalf)), oRule(dHalf, i));
  };
}

/// 16-bit numbers of at most 255 as bytes.
template <typename D, typename V>
HWY_INLINE hn::Vec<D> NarrowToBytes(D d, V v) {
  return hn::DemoteTo(d, hn::BitCast(hn::RebindToSigned<hn::DFromV<V>>(), v));
}

/// x / 255 truncated, for every x up to 65534.
template <typename V>
HWY_INLINE V DivideBy255(V v) {
  return hn::ShiftRight<8>(v + hn::Set(hn::DFromV<V>(), 1) + hn::ShiftRight<8>(v));
}
#endif

}  // namespace MXKernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
