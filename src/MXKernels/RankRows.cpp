// Vector variants of the minimum and maximum kernels.
#include "MXKernels/RankRows.h"

#include <cstring>

#include "KernelTargets.h"
#include "MXKernels/Reference.h"

#define HWY_TARGET_INCLUDE "RankRows.cpp"
#include <hwy/foreach_target.h>

#include "Elementwise-inl.h"

#if MXKERNELS_VECTOR_TARGET
HWY_BEFORE_NAMESPACE();
namespace MXKernels::HWY_NAMESPACE {

struct PickMin {
  static constexpr uint8_t m_cnNeutral = 255;
  static constexpr TwoRows<uint8_t>& m_rfnReference = Reference::MinRows;
  template <typename V>
  V operator()(V vA, V vB) const {
    return hn::Min(vA, vB);
  }
};

struct PickMax {
  static constexpr uint8_t m_cnNeutral = 0;
  static constexpr TwoRows<uint8_t>& m_rfnReference = Reference::MaxRows;
  template <typename V>
  V operator()(V vA, V vB) const {
    return hn::Max(vA, vB);
  }
};

template <typename TPick>
HWY_INLINE void PickRows(const uint8_t* pA, const uint8_t* pB, uint8_t* pOut, size_t nCount) {
  ForEachPair(pA, pB, pOut, nCount, TPick::m_rfnReference, TPick());
}

/// Windows of 1, 2, 4, ... samples that begin at x, each made of two of the size before, until twice the
/// size would pass the width; two overlapping ones then make the full width. Every pass reads only
/// samples at or after the one that it writes, so that one buffer is enough.
template <typename TPick>
HWY_INLINE void WindowRow(const uint8_t* pIn, size_t nCount, size_t nHalf, uint8_t* pWork, uint8_t* pOut) {
  if (nCount == 0) return;
  const size_t nWidth = 2 * nHalf + 1;
  std::memset(pWork, TPick::m_cnNeutral, nHalf);
  std::memcpy(pWork + nHalf, pIn, nCount);
  std::memset(pWork + nHalf + nCount, TPick::m_cnNeutral, nHalf);
  size_t nSize = 1;
  size_t nValid = nCount + 2 * nHalf;
  while (2 * nSize <= nWidth) {
    nValid -= nSize;
    PickRows<TPick>(pWork, pWork + nSize, pWork, nValid);
    nSize *= 2;
  }
  PickRows<TPick>(pWork, pWork + nWidth - nSize, pOut, nCount);
}

void MinRows(const uint8_t* pA, const uint8_t* pB, uint8_t* pOut, size_t nCount) noexcept {
  PickRows<PickMin>(pA, pB, pOut, nCount);
}

void MaxRows(const uint8_t* pA, const uint8_t* pB, uint8_t* pOut, size_t nCount) noexcept {
  PickRows<PickMax>(pA, pB, pOut, nCount);
}

void MinWindowRow(const uint8_t* pIn, size_t nCount, size_t nHalf, uint8_t* pWork, uint8_t* pOut) noexcept {
  WindowRow<PickMin>(pIn, nCount, nHalf, pWork, pOut);
}

void MaxWindowRow(const uint8_t* pIn, size_t nCount, size_t nHalf, uint8_t* pWork, uint8_t* pOut) noexcept {
  WindowRow<PickMax>(pIn, nCount, nHalf, pWork, pOut);
}

}  // namespace MXKernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
#endif

#if HWY_ONCE
namespace MXKernels {

MXKERNELS_KERNEL(MinRows);
MXKERNELS_KERNEL(MaxRows);
MXKERNELS_KERNEL(MinWindowRow);
MXKERNELS_KERNEL(MaxWindowRow);

}  // namespace MXKernels
#endif
