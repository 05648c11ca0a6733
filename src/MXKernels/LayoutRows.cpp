// Vector variants of the kernels that move samples.
#include "MXKernels/LayoutRows.h"

#include "KernelTargets.h"
#include "MXKernels/Reference.h"

#define HWY_TARGET_INCLUDE "LayoutRows.cpp"
#include <hwy/foreach_target.h>

#include "Elementwise-inl.h"

#if MXKERNELS_VECTOR_TARGET
HWY_BEFORE_NAMESPACE();
namespace MXKernels::HWY_NAMESPACE {

alignas(16) constexpr uint8_t g_aBackwards[16] = {15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0};

void ReverseRow(const uint8_t* pIn, uint8_t* pOut, size_t nCount) noexcept {
  const auto Rule = [=](Bytes d, size_t i) HWY_ATTR {
    const auto v = hn::LoadU(d, pIn + nCount - i - hn::Lanes(d));
    return hn::ReverseBlocks(d, hn::TableLookupBytes(v, hn::LoadDup128(d, g_aBackwards)));
  };
  if (!ForEachVector(Bytes(), Rule, pOut, nCount)) Reference::ReverseRow(pIn, pOut, nCount);
}

void ScaleDownRow(const uint8_t* pUpper, const uint8_t* pLower, size_t nCells, uint8_t* pMean, uint8_t* pMax,
                  uint8_t* pMin) noexcept {
  const Bytes d;
  const hn::Half<Bytes> dHalf;
  const hn::Repartition<uint16_t, Bytes> d16;
  const hn::Repartition<int16_t, Bytes> dSigned16;
  const size_t nLanes = hn::Lanes(d);
  size_t i = 0;
  for (; i + nLanes <= nCells; i += nLanes) {
    hn::Vec<Bytes> vA, vB, vC, vD;
    hn::LoadInterleaved2(d, pUpper + 2 * i, vA, vB);
    hn::LoadInterleaved2(d, pLower + 2 * i, vC, vD);
    hn::StoreU(hn::Max(hn::Max(vA, vB), hn::Max(vC, vD)), d, pMax + i);
    hn::StoreU(hn::Min(hn::Min(vA, vB), hn::Min(vC, vD)), d, pMin + i);
    const auto vLow =
        hn::PromoteTo(d16, hn::LowerHalf(dHalf, vA)) + hn::PromoteTo(d16, hn::LowerHalf(dHalf, vB)) +
        hn::PromoteTo(d16, hn::LowerHalf(dHalf, vC)) + hn::PromoteTo(d16, hn::LowerHalf(dHalf, vD));
    const auto vHigh =
        hn::PromoteTo(d16, hn::UpperHalf(dHalf, vA)) + hn::PromoteTo(d16, hn::UpperHalf(dHalf, vB)) +
        hn::PromoteTo(d16, hn::UpperHalf(dHalf, vC)) + hn::PromoteTo(d16, hn::UpperHalf(dHalf, vD));
    hn::StoreU(hn::DemoteTo(dHalf, hn::BitCast(dSigned16, hn::ShiftRight<2>(vLow))), dHalf, pMean + i);
    hn::StoreU(hn::DemoteTo(dHalf, hn::BitCast(dSigned16, hn::ShiftRight<2>(vHigh))), dHalf,
               pMean + i + nLanes / 2);
  }
  Reference::ScaleDownRow(pUpper + 2 * i, pLower + 2 * i, nCells - i, pMean + i, pMax + i, pMin + i);
}

void ScaleUpRow(const uint8_t* pIn, uint8_t* pOut, size_t nCount) noexcept {
  const Bytes d;
  const size_t nLanes = hn::Lanes(d);
  size_t i = 0;
  for (; i + nLanes <= nCount; i += nLanes) {
    const auto v = hn::LoadU(d, pIn + i);
    hn::StoreInterleaved2(v, v, d, pOut + 2 * i);
  }
  Reference::ScaleUpRow(pIn + i, pOut + 2 * i, nCount - i);
}

}  // namespace MXKernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
#endif

#if HWY_ONCE
namespace MXKernels {

MXKERNELS_KERNEL(ReverseRow);
MXKERNELS_KERNEL(ScaleDownRow);
MXKERNELS_KERNEL(ScaleUpRow);

}  // namespace MXKernels
#endif
