// Vector variants of the kernels of the first finger mask.
#include "MXKernels/FirstMaskRows.h"

#include <cstring>

#include "KernelTargets.h"
#include "MXKernels/Reference.h"

#define HWY_TARGET_INCLUDE "FirstMaskRows.cpp"
#include <hwy/foreach_target.h>

#include "Elementwise-inl.h"

#if MXKERNELS_VECTOR_TARGET
HWY_BEFORE_NAMESPACE();
namespace MXKernels::HWY_NAMESPACE {

using Numbers = hn::ScalableTag<uint32_t>;
using Integers = hn::ScalableTag<int32_t>;
constexpr size_t cnBlock = 64;

/// Whether one of nCount sums, of which there are a vector at least, is below the limit.
HWY_INLINE bool AnyBelow(const uint32_t* pSums, uint32_t nLimit, size_t nCount) {
  const Integers d;
  const size_t nLanes = hn::Lanes(d);
  const auto Sums = [=](size_t i) HWY_ATTR { return hn::BitCast(d, hn::LoadU(Numbers(), pSums + i)); };
  auto vLeast = Sums(nCount - nLanes);
  for (size_t i = 0; i + nLanes <= nCount; i += nLanes) vLeast = hn::Min(vLeast, Sums(i));
  return !hn::AllFalse(d, vLeast < hn::Set(d, static_cast<int32_t>(nLimit)));
}

/// BelowLimitRow for one block.
HWY_INLINE bool BelowLimitBlock(const uint32_t* pSums, const uint32_t* pLimits, uint32_t* pWork,
                                uint8_t* pOut) {
  const Integers d;
  const auto Triple = [=](Numbers dTriple, size_t i) HWY_ATTR {
    return hn::LoadU(dTriple, pSums + i) + hn::LoadU(dTriple, pSums + i + 1) +
           hn::LoadU(dTriple, pSums + i + 2);
  };
  ForEachVector(Numbers(), Triple, pWork, cnBlock + 12);
  auto vAny = hn::Zero(BytesOfWords());
  const auto Rule = [=, &vAny](BytesOfWords d8, size_t i) HWY_ATTR {
    const auto Sum = [=](size_t k) HWY_ATTR { return hn::LoadU(Numbers(), pWork + i + k); };
    const auto vSum = (Sum(0) + Sum(3)) + (Sum(6) + Sum(9)) + Sum(12);
    const auto bBelow = hn::BitCast(d, vSum) < hn::BitCast(d, hn::LoadU(Numbers(), pLimits + i));
    const auto vBelow = hn::DemoteTo(d8, hn::IfThenElseZero(bBelow, hn::Set(d, 255)));
    vAny = hn::Or(vAny, vBelow);
    return vBelow;
  };
  ForEachVector(BytesOfWords(), Rule, pOut, cnBlock);
  return !hn::AllTrue(BytesOfWords(), vAny == hn::Zero(BytesOfWords()));
}

bool BelowLimitRow(const uint32_t* pSums, size_t nWidth, const uint32_t* pLimits, uint32_t nColumnLimit,
                   uint32_t* pWork, uint8_t* pOut, size_t nCount) noexcept {
  if (nWidth != 15 || nCount < cnBlock) {
    return Reference::BelowLimitRow(pSums, nWidth, pLimits, nColumnLimit, pWork, pOut, nCount);
  }
  bool bAny = false;
  for (size_t nNext = 0; nNext < nCount; nNext += cnBlock) {
    // The last block overlaps the one before it.
    const size_t i = nNext + cnBlock <= nCount ? nNext : nCount - cnBlock;
    if (AnyBelow(pSums + i, nColumnLimit, cnBlock + nWidth - 1)) {
      bAny = BelowLimitBlock(pSums + i, pLimits + i, pWork, pOut + i) || bAny;
    } else {
      std::memset(pOut + i, 0, cnBlock);
    }
  }
  return bAny;
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
HWY_INLINE hn::Vec<Integers> TwiceTheMeans(hn::Vec<Integers> vSums, const float* pFactors) {
  const hn::ScalableTag<float> d;
  const auto vReal = hn::ConvertTo(d, vSums) + hn::Set(d, 0.25F);
  return hn::ConvertTo(Integers(), vReal * hn::LoadU(d, pFactors));
}

/// 255 where near * 100 > far * nFog, for as many pixels from i on as vNearSums has.
template <typename V>
HWY_INLINE hn::Vec<hn::Rebind<uint16_t, Integers>> ClearOfFog(const FogWindows& oWindows, int32_t nFog,
                                                              size_t i, V vNearSums) {
  const Integers d;
  const auto vFarSums = hn::LoadU(Numbers(), oWindows.m_pFar + i + oWindows.m_nFarWidth) -
                        hn::LoadU(Numbers(), oWindows.m_pFar + i);
  const auto vNear = TwiceTheMeans(hn::PromoteTo(d, vNearSums), oWindows.m_pNearFactors + i);
  const auto vFar = TwiceTheMeans(hn::BitCast(d, vFarSums), oWindows.m_pFarFactors + i);
  const auto bClear = vFar * hn::Set(d, nFog) < vNear * hn::Set(d, 100);
  return hn::DemoteTo(hn::Rebind<uint16_t, Integers>(), hn::IfThenElseZero(bClear, hn::Set(d, 255)));
}

void FogRow(const FogWindows& oWindows, int32_t nFog, uint8_t* pMask, size_t nCount) noexcept {
  using Words = hn::ScalableTag<uint16_t>;
  using Samples = hn::Rebind<uint8_t, Words>;
  const auto Rule = [=, &oWindows](Samples d8, size_t i) HWY_ATTR {
    const Words d;
    const hn::Half<Words> dHalf;
    const auto vMask = hn::LoadU(d8, pMask + i);
    if (hn::AllTrue(d8, vMask == hn::Zero(d8))) return vMask;
    auto vNear = hn::Zero(d);
    for (size_t k = 0; k < oWindows.m_nNearWidth; ++k) vNear += hn::LoadU(d, oWindows.m_pNear + i + k);
    const auto vUpper = ClearOfFog(oWindows, nFog, i + hn::Lanes(dHalf), hn::UpperHalf(dHalf, vNear));
    const auto vClear = hn::Combine(d, vUpper, ClearOfFog(oWindows, nFog, i, hn::LowerHalf(vNear)));
    return hn::And(vMask, NarrowToBytes(d8, vClear));
  };
  if (!ForEachVector(Samples(), Rule, pMask, nCount)) Reference::FogRow(oWindows, nFog, pMask, nCount);
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
