// Vector variants of the linear filters' kernels.
#include "MXKernels/TapRows.h"

#include "KernelTargets.h"
#include "MXKernels/Level.h"
#include "MXKernels/Reference.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "TapRows.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "Elementwise-inl.h"

#if MXKERNELS_VECTOR_TARGET
HWY_BEFORE_NAMESPACE();
namespace MXKernels {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

using Words = hn::ScalableTag<int32_t>;

/// The sums stay in a register over all taps, so that each sample is loaded and no sum is stored in between.
template <typename T>
struct RuleWeightRows {
  const T* m_pIn;
  const size_t* m_pOffsets;
  const int32_t* m_pTaps;
  size_t m_nTaps;
  template <typename D>
  hn::Vec<D> operator()(D d, size_t i) const {
    const hn::Rebind<T, D> dRow;
    auto vSum = hn::Zero(d);
    for (size_t k = 0; k < m_nTaps; ++k) {
      const auto vRow = hn::PromoteTo(d, hn::LoadU(dRow, m_pIn + m_pOffsets[k] + i));
      vSum += vRow * hn::Set(d, m_pTaps[k]);
    }
    return vSum;
  }
};

struct RuleWeightLine {
  const int32_t* m_pLine;
  const int32_t* m_pTaps;
  size_t m_nTaps;
  template <typename D>
  hn::Vec<D> operator()(D d, size_t i) const {
    auto vSum = hn::Zero(d);
    for (size_t k = 0; k < m_nTaps; ++k) {
      vSum += hn::LoadU(d, m_pLine + i + k) * hn::Set(d, m_pTaps[k]);
    }
    return vSum;
  }
};

void WeightRowsU8(const uint8_t* pIn, const size_t* pOffsets, const int32_t* pTaps, size_t nTaps,
                  int32_t* pLine, size_t nCount) noexcept {
  if (!ForEachVector(Words(), RuleWeightRows<uint8_t>{pIn, pOffsets, pTaps, nTaps}, pLine, nCount)) {
    Reference::WeightRowsU8(pIn, pOffsets, pTaps, nTaps, pLine, nCount);
  }
}

void WeightRowsI8(const int8_t* pIn, const size_t* pOffsets, const int32_t* pTaps, size_t nTaps,
                  int32_t* pLine, size_t nCount) noexcept {
  if (!ForEachVector(Words(), RuleWeightRows<int8_t>{pIn, pOffsets, pTaps, nTaps}, pLine, nCount)) {
    Reference::WeightRowsI8(pIn, pOffsets, pTaps, nTaps, pLine, nCount);
  }
}

void WeightLine(const int32_t* pLine, const int32_t* pTaps, size_t nTaps, int32_t* pSums,
                size_t nCount) noexcept {
  if (!ForEachVector(Words(), RuleWeightLine{pLine, pTaps, nTaps}, pSums, nCount)) {
    Reference::WeightLine(pLine, pTaps, nTaps, pSums, nCount);
  }
}

}  // namespace HWY_NAMESPACE
}  // namespace MXKernels
HWY_AFTER_NAMESPACE();
#endif

#if HWY_ONCE
namespace MXKernels {

MXKERNELS_TABLE(WeightRowsU8);
MXKERNELS_TABLE(WeightRowsI8);
MXKERNELS_TABLE(WeightLine);

void WeightRowsU8(const uint8_t* pIn, const size_t* pOffsets, const int32_t* pTaps, size_t nTaps,
                  int32_t* pLine, size_t nCount) noexcept {
  MXKERNELS_CALL(WeightRowsU8)(pIn, pOffsets, pTaps, nTaps, pLine, nCount);
}

void WeightRowsI8(const int8_t* pIn, const size_t* pOffsets, const int32_t* pTaps, size_t nTaps,
                  int32_t* pLine, size_t nCount) noexcept {
  MXKERNELS_CALL(WeightRowsI8)(pIn, pOffsets, pTaps, nTaps, pLine, nCount);
}

void WeightLine(const int32_t* pLine, const int32_t* pTaps, size_t nTaps, int32_t* pSums,
                size_t nCount) noexcept {
  MXKERNELS_CALL(WeightLine)(pLine, pTaps, nTaps, pSums, nCount);
}

}  // namespace MXKernels
#endif
