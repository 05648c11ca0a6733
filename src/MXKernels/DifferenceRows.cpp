// Vector variants of the kernels that follow pictures over time.
#include "MXKernels/DifferenceRows.h"

#include "KernelTargets.h"
#include "MXKernels/Level.h"
#include "MXKernels/Reference.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "DifferenceRows.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "Elementwise-inl.h"

#if MXKERNELS_VECTOR_TARGET
HWY_BEFORE_NAMESPACE();
namespace MXKernels {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

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

struct RuleAdd {
  const uint8_t* m_pRow;
  const uint16_t* m_pSums;
  template <typename D>
  hn::Vec<D> operator()(D d, size_t i) const {
    return hn::LoadU(d, m_pSums + i) + hn::PromoteTo(d, hn::LoadU(hn::Rebind<uint8_t, D>(), m_pRow + i));
  }
};

void AddToSumsRow(const uint8_t* pRow, uint16_t* pSums, size_t nCount) noexcept {
  if (!ForEachVector(hn::ScalableTag<uint16_t>(), RuleAdd{pRow, pSums}, pSums, nCount)) {
    Reference::AddToSumsRow(pRow, pSums, nCount);
  }
}

struct RuleTake {
  const uint8_t* m_pRow;
  const uint16_t* m_pSums;
  template <typename D>
  hn::Vec<D> operator()(D d, size_t i) const {
    return hn::LoadU(d, m_pSums + i) - hn::PromoteTo(d, hn::LoadU(hn::Rebind<uint8_t, D>(), m_pRow + i));
  }
};

void TakeFromSumsRow(const uint8_t* pRow, uint16_t* pSums, size_t nCount) noexcept {
  if (!ForEachVector(hn::ScalableTag<uint16_t>(), RuleTake{pRow, pSums}, pSums, nCount)) {
    Reference::TakeFromSumsRow(pRow, pSums, nCount);
  }
}

struct RuleDeviation {
  const uint16_t* m_pIn;
  const uint16_t* m_pMean;
  uint16_t m_nLimit;
  template <typename D>
  hn::Vec<D> operator()(D d, size_t i) const {
    return FromHalves(d, i, [this](auto dHalf, size_t j) HWY_ATTR {
      const hn::Rebind<uint16_t, decltype(dHalf)> d16;
      const auto vIn = hn::LoadU(d16, m_pIn + j);
      const auto vMean = hn::LoadU(d16, m_pMean + j);
      const auto vDistance = hn::Max(vIn, vMean) - hn::Min(vIn, vMean);
      const auto vAbove = hn::Min(hn::SaturatedSub(vDistance, hn::Set(d16, m_nLimit)), hn::Set(d16, 1));
      return NarrowToBytes(dHalf, vAbove * hn::Set(d16, 255));
    });
  }
};

void DeviationRow(const uint16_t* pIn, const uint16_t* pMean, uint8_t* pOut, size_t nCount,
                  uint16_t nLimit) noexcept {
  if (!ForEachVector(hn::ScalableTag<uint8_t>(), RuleDeviation{pIn, pMean, nLimit}, pOut, nCount)) {
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

}  // namespace HWY_NAMESPACE
}  // namespace MXKernels
HWY_AFTER_NAMESPACE();
#endif

#if HWY_ONCE
namespace MXKernels {

MXKERNELS_TABLE(SquaredDifference);
MXKERNELS_TABLE(AddToSumsRow);
MXKERNELS_TABLE(TakeFromSumsRow);
MXKERNELS_TABLE(DeviationRow);
MXKERNELS_TABLE(RemoveBackgroundRow);

uint64_t SquaredDifference(const uint8_t* pA, const uint8_t* pB, size_t nCount) noexcept {
  return MXKERNELS_CALL(SquaredDifference)(pA, pB, nCount);
}

void AddToSumsRow(const uint8_t* pRow, uint16_t* pSums, size_t nCount) noexcept {
  MXKERNELS_CALL(AddToSumsRow)(pRow, pSums, nCount);
}

void TakeFromSumsRow(const uint8_t* pRow, uint16_t* pSums, size_t nCount) noexcept {
  MXKERNELS_CALL(TakeFromSumsRow)(pRow, pSums, nCount);
}

void DeviationRow(const uint16_t* pIn, const uint16_t* pMean, uint8_t* pOut, size_t nCount,
                  uint16_t nLimit) noexcept {
  MXKERNELS_CALL(DeviationRow)(pIn, pMean, pOut, nCount, nLimit);
}

void RemoveBackgroundRow(uint8_t* pPicture, uint8_t* pOldest, uint16_t* pSums, size_t nCount) noexcept {
  MXKERNELS_CALL(RemoveBackgroundRow)(pPicture, pOldest, pSums, nCount);
}

}  // namespace MXKernels
#endif
