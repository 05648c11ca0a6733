// Vector variants of the kernels of the finger mask's signal.
#include "MXKernels/SmoothRows.h"

#include <cstring>

#include "KernelTargets.h"
#include "MXKernels/Reference.h"

#define HWY_TARGET_INCLUDE "SmoothRows.cpp"
#include <hwy/foreach_target.h>

#include "Elementwise-inl.h"

#if MXKERNELS_VECTOR_TARGET
HWY_BEFORE_NAMESPACE();
namespace MXKernels::HWY_NAMESPACE {

/// The extreme of the seven vectors that fnVector gives for 0 to 6.
template <typename TPick, typename TVector>
HWY_INLINE hn::Vec<Bytes> PickOf7(const TPick& fnPick, const TVector& fnVector) {
  return fnPick(fnPick(fnPick(fnVector(0), fnVector(1)), fnPick(fnVector(2), fnVector(3))),
                fnPick(fnPick(fnVector(4), fnVector(5)), fnVector(6)));
}

template <typename TPick>
HWY_INLINE void RankOf7(const uint8_t* const* ppRows, uint8_t* pWork, uint8_t* pOut, size_t nCount,
                        uint8_t nNeutral, RankOf7Rows& fnReference, const TPick& fnPick) {
  if (nCount < hn::Lanes(Bytes())) return fnReference(ppRows, pWork, pOut, nCount);
  const uint8_t* const apRows[7] = {ppRows[0], ppRows[1], ppRows[2], ppRows[3],
                                    ppRows[4], ppRows[5], ppRows[6]};
  const auto Down = [=, &apRows](Bytes d, size_t i) HWY_ATTR {
    return PickOf7(fnPick, [=, &apRows](size_t k) HWY_ATTR { return hn::LoadU(d, apRows[k] + i); });
  };
  std::memset(pWork, nNeutral, 3);
  std::memset(pWork + 3 + nCount, nNeutral, 3);
  ForEachVector(Bytes(), Down, pWork + 3, nCount);
  const auto Along = [=](Bytes d, size_t i) HWY_ATTR {
    return PickOf7(fnPick, [=](size_t k) HWY_ATTR { return hn::LoadU(d, pWork + i + k); });
  };
  ForEachVector(Bytes(), Along, pOut, nCount);
}

void MinOf7RowsRow(const uint8_t* const* ppRows, uint8_t* pWork, uint8_t* pOut, size_t nCount) noexcept {
  RankOf7(ppRows, pWork, pOut, nCount, 255, Reference::MinOf7RowsRow,
          [](auto vA, auto vB) HWY_ATTR { return hn::Min(vA, vB); });
}

void MaxOf7RowsRow(const uint8_t* const* ppRows, uint8_t* pWork, uint8_t* pOut, size_t nCount) noexcept {
  RankOf7(ppRows, pWork, pOut, nCount, 0, Reference::MaxOf7RowsRow,
          [](auto vA, auto vB) HWY_ATTR { return hn::Max(vA, vB); });
}

using SmoothWords = hn::ScalableTag<uint16_t>;

void MoveLimitedSumsRow(const uint8_t* pEnter, const uint8_t* pLeave, uint16_t* pSums, size_t nCount,
                        uint8_t nMost) noexcept {
  const auto Rule = [=](SmoothWords d, size_t i) HWY_ATTR {
    const hn::Rebind<uint8_t, SmoothWords> d8;
    const auto vMost = hn::Set(d8, nMost);
    return hn::LoadU(d, pSums + i) + hn::PromoteTo(d, hn::Min(hn::LoadU(d8, pEnter + i), vMost)) -
           hn::PromoteTo(d, hn::Min(hn::LoadU(d8, pLeave + i), vMost));
  };
  if (!ForEachVector(SmoothWords(), Rule, pSums, nCount)) {
    Reference::MoveLimitedSumsRow(pEnter, pLeave, pSums, nCount, nMost);
  }
}

void MeanOf7Row(const uint16_t* pSums, const uint16_t* pFactors, uint8_t* pOut, size_t nCount) noexcept {
  using Out = hn::Rebind<uint8_t, SmoothWords>;
  const auto Rule = [=](Out d8, size_t i) HWY_ATTR {
    const SmoothWords d;
    const auto Sum = [=](size_t k) HWY_ATTR { return hn::LoadU(d, pSums + i + k); };
    const auto vSum = ((Sum(0) + Sum(1)) + (Sum(2) + Sum(3))) + ((Sum(4) + Sum(5)) + Sum(6));
    return NarrowToBytes(d8, hn::ShiftRight<3>(hn::MulHigh(vSum, hn::LoadU(d, pFactors + i))));
  };
  if (!ForEachVector(Out(), Rule, pOut, nCount)) Reference::MeanOf7Row(pSums, pFactors, pOut, nCount);
}

void FadeRow(uint8_t* pInOut, uint32_t nFactor, size_t nCount) noexcept {
  const auto Half = [=](HalfBytes d, size_t i) HWY_ATTR {
    const hn::Rebind<uint16_t, HalfBytes> d16;
    const auto vFactor = hn::Set(d16, static_cast<uint16_t>(nFactor));
    return NarrowToBytes(d, hn::MulHigh(hn::PromoteTo(d16, hn::LoadU(d, pInOut + i)), vFactor));
  };
  if (!ForEachVector(Bytes(), ByHalves(Half), pInOut, nCount)) Reference::FadeRow(pInOut, nFactor, nCount);
}

}  // namespace MXKernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
#endif

#if HWY_ONCE
namespace MXKernels {

MXKERNELS_KERNEL(MinOf7RowsRow);
MXKERNELS_KERNEL(MaxOf7RowsRow);
MXKERNELS_KERNEL(MoveLimitedSumsRow);
MXKERNELS_KERNEL(MeanOf7Row);
MXKERNELS_KERNEL(FadeRow);

}  // namespace MXKernels
#endif
