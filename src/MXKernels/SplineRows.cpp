// Vector variants of the kernels of thin-plate splines.
#include "MXKernels/SplineRows.h"

#include "KernelTargets.h"
#include "MXKernels/Reference.h"

#define HWY_TARGET_INCLUDE "SplineRows.cpp"
#include <hwy/foreach_target.h>

#include "Elementwise-inl.h"

#if MXKERNELS_VECTOR_TARGET
HWY_BEFORE_NAMESPACE();
namespace MXKernels::HWY_NAMESPACE {

using Doubles = hn::ScalableTag<double>;
using Vector = hn::Vec<Doubles>;

/// ((dFirst * z + next) * z + next) ...
template <class... TDouble>
HWY_INLINE Vector Horner(Vector vZ, double dFirst, TDouble... dNext) {
  const Doubles d;
  Vector vSum = hn::Set(d, dFirst);
  ((vSum = vSum * vZ + hn::Set(d, dNext)), ...);
  return vSum;
}

/// Portable::Log, operation by operation: products and sums stay apart, as a fused one gives other bits.
HWY_INLINE Vector Log(Vector vValue) {
  const Doubles d;
  const hn::RebindToUnsigned<Doubles> dBits;
  const auto vLowest = hn::Set(dBits, 0x3fe6a09e00000000u);
  const auto vBits = hn::BitCast(dBits, vValue) + (hn::Set(dBits, 0x3ff0000000000000u) - vLowest);
  const auto vExponentBits = hn::Or(hn::Set(dBits, 0x4330000000000000u), hn::ShiftRight<52>(vBits));
  const auto vMantissaBits = hn::And(vBits, hn::Set(dBits, 0x000fffffffffffffu)) + vLowest;
  const auto vExponent = hn::BitCast(d, vExponentBits) - hn::Set(d, 4503599627370496.0 + 1023.0);

  const auto vF = hn::BitCast(d, vMantissaBits) - hn::Set(d, 1.0);
  const auto vS = vF / (hn::Set(d, 2.0) + vF);
  const auto vZ = vS * vS;
  const auto vSeries = Horner(vZ, 2.0 / 23.0, 2.0 / 21.0, 2.0 / 19.0, 2.0 / 17.0, 2.0 / 15.0, 2.0 / 13.0,
                              2.0 / 11.0, 2.0 / 9.0, 2.0 / 7.0, 2.0 / 5.0, 2.0 / 3.0);
  const auto vHalf = hn::Set(d, 0.5) * vF * vF;
  const auto vRest = vS * (vHalf + vZ * vSeries);
  const auto vLow = vExponent * hn::Set(d, 1.90821492927058770002e-10);
  return vExponent * hn::Set(d, 6.93147180369123816490e-01) - ((vHalf - (vRest + vLow)) - vF);
}

HWY_INLINE Vector Basis(const double* pX, SplinePoint oPoint) {
  const Doubles d;
  const auto vBetween = hn::LoadU(d, pX) - hn::Set(d, oPoint.m_dX);
  const auto vDistance = vBetween * vBetween + hn::Set(d, oPoint.m_dSquaredY);
  return vDistance * Log(vDistance);
}

HWY_INLINE void Add(Vector vBasis, double dWeight, double* pSum) {
  const Doubles d;
  hn::StoreU(hn::LoadU(d, pSum) + hn::Set(d, dWeight) * vBasis, d, pSum);
}

void AddSplineBasisRow(const double* pX, size_t nCount, SplinePoint oPoint, double dWeight,
                       double* pSum) noexcept {
  const size_t nLanes = hn::Lanes(Doubles());
  size_t i = 0;
  for (; i + nLanes <= nCount; i += nLanes) Add(Basis(pX + i, oPoint), dWeight, pSum + i);
  Reference::AddSplineBasisRow(pX + i, nCount - i, oPoint, dWeight, pSum + i);
}

void AddSplineBasisPairRow(const double* pX, size_t nCount, SplinePoint oPoint, double dWeightA,
                           double dWeightB, double* pSumA, double* pSumB) noexcept {
  const size_t nLanes = hn::Lanes(Doubles());
  size_t i = 0;
  for (; i + nLanes <= nCount; i += nLanes) {
    const auto vBasis = Basis(pX + i, oPoint);
    Add(vBasis, dWeightA, pSumA + i);
    Add(vBasis, dWeightB, pSumB + i);
  }
  Reference::AddSplineBasisPairRow(pX + i, nCount - i, oPoint, dWeightA, dWeightB, pSumA + i, pSumB + i);
}

}  // namespace MXKernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
#endif

#if HWY_ONCE
namespace MXKernels {

MXKERNELS_KERNEL(AddSplineBasisRow);
MXKERNELS_KERNEL(AddSplineBasisPairRow);

}  // namespace MXKernels
#endif
