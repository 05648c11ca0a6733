// Vector variants of the kernels of the mean filter and threshold.
#include "MXKernels/BoxRows.h"

#include <algorithm>

#include "KernelTargets.h"
#include "MXKernels/Level.h"
#include "MXKernels/Reference.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "BoxRows.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "Elementwise-inl.h"

#if MXKERNELS_VECTOR_TARGET
HWY_BEFORE_NAMESPACE();
namespace MXKernels {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

using Words = hn::ScalableTag<uint32_t>;

template <typename T>
struct RuleAdd {
  const T* m_pRow;
  const uint32_t* m_pSums;
  template <typename D>
  hn::Vec<D> operator()(D d, size_t i) const {
    return hn::LoadU(d, m_pSums + i) + hn::PromoteTo(d, hn::LoadU(hn::Rebind<T, D>(), m_pRow + i));
  }
};

template <typename T>
struct RuleTake {
  const T* m_pRow;
  const uint32_t* m_pSums;
  template <typename D>
  hn::Vec<D> operator()(D d, size_t i) const {
    return hn::LoadU(d, m_pSums + i) - hn::PromoteTo(d, hn::LoadU(hn::Rebind<T, D>(), m_pRow + i));
  }
};

template <typename T>
struct RuleMove {
  const T* m_pEnter;
  const T* m_pLeave;
  const uint32_t* m_pSums;
  template <typename D>
  hn::Vec<D> operator()(D d, size_t i) const {
    const hn::Rebind<T, D> dRow;
    return hn::LoadU(d, m_pSums + i) + hn::PromoteTo(d, hn::LoadU(dRow, m_pEnter + i)) -
           hn::PromoteTo(d, hn::LoadU(dRow, m_pLeave + i));
  }
};

void AddToColumnSumsU8(const uint8_t* pRow, uint32_t* pSums, size_t nCount) noexcept {
  if (!ForEachVector(Words(), RuleAdd<uint8_t>{pRow, pSums}, pSums, nCount)) {
    Reference::AddToColumnSumsU8(pRow, pSums, nCount);
  }
}

void AddToColumnSumsU16(const uint16_t* pRow, uint32_t* pSums, size_t nCount) noexcept {
  if (!ForEachVector(Words(), RuleAdd<uint16_t>{pRow, pSums}, pSums, nCount)) {
    Reference::AddToColumnSumsU16(pRow, pSums, nCount);
  }
}

void TakeFromColumnSumsU8(const uint8_t* pRow, uint32_t* pSums, size_t nCount) noexcept {
  if (!ForEachVector(Words(), RuleTake<uint8_t>{pRow, pSums}, pSums, nCount)) {
    Reference::TakeFromColumnSumsU8(pRow, pSums, nCount);
  }
}

void TakeFromColumnSumsU16(const uint16_t* pRow, uint32_t* pSums, size_t nCount) noexcept {
  if (!ForEachVector(Words(), RuleTake<uint16_t>{pRow, pSums}, pSums, nCount)) {
    Reference::TakeFromColumnSumsU16(pRow, pSums, nCount);
  }
}

void MoveColumnSumsU8(const uint8_t* pEnter, const uint8_t* pLeave, uint32_t* pSums, size_t nCount) noexcept {
  if (!ForEachVector(Words(), RuleMove<uint8_t>{pEnter, pLeave, pSums}, pSums, nCount)) {
    Reference::MoveColumnSumsU8(pEnter, pLeave, pSums, nCount);
  }
}

void MoveColumnSumsU16(const uint16_t* pEnter, const uint16_t* pLeave, uint32_t* pSums,
                       size_t nCount) noexcept {
  if (!ForEachVector(Words(), RuleMove<uint16_t>{pEnter, pLeave, pSums}, pSums, nCount)) {
    Reference::MoveColumnSumsU16(pEnter, pLeave, pSums, nCount);
  }
}

/// pPrefix[x] = sum of pSums[0, x), modulo 2^32: the differences of it are right as long as a window's sum
/// fits.
HWY_INLINE void PrefixSums(const uint32_t* pSums, size_t nCount, uint32_t* pPrefix) {
  const hn::FixedTag<uint32_t, 4> d4;
  auto vCarry = hn::Zero(d4);
  pPrefix[0] = 0;
  size_t x = 0;
  for (; x + 4 <= nCount; x += 4) {
    // Only the addition to the carry waits for the step before.
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
template <typename T>
struct RuleMeanFloat {
  const uint32_t* m_pPrefix;
  size_t m_nWidth;
  float m_fReciprocal;
  template <typename D>
  hn::Vec<D> operator()(D d, size_t i) const {
    const hn::Rebind<uint32_t, D> d32;
    const hn::Rebind<int32_t, D> dSigned32;
    const hn::Rebind<float, D> dFloat;
    const auto vSum = hn::LoadU(d32, m_pPrefix + i + m_nWidth) - hn::LoadU(d32, m_pPrefix + i);
    const auto vReal = hn::ConvertTo(dFloat, hn::BitCast(dSigned32, vSum)) + hn::Set(dFloat, 0.5F);
    return hn::DemoteTo(d, hn::ConvertTo(dSigned32, vReal * hn::Set(dFloat, m_fReciprocal)));
  }
};

/// The same in 64-bit floats, good for every sum of 32 bits: a quotient below 2^16 is off by less than 2^-36.
template <typename T>
struct RuleMeanDouble {
  const uint32_t* m_pPrefix;
  size_t m_nWidth;
  double m_dReciprocal;
  template <typename D>
  hn::Vec<D> operator()(D d, size_t i) const {
    const hn::Rebind<uint32_t, D> d32;
    const hn::Rebind<int32_t, D> dSigned32;
    const hn::Rebind<double, D> dDouble;
    const auto vSum = hn::LoadU(d32, m_pPrefix + i + m_nWidth) - hn::LoadU(d32, m_pPrefix + i);
    // Only signed words convert: the sum is moved down by 2^31 and back.
    const auto vMoved = hn::BitCast(dSigned32, vSum ^ hn::Set(d32, 0x80000000U));
    const auto vReal = hn::PromoteTo(dDouble, vMoved) + hn::Set(dDouble, 2147483648.5);
    return hn::DemoteTo(d, hn::DemoteTo(dSigned32, vReal * hn::Set(dDouble, m_dReciprocal)));
  }
};

template <typename T>
HWY_INLINE void MeanOfFullWindows(const uint32_t* pPrefix, size_t nCount, size_t nWidth, uint32_t nArea,
                                  T* pOut) {
  bool bDone = false;
  if (sizeof(T) == 1 && nArea <= 16384) {
    const hn::Rebind<T, hn::ScalableTag<float>> d;
    bDone =
        ForEachVector(d, RuleMeanFloat<T>{pPrefix, nWidth, 1.0F / static_cast<float>(nArea)}, pOut, nCount);
  } else {
    const hn::Rebind<T, hn::ScalableTag<double>> d;
    bDone =
        ForEachVector(d, RuleMeanDouble<T>{pPrefix, nWidth, 1.0 / static_cast<double>(nArea)}, pOut, nCount);
  }
  if (bDone) return;
  for (size_t x = 0; x < nCount; ++x) pOut[x] = static_cast<T>((pPrefix[x + nWidth] - pPrefix[x]) / nArea);
}

template <typename T>
HWY_INLINE void SlidingMeanRow(const uint32_t* pSums, size_t nCount, size_t nHalf, uint32_t nRows,
                               uint32_t* pPrefix, T* pOut) {
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

void SlidingMeanRowU8(const uint32_t* pSums, size_t nCount, size_t nHalf, uint32_t nRows, uint32_t* pPrefix,
                      uint8_t* pOut) noexcept {
  SlidingMeanRow(pSums, nCount, nHalf, nRows, pPrefix, pOut);
}

void SlidingMeanRowU16(const uint32_t* pSums, size_t nCount, size_t nHalf, uint32_t nRows, uint32_t* pPrefix,
                       uint16_t* pOut) noexcept {
  SlidingMeanRow(pSums, nCount, nHalf, nRows, pPrefix, pOut);
}

/// In 32 bits: a sample with its offset is 511 at most, the area is limited by the caller.
struct RuleAboveMean {
  const uint8_t* m_pIn;
  const uint32_t* m_pPrefix;
  size_t m_nWidth;
  int32_t m_nArea;
  WindowThreshold m_oWindow;
  template <typename D>
  hn::Vec<D> operator()(D d, size_t i) const {
    const hn::Rebind<uint32_t, D> d32;
    const hn::Rebind<int32_t, D> dSigned32;
    const auto vSum = hn::LoadU(d32, m_pPrefix + i + m_nWidth) - hn::LoadU(d32, m_pPrefix + i);
    const auto vSample =
        hn::PromoteTo(dSigned32, hn::LoadU(d, m_pIn + i)) + hn::Set(dSigned32, m_oWindow.m_nOffset);
    const auto vAbove = vSample * hn::Set(dSigned32, m_nArea) > hn::BitCast(dSigned32, vSum);
    return LimitToBytes(d, hn::IfThenElse(vAbove, hn::Set(dSigned32, m_oWindow.m_nAbove),
                                          hn::Set(dSigned32, m_oWindow.m_nBelow)));
  }
};

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
  const RuleAboveMean oRule = {pIn + oWindow.m_nLeft, pPrefix, nWidth, static_cast<int32_t>(nArea), oWindow};
  const hn::Rebind<uint8_t, hn::ScalableTag<int32_t>> d;
  Border(0, oWindow.m_nLeft);
  if (!ForEachVector(d, oRule, pOut + oWindow.m_nLeft, nInner)) {
    Border(oWindow.m_nLeft, oWindow.m_nLeft + nInner);
  }
  Border(oWindow.m_nLeft + nInner, nCount);
}

}  // namespace HWY_NAMESPACE
}  // namespace MXKernels
HWY_AFTER_NAMESPACE();
#endif

#if HWY_ONCE
namespace MXKernels {

MXKERNELS_TABLE(AddToColumnSumsU8);
MXKERNELS_TABLE(AddToColumnSumsU16);
MXKERNELS_TABLE(TakeFromColumnSumsU8);
MXKERNELS_TABLE(TakeFromColumnSumsU16);
MXKERNELS_TABLE(MoveColumnSumsU8);
MXKERNELS_TABLE(MoveColumnSumsU16);
MXKERNELS_TABLE(SlidingMeanRowU8);
MXKERNELS_TABLE(SlidingMeanRowU16);
MXKERNELS_TABLE(AboveMeanRow);

void AddToColumnSumsU8(const uint8_t* pRow, uint32_t* pSums, size_t nCount) noexcept {
  MXKERNELS_CALL(AddToColumnSumsU8)(pRow, pSums, nCount);
}

void AddToColumnSumsU16(const uint16_t* pRow, uint32_t* pSums, size_t nCount) noexcept {
  MXKERNELS_CALL(AddToColumnSumsU16)(pRow, pSums, nCount);
}

void TakeFromColumnSumsU8(const uint8_t* pRow, uint32_t* pSums, size_t nCount) noexcept {
  MXKERNELS_CALL(TakeFromColumnSumsU8)(pRow, pSums, nCount);
}

void TakeFromColumnSumsU16(const uint16_t* pRow, uint32_t* pSums, size_t nCount) noexcept {
  MXKERNELS_CALL(TakeFromColumnSumsU16)(pRow, pSums, nCount);
}

void MoveColumnSumsU8(const uint8_t* pEnter, const uint8_t* pLeave, uint32_t* pSums, size_t nCount) noexcept {
  MXKERNELS_CALL(MoveColumnSumsU8)(pEnter, pLeave, pSums, nCount);
}

void MoveColumnSumsU16(const uint16_t* pEnter, const uint16_t* pLeave, uint32_t* pSums,
                       size_t nCount) noexcept {
  MXKERNELS_CALL(MoveColumnSumsU16)(pEnter, pLeave, pSums, nCount);
}

void SlidingMeanRowU8(const uint32_t* pSums, size_t nCount, size_t nHalf, uint32_t nRows, uint32_t* pPrefix,
                      uint8_t* pOut) noexcept {
  MXKERNELS_CALL(SlidingMeanRowU8)(pSums, nCount, nHalf, nRows, pPrefix, pOut);
}

void SlidingMeanRowU16(const uint32_t* pSums, size_t nCount, size_t nHalf, uint32_t nRows, uint32_t* pPrefix,
                       uint16_t* pOut) noexcept {
  MXKERNELS_CALL(SlidingMeanRowU16)(pSums, nCount, nHalf, nRows, pPrefix, pOut);
}

void AboveMeanRow(const uint8_t* pIn, const uint32_t* pSums, size_t nCount, const WindowThreshold& oWindow,
                  uint32_t* pPrefix, uint8_t* pOut) noexcept {
  MXKERNELS_CALL(AboveMeanRow)(pIn, pSums, nCount, oWindow, pPrefix, pOut);
}

}  // namespace MXKernels
#endif
