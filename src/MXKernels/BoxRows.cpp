// Vector variants of the kernels of the mean filter and threshold.
#include "MXKernels/BoxRows.h"

#include <algorithm>

#include "KernelTargets.h"
#include "MXKernels/Reference.h"

#define HWY_TARGET_INCLUDE "BoxRows.cpp"
#include <hwy/foreach_target.h>

#include "Elementwise-inl.h"

#if MXKERNELS_VECTOR_TARGET
HWY_BEFORE_NAMESPACE();
namespace MXKernels::HWY_NAMESPACE {

/// pPrefix[x] = sum of pSums[0, x), modulo 2^32: its differences are exact as long as the sum of a window
/// fits.
HWY_INLINE void PrefixSums(const uint32_t* pSums, size_t nCount, uint32_t* pPrefix) {
  const hn::FixedTag<uint32_t, 4> d4;
  auto vCarry = hn::Zero(d4);
  pPrefix[0] = 0;
  size_t x = 0;
  for (; x + 4 <= nCount; x += 4) {
    // Only the addition of the carry depends on the step before.
    auto v = hn::LoadU(d4, pSums + x);
    v += hn::ShiftLeftLanes<1>(d4, v);
    v += hn::ShiftLeftLanes<2>(d4, v);
    hn::StoreU(v + vCarry, d4, pPrefix + x + 1);
    vCarry += hn::Broadcast<3>(v);
  }
  uint32_t nCarry = hn::GetLane(vCarry);
  for (; x < nCount; ++x) pPrefix[x + 1] = nCarry += pSums[x];
}

/// Means of full windows in 32-bit floats.
///
/// With half a unit added, the quotient of an integer by nArea is never nearer to an integer than
/// 0.5 / nArea. The reciprocal and the product are each off by a relative 2^-24 at most, so that a quotient
/// below 256 is off by less than 2^-15: for nArea up to 2^14 the truncation gives the integer division.
/// Sums up to 255 * 2^14 with half a unit are exact in a float.
template <typename D>
HWY_INLINE hn::Vec<D> MeansInFloats(D d, hn::Vec<hn::Rebind<uint32_t, D>> vSum, float fReciprocal) {
  const hn::Rebind<int32_t, D> dSigned32;
  const hn::Rebind<float, D> dFloat;
  const auto vReal = hn::ConvertTo(dFloat, hn::BitCast(dSigned32, vSum)) + hn::Set(dFloat, 0.5F);
  return hn::DemoteTo(d, hn::ConvertTo(dSigned32, vReal * hn::Set(dFloat, fReciprocal)));
}

/// The same in 64-bit floats, exact for every sum of 32 bits: a quotient below 2^16 is off by less than
/// 2^-36.
template <typename D>
HWY_INLINE hn::Vec<D> MeansInDoubles(D d, hn::Vec<hn::Rebind<uint32_t, D>> vSum, double dReciprocal) {
  const hn::Rebind<int32_t, D> dSigned32;
  const hn::Rebind<double, D> dDouble;
  // Only signed words can be converted: the sum is lowered by 2^31 before, and raised again after it.
  const auto vMoved = hn::BitCast(dSigned32, vSum ^ hn::Set(hn::Rebind<uint32_t, D>(), 0x80000000U));
  const auto vReal = hn::PromoteTo(dDouble, vMoved) + hn::Set(dDouble, 2147483648.5);
  return hn::DemoteTo(d, hn::DemoteTo(dSigned32, vReal * hn::Set(dDouble, dReciprocal)));
}

/// The sums of the windows of nWidth columns that begin at i.
template <typename D>
HWY_INLINE hn::Vec<hn::Rebind<uint32_t, D>> WindowSums(D, const uint32_t* pPrefix, size_t nWidth, size_t i) {
  const hn::Rebind<uint32_t, D> d32;
  return hn::LoadU(d32, pPrefix + i + nWidth) - hn::LoadU(d32, pPrefix + i);
}

template <typename T>
HWY_INLINE void MeanOfFullWindows(const uint32_t* pPrefix, size_t nCount, size_t nWidth, uint32_t nArea,
                                  T* pOut) {
  bool bDone = false;
  if (sizeof(T) == 1 && nArea <= 16384) {
    using Samples = hn::Rebind<T, hn::ScalableTag<float>>;
    const auto Rule = [=, fReciprocal = 1.0F / static_cast<float>(nArea)](Samples d, size_t i) HWY_ATTR {
      return MeansInFloats(d, WindowSums(d, pPrefix, nWidth, i), fReciprocal);
    };
    bDone = ForEachVector(Samples(), Rule, pOut, nCount);
  } else {
    using Samples = hn::Rebind<T, hn::ScalableTag<double>>;
    const auto Rule = [=, dReciprocal = 1.0 / static_cast<double>(nArea)](Samples d, size_t i) HWY_ATTR {
      return MeansInDoubles(d, WindowSums(d, pPrefix, nWidth, i), dReciprocal);
    };
    bDone = ForEachVector(Samples(), Rule, pOut, nCount);
  }
  if (bDone) return;
  for (size_t x = 0; x < nCount; ++x) pOut[x] = static_cast<T>((pPrefix[x + nWidth] - pPrefix[x]) / nArea);
}

template <typename T>
void SlidingMeanRow(const uint32_t* pSums, size_t nCount, size_t nHalf, uint32_t nRows, uint32_t* pPrefix,
                    T* pOut) noexcept {
  if (nCount == 0) return;
  PrefixSums(pSums, nCount, pPrefix);
  const size_t nLeft = std::min(nHalf, nCount);
  const size_t nRight = std::max(nLeft, nCount - nLeft);
  for (size_t x = 0; x < nLeft; ++x) {
    const size_t nEnd = std::min(x + nHalf + 1, nCount);
    pOut[x] = static_cast<T>(pPrefix[nEnd] / (nRows * static_cast<uint32_t>(nEnd)));
  }
  const auto nWidth = static_cast<uint32_t>(2 * nHalf + 1);
  MeanOfFullWindows(pPrefix, nRight - nLeft, nWidth, nRows * nWidth, pOut + nLeft);
  for (size_t x = nRight; x < nCount; ++x) {
    const size_t nBegin = x - nHalf;
    const uint32_t nSum = pPrefix[nCount] - pPrefix[nBegin];
    pOut[x] = static_cast<T>(nSum / (nRows * static_cast<uint32_t>(nCount - nBegin)));
  }
}

void AboveMeanRow(const uint8_t* pIn, const uint32_t* pSums, size_t nCount, const WindowThreshold& oWindow,
                  uint32_t* pPrefix, uint8_t* pOut) noexcept {
  constexpr uint64_t cnLargestArea = 0x7FFFFFFF / 511;
  const size_t nWidth = oWindow.m_nLeft + oWindow.m_nRight + 1;
  const uint64_t nArea = uint64_t{oWindow.m_nRows} * nWidth;
  if (nCount < nWidth || nArea > cnLargestArea) {
    return Reference::AboveMeanRow(pIn, pSums, nCount, oWindow, pPrefix, pOut);
  }
  PrefixSums(pSums, nCount, pPrefix);
  const auto Border = [&](size_t nFirst, size_t nEnd) {
    for (size_t x = nFirst; x < nEnd; ++x) {
      const size_t nBegin = x - std::min(x, oWindow.m_nLeft);
      const size_t nStop = std::min(x + oWindow.m_nRight + 1, nCount);
      const auto nPixels = static_cast<int32_t>(oWindow.m_nRows * static_cast<uint32_t>(nStop - nBegin));
      const auto nSum = static_cast<int32_t>(pPrefix[nStop] - pPrefix[nBegin]);
      pOut[x] = (pIn[x] + oWindow.m_nOffset) * nPixels > nSum ? oWindow.m_nAbove : oWindow.m_nBelow;
    }
  };
  const size_t nInner = nCount - nWidth + 1;
  // 32 bits suffice: a sample with its offset is at most 511.
  const auto Rule = [=, pInner = pIn + oWindow.m_nLeft, nInnerArea = static_cast<int32_t>(nArea)](
                        BytesOfWords d, size_t i) HWY_ATTR {
    const hn::Rebind<int32_t, BytesOfWords> d32;
    const auto vSum = hn::BitCast(d32, WindowSums(d, pPrefix, nWidth, i));
    const auto vSample = hn::PromoteTo(d32, hn::LoadU(d, pInner + i)) + hn::Set(d32, oWindow.m_nOffset);
    return LimitToBytes(d, hn::IfThenElse(vSample * hn::Set(d32, nInnerArea) > vSum,
                                          hn::Set(d32, oWindow.m_nAbove), hn::Set(d32, oWindow.m_nBelow)));
  };
  Border(0, oWindow.m_nLeft);
  if (!ForEachVector(BytesOfWords(), Rule, pOut + oWindow.m_nLeft, nInner)) {
    Border(oWindow.m_nLeft, oWindow.m_nLeft + nInner);
  }
  Border(oWindow.m_nLeft + nInner, nCount);
}

}  // namespace MXKernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
#endif

#if HWY_ONCE
namespace MXKernels {

constexpr decltype(SlidingMeanRow) SlidingMeanRow{MXKERNELS_LEVELS(SlidingMeanRow),
                                                  MXKERNELS_LEVELS(SlidingMeanRow)};
MXKERNELS_KERNEL(AboveMeanRow);

}  // namespace MXKernels
#endif
