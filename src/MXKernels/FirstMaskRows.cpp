// Vector variants of the kernels of the first finger mask.
#include "MXKernels/FirstMaskRows.h"

#include "KernelTargets.h"
#include "MXKernels/Reference.h"

#define HWY_TARGET_INCLUDE "FirstMaskRows.cpp"
#include <hwy/foreach_target.h>

#include "Elementwise-inl.h"

#if MXKERNELS_VECTOR_TARGET
HWY_BEFORE_NAMESPACE();
namespace MXKernels::HWY_NAMESPACE {

bool BelowLimitRow(const uint32_t* pSums, size_t nWidth, const uint32_t* pLimits, uint32_t* pWork,
                   uint8_t* pOut, size_t nCount) noexcept {
  using Numbers = hn::ScalableTag<int32_t>;
  const hn::ScalableTag<uint32_t> d;
  const Numbers dSigned;
  if (nWidth != 15 || nCount < hn::Lanes(d)) {
    return Reference::BelowLimitRow(pSums, nWidth, pLimits, pWork, pOut, nCount);
  }
  const auto Triple = [=](auto, size_t i) HWY_ATTR {
    return hn::LoadU(d, pSums + i) + hn::LoadU(d, pSums + i + 1) + hn::LoadU(d, pSums + i + 2);
  };
  ForEachVector(d, Triple, pWork, nCount + 12);
  auto vAny = hn::Zero(BytesOfWords());
  const auto Rule = [=, &vAny](BytesOfWords d8, size_t i) HWY_ATTR {
    const auto vSum = (hn::LoadU(d, pWork + i) + hn::LoadU(d, pWork + i + 3)) +
                      (hn::LoadU(d, pWork + i + 6) + hn::LoadU(d, pWork + i + 9)) +
                      hn::LoadU(d, pWork + i + 12);
    const auto bBelow = hn::BitCast(dSigned, vSum) < hn::BitCast(dSigned, hn::LoadU(d, pLimits + i));
    const auto vBelow = hn::DemoteTo(d8, hn::IfThenElseZero(bBelow, hn::Set(dSigned, 255)));
    vAny = hn::Or(vAny, vBelow);
    return vBelow;
  };
  ForEachVector(BytesOfWords(), Rule, pOut, nCount);
  return !hn::AllTrue(BytesOfWords(), vAny == hn::Zero(BytesOfWords()));
}

/// Four sums further on, the prefix has grown by these four: no step needs a shuffle.
void PrefixSumsRow(const uint16_t* pSums, uint32_t* pPrefix, size_t nCount) noexcept {
  const hn::FixedTag<uint32_t, 4> d;
  const hn::FixedTag<uint16_t, 4> d16;
  Reference::PrefixSumsRow(pSums, pPrefix, nCount < 3 ? nCount : 3);
  if (nCount < 3) return;
  auto vPrefix = hn::LoadU(d, pPrefix);
  size_t i = 0;
  for (; i + 7 <= nCount; i += 4) {
    const auto vFour = (hn::LoadU(d16, pSums + i) + hn::LoadU(d16, pSums + i + 1)) +
                       (hn::LoadU(d16, pSums + i + 2) + hn::LoadU(d16, pSums + i + 3));
    vPrefix += hn::PromoteTo(d, vFour);
    hn::StoreU(vPrefix, d, pPrefix + i + 4);
  }
  for (i += 3; i < nCount; ++i) pPrefix[i + 1] = pPrefix[i] + pSums[i];
}

/// Twice the means, truncated. With a quarter added to a sum its quotient stays 0.5 / area away from whole
/// numbers, and floats are off by less than 2^-15 up to 256: areas up to 2^14 do.
template <typename D, typename V>
HWY_INLINE hn::Vec<D> TwiceTheMeans(D d, V vSums, const float* pFactors) {
  const hn::Rebind<float, D> dFloat;
  const auto vReal = hn::ConvertTo(dFloat, vSums) + hn::Set(dFloat, 0.25F);
  return hn::ConvertTo(d, vReal * hn::LoadU(dFloat, pFactors));
}

void FogRow(const FogWindows& oWindows, int32_t nFog, uint8_t* pMask, size_t nCount) noexcept {
  using Words = hn::ScalableTag<int32_t>;
  const Words d;
  const auto Rule = [=, &oWindows](BytesOfWords d8, size_t i) HWY_ATTR {
    const auto vMask = hn::LoadU(d8, pMask + i);
    if (hn::AllTrue(d8, vMask == hn::Zero(d8))) return vMask;
    const hn::Rebind<uint16_t, Words> d16;
    auto vNearSum = hn::Zero(d16);
    for (size_t k = 0; k < oWindows.m_nNearWidth; ++k) vNearSum += hn::LoadU(d16, oWindows.m_pNear + i + k);
    const hn::Rebind<uint32_t, Words> dUnsigned;
    const auto vFarSum = hn::LoadU(dUnsigned, oWindows.m_pFar + i + oWindows.m_nFarWidth) -
                         hn::LoadU(dUnsigned, oWindows.m_pFar + i);
    const auto vNear = TwiceTheMeans(d, hn::PromoteTo(d, vNearSum), oWindows.m_pNearFactors + i);
    const auto vFar = TwiceTheMeans(d, hn::BitCast(d, vFarSum), oWindows.m_pFarFactors + i);
    const auto bClear = vFar * hn::Set(d, nFog) < vNear * hn::Set(d, 100);
    return hn::And(vMask, hn::DemoteTo(d8, hn::IfThenElseZero(bClear, hn::Set(d, 255))));
  };
  if (!ForEachVector(BytesOfWords(), Rule, pMask, nCount)) Reference::FogRow(oWindows, nFog, pMask, nCount);
}

void MoveZerosRow(const uint8_t* pEnter, const uint8_t* pLeave, uint8_t* pCounts, size_t nCount) noexcept {
  const auto Rule = [=](Bytes d, size_t i) HWY_ATTR {
    const auto vZero = hn::Zero(d), vOne = hn::Set(d, 1);
    return hn::LoadU(d, pCounts + i) + hn::IfThenElseZero(hn::LoadU(d, pEnter + i) == vZero, vOne) -
           hn::IfThenElseZero(hn::LoadU(d, pLeave + i) == vZero, vOne);
  };
  if (!ForEachVector(Bytes(), Rule, pCounts, nCount))
    Reference::MoveZerosRow(pEnter, pLeave, pCounts, nCount);
}

void FewZerosRow(const uint8_t* pCounts, size_t nWidth, const uint8_t* pLimits, uint8_t* pWork, uint8_t* pOut,
                 size_t nCount) noexcept {
  if (nWidth % 3 != 0 || nCount < hn::Lanes(Bytes())) {
    return Reference::FewZerosRow(pCounts, nWidth, pLimits, pWork, pOut, nCount);
  }
  const auto Triple = [=](Bytes d, size_t i) HWY_ATTR {
    return hn::LoadU(d, pCounts + i) + hn::LoadU(d, pCounts + i + 1) + hn::LoadU(d, pCounts + i + 2);
  };
  ForEachVector(Bytes(), Triple, pWork, nCount + nWidth - 3);
  const auto Rule = [=](Bytes d, size_t i) HWY_ATTR {
    // A sum that saturates is beyond every limit.
    auto vSum = hn::LoadU(d, pWork + i);
    for (size_t k = 3; k < nWidth; k += 3) vSum = hn::SaturatedAdd(vSum, hn::LoadU(d, pWork + i + k));
    const auto vLimit = hn::LoadU(d, pLimits + i);
    return hn::VecFromMask(d, hn::Max(vSum, vLimit) == vLimit);
  };
  ForEachVector(Bytes(), Rule, pOut, nCount);
}

}  // namespace MXKernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
#endif

#if HWY_ONCE
namespace MXKernels {

MXKERNELS_KERNEL(BelowLimitRow);
MXKERNELS_KERNEL(PrefixSumsRow);
MXKERNELS_KERNEL(FogRow);
MXKERNELS_KERNEL(MoveZerosRow);
MXKERNELS_KERNEL(FewZerosRow);

}  // namespace MXKernels
#endif
