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

/// The sums of the blocks of 128 bits up to each block, in all lanes of the block; v has the sum of its block
/// there.
template <typename D>
HWY_INLINE hn::Vec<D> SumsOfBlocks(D d, hn::Vec<D> v) {
  const hn::Repartition<uint32_t, D> d32;
  const size_t nLanes = hn::Lanes(d32);
  const auto vLane = hn::Iota(d32, 0);
  for (size_t nStep = 4; nStep < nLanes; nStep *= 2) {
    const auto vStep = hn::Set(d32, static_cast<uint32_t>(nStep));
    const auto vFrom = (vLane - vStep) & hn::Set(d32, static_cast<uint32_t>(nLanes - 1));
    const auto vBefore = hn::TableLookupLanes(hn::BitCast(d32, v), hn::IndicesFromVec(d32, vFrom));
    v += hn::BitCast(d, hn::IfThenZeroElse(vLane < vStep, vBefore));
  }
  return v;
}

/// The sums of the lanes up to each lane, for each block of 128 bits by itself. Lanes of 64 bits are shifted
/// where that will do: on x86 there is one unit for what moves samples elsewhere.
template <typename D>
HWY_INLINE hn::Vec<D> SumsInBlocks(D d, hn::Vec<D> v) {
  const hn::Repartition<uint8_t, D> d8;
  const hn::Repartition<uint64_t, D> d64;
  constexpr int cnBits = 8 * sizeof(hn::TFromD<D>);
  v += hn::BitCast(d, hn::ShiftLeft<cnBits>(hn::BitCast(d64, v)));
  if (cnBits == 16) v += hn::BitCast(d, hn::ShiftLeft<32>(hn::BitCast(d64, v)));
  // The last lane of the lower half goes to all lanes of the upper one.
  alignas(16) static constexpr uint8_t caFrom16[16] = {255, 255, 255, 255, 255, 255, 255, 255,
                                                       6,   7,   6,   7,   6,   7,   6,   7};
  alignas(16) static constexpr uint8_t caFrom32[16] = {255, 255, 255, 255, 255, 255, 255, 255,
                                                       4,   5,   6,   7,   4,   5,   6,   7};
  const auto vFrom = hn::LoadDup128(d8, cnBits == 16 ? caFrom16 : caFrom32);
  return v + hn::BitCast(d, hn::TableLookupBytesOr0(hn::BitCast(d8, v), vFrom));
}

/// The last lane of each block of 128 bits in all lanes of the block.
template <typename D>
HWY_INLINE hn::Vec<D> LastOfBlocks(D d, hn::Vec<D> v) {
  const hn::Repartition<uint8_t, D> d8;
  alignas(16) static constexpr uint8_t caFrom16[16] = {14, 15, 14, 15, 14, 15, 14, 15,
                                                       14, 15, 14, 15, 14, 15, 14, 15};
  alignas(16) static constexpr uint8_t caFrom32[16] = {12, 13, 14, 15, 12, 13, 14, 15,
                                                       12, 13, 14, 15, 12, 13, 14, 15};
  const auto vFrom = hn::LoadDup128(d8, sizeof(hn::TFromD<D>) == 2 ? caFrom16 : caFrom32);
  return hn::BitCast(d, hn::TableLookupBytes(hn::BitCast(d8, v), vFrom));
}

/// pPrefix[x] = sum of pSums[0, x), modulo 2^16 or 2^32: its differences are exact as long as the sum of a
/// window fits.
template <typename T>
HWY_INLINE void PrefixSums(const T* pSums, size_t nCount, T* pPrefix) {
  const hn::ScalableTag<T> d;
  const hn::Repartition<uint32_t, decltype(d)> d32;
  const auto vLastLane = hn::IndicesFromVec(d32, hn::Set(d32, static_cast<uint32_t>(hn::Lanes(d32) - 1)));
  auto vCarry = hn::Zero(d);
  pPrefix[0] = 0;
  size_t x = 0;
  for (; x + hn::Lanes(d) <= nCount; x += hn::Lanes(d)) {
    // Only the addition of the carry depends on the step before.
    const auto v = SumsInBlocks(d, hn::LoadU(d, pSums + x));
    const auto vBlock = LastOfBlocks(d, v);
    const auto vBlocks = SumsOfBlocks(d, vBlock);
    hn::StoreU(v + (vBlocks - vBlock) + vCarry, d, pPrefix + x + 1);
    vCarry += hn::BitCast(d, hn::TableLookupLanes(hn::BitCast(d32, vBlocks), vLastLane));
  }
  T nCarry = hn::GetLane(vCarry);
  for (; x < nCount; ++x) pPrefix[x + 1] = nCarry = static_cast<T>(nCarry + pSums[x]);
}

/// What takes the place of a division of s by nArea, for nArea up to 256 and s up to 255 * nArea:
/// (s + more) * factor >> 16 >> shift.
///
/// The quotient of 2^(16 + shift) by nArea is rounded up, or down while one is added to s. The errors of both
/// add up to nArea, which is below 2^(shift + 1), so that one of them is 2^shift at most: the product is then
/// off by less than one part of nArea. A power of two has the factor 2^16 - 1.
struct NarrowDivisor {
  explicit NarrowDivisor(uint32_t nArea) {
    while (2U << m_nShift <= nArea) ++m_nShift;
    const uint32_t nDown = (uint32_t{1} << (16 + m_nShift)) / nArea;
    const uint32_t nBeyond = (nDown + 1) * nArea - (uint32_t{1} << (16 + m_nShift));
    const bool bUp = nDown < 65535 && nBeyond <= 1U << m_nShift;
    m_nFactor = static_cast<uint16_t>(HWY_MIN(nDown + (bUp ? 1 : 0), 65535U));
    m_nMore = bUp ? 0 : 1;
  }
  template <typename D, typename V>
  HWY_INLINE V Quotients(D d, V vSum) const {
    const auto vProduct = hn::MulHigh(vSum + hn::Set(d, m_nMore), hn::Set(d, m_nFactor));
    return hn::ShiftRightSame(vProduct, m_nShift);
  }

  uint16_t m_nFactor = 0;
  uint16_t m_nMore = 0;
  int m_nShift = 0;
};

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
template <typename D, typename T>
HWY_INLINE hn::Vec<hn::Rebind<T, D>> WindowSums(D, const T* pPrefix, size_t nWidth, size_t i) {
  const hn::Rebind<T, D> dSums;
  return hn::LoadU(dSums, pPrefix + i + nWidth) - hn::LoadU(dSums, pPrefix + i);
}

HWY_INLINE bool MeanOfFullWindows(const uint16_t* pPrefix, size_t nCount, size_t nWidth, uint32_t nArea,
                                  uint8_t* pOut) {
  const auto Half = [=, oDivisor = NarrowDivisor(nArea)](HalfBytes d, size_t i) HWY_ATTR {
    const hn::Rebind<uint16_t, HalfBytes> d16;
    return NarrowToBytes(d, oDivisor.Quotients(d16, WindowSums(d, pPrefix, nWidth, i)));
  };
  return ForEachVector(Bytes(), ByHalves(Half), pOut, nCount);
}

template <typename T>
HWY_INLINE bool MeanOfFullWindows(const uint32_t* pPrefix, size_t nCount, size_t nWidth, uint32_t nArea,
                                  T* pOut) {
  if (sizeof(T) == 1 && nArea <= 16384) {
    using Samples = hn::Rebind<T, hn::ScalableTag<float>>;
    const auto Rule = [=, fReciprocal = 1.0F / static_cast<float>(nArea)](Samples d, size_t i) HWY_ATTR {
      return MeansInFloats(d, WindowSums(d, pPrefix, nWidth, i), fReciprocal);
    };
    return ForEachVector(Samples(), Rule, pOut, nCount);
  }
  using Samples = hn::Rebind<T, hn::ScalableTag<double>>;
  const auto Rule = [=, dReciprocal = 1.0 / static_cast<double>(nArea)](Samples d, size_t i) HWY_ATTR {
    return MeansInDoubles(d, WindowSums(d, pPrefix, nWidth, i), dReciprocal);
  };
  return ForEachVector(Samples(), Rule, pOut, nCount);
}

/// Truncated means of windows that are clipped on one side, in floats, for the reasons given at MeansInFloats
/// and MeansInDoubles: compilers turn them into vectors, which a division of integers doesn't let them.
template <typename TReal, typename TSum, typename T>
HWY_INLINE void MeanOfClippedWindows(const TSum* pPrefix, size_t nCount, size_t nHalf, uint32_t nRows,
                                     T* pOut) {
  const auto Mean = [](TSum nSum, uint32_t nArea) {
    const TReal fMean = (static_cast<TReal>(nSum) + TReal{0.5}) / static_cast<TReal>(nArea);
    return static_cast<T>(static_cast<int32_t>(fMean));
  };
  for (uint32_t x = 0; x < nHalf; ++x) {
    const auto nColumns = x + 1 + static_cast<uint32_t>(nHalf);
    pOut[x] = Mean(pPrefix[nColumns], nRows * nColumns);
  }
  pPrefix += nCount - 2 * nHalf;
  pOut += nCount - nHalf;
  for (uint32_t x = 0; x < nHalf; ++x) {
    const auto nColumns = static_cast<uint32_t>(2 * nHalf) - x;
    pOut[x] = Mean(static_cast<TSum>(pPrefix[2 * nHalf] - pPrefix[x]), nRows * nColumns);
  }
}

template <typename TSum, typename T>
void SlidingMeanRow(const TSum* pSums, size_t nCount, size_t nHalf, uint32_t nRows, TSum* pPrefix,
                    T* pOut) noexcept {
  const uint32_t nWidth = static_cast<uint32_t>(2 * nHalf + 1);
  if (nCount < nWidth) return Reference::SlidingMeanRow(pSums, nCount, nHalf, nRows, pPrefix, pOut);
  PrefixSums(pSums, nCount, pPrefix);
  const uint32_t nArea = nRows * nWidth;
  if (sizeof(T) == 1 && nArea <= 16384) {
    MeanOfClippedWindows<float>(pPrefix, nCount, nHalf, nRows, pOut);
  } else {
    MeanOfClippedWindows<double>(pPrefix, nCount, nHalf, nRows, pOut);
  }
  if (MeanOfFullWindows(pPrefix, nCount - nWidth + 1, nWidth, nArea, pOut + nHalf)) return;
  for (size_t x = nHalf; x < nCount - nHalf; ++x) {
    pOut[x] = static_cast<T>(static_cast<TSum>(pPrefix[x + nHalf + 1] - pPrefix[x - nHalf]) / nArea);
  }
}

/// Whether all products of samples and areas fit the 16 or 32 bits in which they are compared with sums.
HWY_INLINE bool AreasFit(const uint16_t*, uint64_t nArea, int32_t nOffset) {
  return nOffset >= 0 && nArea * static_cast<uint64_t>(255 + nOffset) <= 65535;
}
HWY_INLINE bool AreasFit(const uint32_t*, uint64_t nArea, int32_t) {
  return nArea <= 0x7FFFFFFF / 511;
}

/// The windows of nWidth columns from pPrefix on, for the samples from pIn on.
HWY_INLINE bool AboveFullWindows(const uint8_t* pIn, const uint16_t* pPrefix, size_t nCount, size_t nWidth,
                                 const WindowThreshold& oWindow, uint8_t* pOut) {
  const auto nArea = static_cast<uint16_t>(oWindow.m_nRows * nWidth);
  const auto nOffset = static_cast<uint16_t>(oWindow.m_nOffset);
  // As signed bytes, -1 where a sample is above its mean.
  const auto Half = [=](HalfBytes d, size_t i) HWY_ATTR {
    const hn::Rebind<uint16_t, HalfBytes> d16;
    const hn::RebindToSigned<decltype(d16)> dSigned16;
    const auto vSample = hn::PromoteTo(d16, hn::LoadU(d, pIn + i)) + hn::Set(d16, nOffset);
    const auto bAbove = vSample * hn::Set(d16, nArea) > WindowSums(d, pPrefix, nWidth, i);
    const auto vAbove = hn::BitCast(dSigned16, hn::VecFromMask(d16, bAbove));
    return hn::BitCast(d, hn::DemoteTo(hn::RebindToSigned<HalfBytes>(), vAbove));
  };
  const auto Rule = [=, oHalves = ByHalves(Half), nAbove = oWindow.m_nAbove, nBelow = oWindow.m_nBelow](
                        Bytes d, size_t i) HWY_ATTR {
    return hn::IfThenElse(hn::MaskFromVec(oHalves(d, i)), hn::Set(d, nAbove), hn::Set(d, nBelow));
  };
  return ForEachVector(Bytes(), Rule, pOut, nCount);
}

HWY_INLINE bool AboveFullWindows(const uint8_t* pIn, const uint32_t* pPrefix, size_t nCount, size_t nWidth,
                                 const WindowThreshold& oWindow, uint8_t* pOut) {
  const auto nArea = static_cast<int32_t>(oWindow.m_nRows * nWidth);
  const auto Rule = [=](BytesOfWords d, size_t i) HWY_ATTR {
    const hn::Rebind<int32_t, BytesOfWords> d32;
    const auto vSum = hn::BitCast(d32, WindowSums(d, pPrefix, nWidth, i));
    const auto vSample = hn::PromoteTo(d32, hn::LoadU(d, pIn + i)) + hn::Set(d32, oWindow.m_nOffset);
    return LimitToBytes(d, hn::IfThenElse(vSample * hn::Set(d32, nArea) > vSum,
                                          hn::Set(d32, oWindow.m_nAbove), hn::Set(d32, oWindow.m_nBelow)));
  };
  return ForEachVector(BytesOfWords(), Rule, pOut, nCount);
}

template <typename TSum>
void AboveMeanRow(const uint8_t* pIn, const TSum* pSums, size_t nCount, const WindowThreshold& oWindow,
                  TSum* pPrefix, uint8_t* pOut) noexcept {
  const size_t nWidth = oWindow.m_nLeft + oWindow.m_nRight + 1;
  if (nCount < nWidth || !AreasFit(pSums, uint64_t{oWindow.m_nRows} * nWidth, oWindow.m_nOffset)) {
    return Reference::AboveMeanRow(pIn, pSums, nCount, oWindow, pPrefix, pOut);
  }
  PrefixSums(pSums, nCount, pPrefix);
  const auto Border = [&](size_t nFirst, size_t nEnd) {
    for (size_t x = nFirst; x < nEnd; ++x) {
      const size_t nBegin = x - std::min(x, oWindow.m_nLeft);
      const size_t nStop = std::min(x + oWindow.m_nRight + 1, nCount);
      const auto nPixels = static_cast<int32_t>(oWindow.m_nRows * static_cast<uint32_t>(nStop - nBegin));
      const auto nSum = static_cast<TSum>(pPrefix[nStop] - pPrefix[nBegin]);
      pOut[x] = (pIn[x] + oWindow.m_nOffset) * nPixels > static_cast<int32_t>(nSum) ? oWindow.m_nAbove
                                                                                    : oWindow.m_nBelow;
    }
  };
  const size_t nInner = nCount - nWidth + 1;
  Border(0, oWindow.m_nLeft);
  if (!AboveFullWindows(pIn + oWindow.m_nLeft, pPrefix, nInner, nWidth, oWindow, pOut + oWindow.m_nLeft)) {
    Border(oWindow.m_nLeft, oWindow.m_nLeft + nInner);
  }
  Border(oWindow.m_nLeft + nInner, nCount);
}

}  // namespace MXKernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
#endif

#if HWY_ONCE
namespace MXKernels {

constexpr decltype(SlidingMeanRow) SlidingMeanRow{
    MXKERNELS_LEVELS(SlidingMeanRow), MXKERNELS_LEVELS(SlidingMeanRow), MXKERNELS_LEVELS(SlidingMeanRow)};
constexpr decltype(AboveMeanRow) AboveMeanRow{MXKERNELS_LEVELS(AboveMeanRow), MXKERNELS_LEVELS(AboveMeanRow)};

}  // namespace MXKernels
#endif
