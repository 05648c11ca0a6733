// Vector variants of the minimum and maximum kernels.
#include "MXKernels/RankRows.h"

#include <cstring>

#include "KernelTargets.h"
#include "MXKernels/Level.h"
#include "MXKernels/Reference.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "RankRows.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "Elementwise-inl.h"

#if MXKERNELS_VECTOR_TARGET
HWY_BEFORE_NAMESPACE();
namespace MXKernels {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

using Bytes = hn::ScalableTag<uint8_t>;

struct PickMin {
  static constexpr uint8_t m_cnNeutral = 255;
  template <typename V>
  static V Pick(V vA, V vB) {
    return hn::Min(vA, vB);
  }
  static void Rest(const uint8_t* pA, const uint8_t* pB, uint8_t* pOut, size_t nCount) noexcept {
    Reference::MinRows(pA, pB, pOut, nCount);
  }
};

struct PickMax {
  static constexpr uint8_t m_cnNeutral = 0;
  template <typename V>
  static V Pick(V vA, V vB) {
    return hn::Max(vA, vB);
  }
  static void Rest(const uint8_t* pA, const uint8_t* pB, uint8_t* pOut, size_t nCount) noexcept {
    Reference::MaxRows(pA, pB, pOut, nCount);
  }
};

template <typename TPick>
struct RuleRank {
  const uint8_t* m_pA;
  const uint8_t* m_pB;
  template <typename D>
  hn::Vec<D> operator()(D d, size_t i) const {
    return TPick::Pick(hn::LoadU(d, m_pA + i), hn::LoadU(d, m_pB + i));
  }
};

template <typename TPick>
HWY_INLINE void PickRows(const uint8_t* pA, const uint8_t* pB, uint8_t* pOut, size_t nCount) {
  if (!ForEachVector(Bytes(), RuleRank<TPick>{pA, pB}, pOut, nCount)) TPick::Rest(pA, pB, pOut, nCount);
}

/// Windows of 1, 2, 4, ... samples that begin at x, each made of two of the size before, until twice the
/// size would pass the width; two overlapping ones then make the full width. Every pass reads only
/// places at or behind the one that it writes, so that one buffer serves.
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

}  // namespace HWY_NAMESPACE
}  // namespace MXKernels
HWY_AFTER_NAMESPACE();
#endif

#if HWY_ONCE
namespace MXKernels {

MXKERNELS_TABLE(MinRows);
MXKERNELS_TABLE(MaxRows);
MXKERNELS_TABLE(MinWindowRow);
MXKERNELS_TABLE(MaxWindowRow);

void MinRows(const uint8_t* pA, const uint8_t* pB, uint8_t* pOut, size_t nCount) noexcept {
  MXKERNELS_CALL(MinRows)(pA, pB, pOut, nCount);
}

void MaxRows(const uint8_t* pA, const uint8_t* pB, uint8_t* pOut, size_t nCount) noexcept {
  MXKERNELS_CALL(MaxRows)(pA, pB, pOut, nCount);
}

void MinWindowRow(const uint8_t* pIn, size_t nCount, size_t nHalf, uint8_t* pWork, uint8_t* pOut) noexcept {
  MXKERNELS_CALL(MinWindowRow)(pIn, nCount, nHalf, pWork, pOut);
}

void MaxWindowRow(const uint8_t* pIn, size_t nCount, size_t nHalf, uint8_t* pWork, uint8_t* pOut) noexcept {
  MXKERNELS_CALL(MaxWindowRow)(pIn, nCount, nHalf, pWork, pOut);
}

}  // namespace MXKernels
#endif
