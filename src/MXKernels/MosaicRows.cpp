// Vector variants of the local white balance's kernels.
#include "MXKernels/MosaicRows.h"

#include "KernelTargets.h"
#include "MXKernels/Reference.h"

#define HWY_TARGET_INCLUDE "MosaicRows.cpp"
#include <hwy/foreach_target.h>

#include "Elementwise-inl.h"

#if MXKERNELS_VECTOR_TARGET
HWY_BEFORE_NAMESPACE();
namespace MXKernels::HWY_NAMESPACE {

/// Wider vectors would need more steps to carry sums from block to block than they save.
using PhaseSums = hn::CappedTag<uint16_t, 16>;

/// Sums of each lane and the lanes of its phase before it. vCarry, every pair of lanes alike, has those of
/// the vectors before, and moves on.
template <typename V>
HWY_INLINE V SumsUpToLane(V v, V& vCarry) {
  const PhaseSums d;
  const hn::Repartition<uint32_t, PhaseSums> dPairs;
  v = v + hn::ShiftLeftLanes<2>(d, v);
  v = v + hn::ShiftLeftLanes<4>(d, v);
  auto vTotal = hn::BitCast(d, hn::Broadcast<3>(hn::BitCast(dPairs, v)));
#if HWY_TARGET <= HWY_AVX2
  const auto vBelow = hn::ConcatLowerLower(d, vTotal, hn::Zero(d));
  v = v + vBelow;
  vTotal = vTotal + vBelow;
  vTotal = hn::ConcatUpperUpper(d, vTotal, vTotal);
#endif
  v = v + vCarry;
  vCarry = vCarry + vTotal;
  return v;
}

void PhaseSumsRow(const uint8_t* pIn, size_t nCount, size_t nHalf, uint16_t* pWork,
                  uint16_t* pSums) noexcept {
  const PhaseSums d;
  const hn::Rebind<uint8_t, PhaseSums> d8;
  const size_t nLanes = hn::Lanes(d);
  if (nCount < nLanes) return Reference::PhaseSumsRow(pIn, nCount, nHalf, pWork, pSums);
  // Sums from the beginning of the row, modulo 2^16: the difference of two of them is the sum between.
  const size_t nBefore = 2 * nHalf + 2, nAfter = 2 * nHalf;
  uint16_t* pUpTo = pWork + nBefore;
  auto vCarry = hn::Zero(d);
  for (size_t i = 0; i < nBefore; i += nLanes) hn::StoreU(vCarry, d, pWork + i);
  size_t i = 0;
  for (; i + nLanes <= nCount; i += nLanes) {
    hn::StoreU(SumsUpToLane(hn::PromoteTo(d, hn::LoadU(d8, pIn + i)), vCarry), d, pUpTo + i);
  }
  for (; i < nCount; ++i) pUpTo[i] = static_cast<uint16_t>(pUpTo[i - 2] + pIn[i]);
  for (; i < nCount + nAfter; ++i) pUpTo[i] = pUpTo[i - 2];
  const auto Rule = [=](PhaseSums dSums, size_t k) HWY_ATTR {
    return hn::LoadU(dSums, pWork + k + nBefore + nAfter) - hn::LoadU(dSums, pWork + k);
  };
  ForEachVector(d, Rule, pSums, nCount);
}

using Words = hn::ScalableTag<int32_t>;

/// Moves the windows of one row on and returns the means, raised by 1.
HWY_INLINE hn::Vec<Floats> MoveToMeans(const BalancePair& oPair, int nRow, size_t i) {
  const Words d;
  const Floats dFloat;
  const hn::Rebind<int16_t, Words> d16;
  const hn::Rebind<uint16_t, Words> dSums16;
  const hn::Rebind<uint32_t, Words> dSums;
  const auto vStep =
      hn::LoadU(dSums16, oPair.m_apEnter[nRow] + i) - hn::LoadU(dSums16, oPair.m_apLeave[nRow] + i);
  const auto vSum =
      hn::BitCast(d, hn::LoadU(dSums, oPair.m_apSums[nRow] + i)) + hn::PromoteTo(d, hn::BitCast(d16, vStep));
  hn::StoreU(hn::BitCast(dSums, vSum), dSums, oPair.m_apSums[nRow] + i);
  // The quotient is off by 2^-15 at most. It is raised by twice that, so that a whole one is above its
  // integer, and any other, which is 2^-13 or more below the next, stays there. With the half, the nearest
  // integer is the truncated mean plus 1.
  const auto vMean = hn::MulAdd(hn::ConvertTo(dFloat, vSum), hn::LoadU(dFloat, oPair.m_pPerArea + i),
                                hn::Set(dFloat, 0.5F + 1.0F / 16384));
  return vMean + hn::Set(dFloat, cfToInteger) - hn::Set(dFloat, cfToInteger);
}

/// A quarter of the sum of the means of each cell.
HWY_INLINE hn::Vec<Floats> TargetOf(hn::Vec<Floats> vUpper, hn::Vec<Floats> vLower) {
  const Floats d;
  const auto vColumns = vUpper + vLower;
  // Less 3/8, the nearest integer of a number of quarters is the truncated one.
  const auto vQuarter =
      hn::MulAdd(vColumns + hn::Shuffle2301(vColumns), hn::Set(d, 0.25F), hn::Set(d, -0.375F));
  return vQuarter + hn::Set(d, cfToInteger) - hn::Set(d, cfToInteger);
}

/// (sample + 1) * target / mean - 1.
HWY_INLINE void StoreBalanced(const BalancePair& oPair, int nRow, size_t i, hn::Vec<Floats> vTarget,
                              hn::Vec<Floats> vMean) {
  const Floats d;
  const BytesOfWords d8;
  const auto vSample = hn::ConvertTo(d, hn::PromoteTo(Words(), hn::LoadU(d8, oPair.m_apIn[nRow] + i)));
  const auto vRaised = hn::MulAdd(vSample, vTarget, vTarget + hn::Set(d, 0.5F));
  hn::StoreU(DivideToBytes(vRaised, vMean, 1), d8, oPair.m_apOut[nRow] + i);
}

void BalancePairRow(const BalancePair& oPair, size_t nCount) noexcept {
  const size_t nLanes = hn::Lanes(Words());
  size_t i = 0;
  for (; i + nLanes <= nCount; i += nLanes) {
    const auto vUpper = MoveToMeans(oPair, 0, i), vLower = MoveToMeans(oPair, 1, i);
    const auto vTarget = TargetOf(vUpper, vLower);
    StoreBalanced(oPair, 0, i, vTarget, vUpper);
    StoreBalanced(oPair, 1, i, vTarget, vLower);
  }
  BalancePair oRest = oPair;
  oRest.m_pPerArea += i;
  for (const int n : {0, 1}) {
    oRest.m_apEnter[n] += i;
    oRest.m_apLeave[n] += i;
    oRest.m_apSums[n] += i;
    oRest.m_apIn[n] += i;
    oRest.m_apOut[n] += i;
  }
  Reference::BalancePairRow(oRest, nCount - i);
}

}  // namespace MXKernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
#endif

#if HWY_ONCE
namespace MXKernels {

MXKERNELS_KERNEL(PhaseSumsRow);
MXKERNELS_KERNEL(BalancePairRow);

}  // namespace MXKernels
#endif
