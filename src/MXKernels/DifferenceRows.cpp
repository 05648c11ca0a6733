// Vector variants of the kernels that follow pictures over time.
#include "MXKernels/DifferenceRows.h"

#include "KernelTargets.h"
#include "MXKernels/Reference.h"

#define HWY_TARGET_INCLUDE "DifferenceRows.cpp"
#include <hwy/foreach_target.h>

#include "Elementwise-inl.h"

#if MXKERNELS_VECTOR_TARGET
HWY_BEFORE_NAMESPACE();
namespace MXKernels::HWY_NAMESPACE {

uint64_t SquaredDifference(const uint8_t* pA, const uint8_t* pB, size_t nCount) noexcept {
  const hn::ScalableTag<int16_t> d16;
  const hn::ScalableTag<int32_t> d32;
  const hn::Rebind<uint8_t, decltype(d16)> d8;
  const size_t nLanes = hn::Lanes(d16);
  // Two squares at most are added to a 32-bit lane for each vector: a lane holds 16384 vectors.
  const size_t nBlock = nLanes << 14;
  const size_t nWhole = nCount - nCount % nLanes;
  uint64_t nSum = 0;
  for (size_t nFrom = 0; nFrom < nWhole; nFrom += nBlock) {
    const size_t nTo = HWY_MIN(nWhole, nFrom + nBlock);
    auto vEven = hn::Zero(d32);
    auto vOdd = hn::Zero(d32);
    for (size_t i = nFrom; i < nTo; i += nLanes) {
      const auto vDifference =
          hn::PromoteTo(d16, hn::LoadU(d8, pA + i)) - hn::PromoteTo(d16, hn::LoadU(d8, pB + i));
      vEven = hn::ReorderWidenMulAccumulate(d32, vDifference, vDifference, vEven, vOdd);
    }
    HWY_ALIGN int32_t aLanes[HWY_MAX_BYTES / sizeof(int32_t)];
    for (const auto vSums : {vEven, vOdd}) {
      hn::Store(vSums, d32, aLanes);
      for (size_t i = 0; i < hn::Lanes(d32); ++i) nSum += static_cast<uint32_t>(aLanes[i]);
    }
  }
  return nSum + Reference::SquaredDifference(pA + nWhole, pB + nWhole, nCount - nWhole);
}

template <typename T, typename TSum>
void AddToSumsRow(const T* pRow, TSum* pSums, size_t nCount) noexcept {
  using Sums = hn::ScalableTag<TSum>;
  const auto Rule = [=](Sums d, size_t i) HWY_ATTR {
    return hn::LoadU(d, pSums + i) + hn::PromoteTo(d, hn::LoadU(hn::Rebind<T, Sums>(), pRow + i));
  };
  if (!ForEachVector(Sums(), Rule, pSums, nCount)) Reference::AddToSumsRow(pRow, pSums, nCount);
}

template <typename T, typename TSum>
void TakeFromSumsRow(const T* pRow, TSum* pSums, size_t nCount) noexcept {
  using Sums = hn::ScalableTag<TSum>;
  const auto Rule = [=](Sums d, size_t i) HWY_ATTR {
    return hn::LoadU(d, pSums + i) - hn::PromoteTo(d, hn::LoadU(hn::Rebind<T, Sums>(), pRow + i));
  };
  if (!ForEachVector(Sums(), Rule, pSums, nCount)) Reference::TakeFromSumsRow(pRow, pSums, nCount);
}

template <typename T, typename TSum>
void MoveSumsRow(const T* pEnter, const T* pLeave, TSum* pSums, size_t nCount) noexcept {
  using Sums = hn::ScalableTag<TSum>;
  const auto Rule = [=](Sums d, size_t i) HWY_ATTR {
    const hn::Rebind<T, Sums> dRow;
    return hn::LoadU(d, pSums + i) + hn::PromoteTo(d, hn::LoadU(dRow, pEnter + i)) -
           hn::PromoteTo(d, hn::LoadU(dRow, pLeave + i));
  };
  if (!ForEachVector(Sums(), Rule, pSums, nCount)) Reference::MoveSumsRow(pEnter, pLeave, pSums, nCount);
}

void DeviationRow(const uint16_t* pIn, const uint16_t* pMean, uint8_t* pOut, size_t nCount,
                  uint16_t nLimit) noexcept {
  const auto Half = [=](HalfBytes d, size_t i) HWY_ATTR {
    const hn::Rebind<uint16_t, HalfBytes> d16;
    const auto vIn = hn::LoadU(d16, pIn + i);
    const auto vMean = hn::LoadU(d16, pMean + i);
    const auto vDistance = hn::Max(vIn, vMean) - hn::Min(vIn, vMean);
    const auto vAbove = hn::Min(hn::SaturatedSub(vDistance, hn::Set(d16, nLimit)), hn::Set(d16, 1));
    return NarrowToBytes(d, vAbove * hn::Set(d16, 255));
  };
  if (!ForEachVector(Bytes(), ByHalves(Half), pOut, nCount)) {
    Reference::DeviationRow(pIn, pMean, pOut, nCount, nLimit);
  }
}

void RemoveBackgroundRow(uint8_t* pPicture, uint8_t* pOldest, uint16_t* pSums, size_t nCount) noexcept {
  const hn::ScalableTag<uint16_t> d16;
  const hn::Rebind<uint8_t, decltype(d16)> d8;
  const size_t nLanes = hn::Lanes(d16);
  const size_t nWhole = nCount - nCount % nLanes;
  for (size_t i = 0; i < nWhole; i += nLanes) {
    const auto vBytes = hn::LoadU(d8, pPicture + i);
    const auto vPicture = hn::PromoteTo(d16, vBytes);
    const auto vOldest = hn::PromoteTo(d16, hn::LoadU(d8, pOldest + i));
    const auto vSums = hn::LoadU(d16, pSums + i);
    hn::StoreU(vSums - vOldest + vPicture, d16, pSums + i);
    hn::StoreU(vBytes, d8, pOldest + i);
    hn::StoreU(NarrowToBytes(d8, hn::SaturatedSub(vPicture, hn::ShiftRight<3>(vSums))), d8, pPicture + i);
  }
  Reference::RemoveBackgroundRow(pPicture + nWhole, pOldest + nWhole, pSums + nWhole, nCount - nWhole);
}

}  // namespace MXKernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
#endif

#if HWY_ONCE
namespace MXKernels {

MXKERNELS_KERNEL(SquaredDifference);
constexpr decltype(AddToSumsRow) AddToSumsRow{MXKERNELS_LEVELS(AddToSumsRow), MXKERNELS_LEVELS(AddToSumsRow),
                                              MXKERNELS_LEVELS(AddToSumsRow)};
constexpr decltype(TakeFromSumsRow) TakeFromSumsRow{
    MXKERNELS_LEVELS(TakeFromSumsRow), MXKERNELS_LEVELS(TakeFromSumsRow), MXKERNELS_LEVELS(TakeFromSumsRow)};
constexpr decltype(MoveSumsRow) MoveSumsRow{MXKERNELS_LEVELS(MoveSumsRow), MXKERNELS_LEVELS(MoveSumsRow),
                                            MXKERNELS_LEVELS(MoveSumsRow)};
MXKERNELS_KERNEL(DeviationRow);
MXKERNELS_KERNEL(RemoveBackgroundRow);

}  // namespace MXKernels
#endif
