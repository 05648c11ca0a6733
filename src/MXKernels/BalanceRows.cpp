// Vector variants of the kernels that divide by a reference.
#include "MXKernels/BalanceRows.h"

#include "KernelTargets.h"
#include "MXKernels/Level.h"
#include "MXKernels/Reference.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "BalanceRows.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "Elementwise-inl.h"

#if MXKERNELS_VECTOR_TARGET
HWY_BEFORE_NAMESPACE();
namespace MXKernels {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

// The bytes that belong to a vector of floats.
using Bytes = hn::Rebind<uint8_t, hn::ScalableTag<float>>;

// Quotients are taken in floats. A quotient of integers p / b with b up to 256 that isn't an integer stays
// at least 1 / 256 below the next one. Up to 2^16 a float is off by at most 2^-9 there, so that the division,
// rounded correctly, never reaches that integer, and the truncation gives the integer division.

struct RuleBrightness {
  const uint8_t* m_pIn;
  const uint8_t* m_pReference;
  uint8_t m_nValue, m_nMinimum;
  template <typename D>
  hn::Vec<D> operator()(D d, size_t i) const {
    const hn::Rebind<int32_t, D> d32;
    const hn::Rebind<float, D> dFloat;
    const auto vReference = hn::Max(hn::LoadU(d, m_pReference + i), hn::Set(d, m_nMinimum));
    const auto vIn = hn::ConvertTo(dFloat, hn::PromoteTo(d32, hn::LoadU(d, m_pIn + i)));
    const auto vScaled = vIn * hn::Set(dFloat, static_cast<float>(m_nValue));
    const auto vQuotient = vScaled / hn::ConvertTo(dFloat, hn::PromoteTo(d32, vReference));
    return LimitToBytes(d, hn::ConvertTo(d32, vQuotient));
  }
};

void AdjustBrightnessRow(const uint8_t* pIn, const uint8_t* pReference, uint8_t* pOut, size_t nCount,
                         uint8_t nValue, uint8_t nMinimum) noexcept {
  if (!ForEachVector(Bytes(), RuleBrightness{pIn, pReference, nValue, nMinimum}, pOut, nCount)) {
    Reference::AdjustBrightnessRow(pIn, pReference, pOut, nCount, nValue, nMinimum);
  }
}

template <typename VFloat>
HWY_INLINE hn::Vec<Bytes> BalanceSamples(hn::Vec<Bytes> vSample, VFloat vTarget, VFloat vMean) {
  const hn::Rebind<int32_t, Bytes> d32;
  const hn::Rebind<float, Bytes> dFloat;
  const auto vOne = hn::Set(d32, 1);
  const auto vRaised = hn::ConvertTo(dFloat, hn::PromoteTo(d32, vSample) + vOne);
  return LimitToBytes(Bytes(), hn::ConvertTo(d32, vRaised * vTarget / vMean) - vOne);
}

void BalanceCellsRow(const BalanceCells& oCells, size_t nCells) noexcept {
  const Bytes d;
  const hn::Rebind<int32_t, Bytes> d32;
  const hn::Rebind<float, Bytes> dFloat;
  const auto vOne = hn::Set(d32, 1);
  const size_t nLanes = hn::Lanes(d);
  size_t i = 0;
  for (; i + nLanes <= nCells; i += nLanes) {
    const auto vMean0 = hn::PromoteTo(d32, hn::LoadU(d, oCells.m_apMean[0] + i)) + vOne;
    const auto vMean1 = hn::PromoteTo(d32, hn::LoadU(d, oCells.m_apMean[1] + i)) + vOne;
    const auto vMean2 = hn::PromoteTo(d32, hn::LoadU(d, oCells.m_apMean[2] + i)) + vOne;
    const auto vMean3 = hn::PromoteTo(d32, hn::LoadU(d, oCells.m_apMean[3] + i)) + vOne;
    const auto vTarget = hn::ConvertTo(dFloat, hn::ShiftRight<2>(vMean0 + vMean1 + vMean2 + vMean3));
    hn::Vec<Bytes> vEven, vOdd;
    hn::LoadInterleaved2(d, oCells.m_pUpper + 2 * i, vEven, vOdd);
    hn::StoreInterleaved2(BalanceSamples(vEven, vTarget, hn::ConvertTo(dFloat, vMean0)),
                          BalanceSamples(vOdd, vTarget, hn::ConvertTo(dFloat, vMean1)), d,
                          oCells.m_pOutUpper + 2 * i);
    hn::LoadInterleaved2(d, oCells.m_pLower + 2 * i, vEven, vOdd);
    hn::StoreInterleaved2(BalanceSamples(vEven, vTarget, hn::ConvertTo(dFloat, vMean2)),
                          BalanceSamples(vOdd, vTarget, hn::ConvertTo(dFloat, vMean3)), d,
                          oCells.m_pOutLower + 2 * i);
  }
  BalanceCells oRest = oCells;
  for (const uint8_t*& pMean : oRest.m_apMean) pMean += i;
  oRest.m_pUpper += 2 * i;
  oRest.m_pLower += 2 * i;
  oRest.m_pOutUpper += 2 * i;
  oRest.m_pOutLower += 2 * i;
  Reference::BalanceCellsRow(oRest, nCells - i);
}

}  // namespace HWY_NAMESPACE
}  // namespace MXKernels
HWY_AFTER_NAMESPACE();
#endif

#if HWY_ONCE
namespace MXKernels {

MXKERNELS_TABLE(AdjustBrightnessRow);
MXKERNELS_TABLE(BalanceCellsRow);

void AdjustBrightnessRow(const uint8_t* pIn, const uint8_t* pReference, uint8_t* pOut, size_t nCount,
                         uint8_t nValue, uint8_t nMinimum) noexcept {
  MXKERNELS_CALL(AdjustBrightnessRow)(pIn, pReference, pOut, nCount, nValue, nMinimum);
}

void BalanceCellsRow(const BalanceCells& oCells, size_t nCells) noexcept {
  MXKERNELS_CALL(BalanceCellsRow)(oCells, nCells);
}

}  // namespace MXKernels
#endif
