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

template <typename VFloat>
HWY_INLINE hn::Vec<BytesOfWords> BalanceSamples(hn::Vec<BytesOfWords> vSample, VFloat vTarget, VFloat vMean) {
  const hn::Rebind<int32_t, BytesOfWords> d32;
  const hn::Rebind<float, BytesOfWords> dFloat;
  const auto vOne = hn::Set(d32, 1);
  const auto vRaised = hn::ConvertTo(dFloat, hn::PromoteTo(d32, vSample) + vOne);
  return LimitToBytes(BytesOfWords(), hn::ConvertTo(d32, vRaised * vTarget / vMean) - vOne);
}

void BalanceCellsRow(const BalanceCells& oCells, size_t nCells) noexcept {
  const BytesOfWords d;
  const hn::Rebind<int32_t, BytesOfWords> d32;
  const hn::Rebind<float, BytesOfWords> dFloat;
  const auto vOne = hn::Set(d32, 1);
  const size_t nLanes = hn::Lanes(d);
  size_t i = 0;
  for (; i + nLanes <= nCells; i += nLanes) {
    const auto vMean0 = hn::PromoteTo(d32, hn::LoadU(d, oCells.m_apMean[0] + i)) + vOne;
    const auto vMean1 = hn::PromoteTo(d32, hn::LoadU(d, oCells.m_apMean[1] + i)) + vOne;
    const auto vMean2 = hn::PromoteTo(d32, hn::LoadU(d, oCells.m_apMean[2] + i)) + vOne;
    const auto vMean3 = hn::PromoteTo(d32, hn::LoadU(d, oCells.m_apMean[3] + i)) + vOne;
    const auto vTarget = hn::ConvertTo(dFloat, hn::ShiftRight<2>(vMean0 + vMean1 + vMean2 + vMean3));
    hn::Vec<BytesOfWords> vEven, vOdd;
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

}  // namespace MXKernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
#endif

#if HWY_ONCE
namespace MXKernels {

MXKERNELS_KERNEL(AdjustBrightnessRow);
MXKERNELS_KERNEL(BalanceCellsRow);

}  // namespace MXKernels
#endif
