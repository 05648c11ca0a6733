// Vector variants of the kernels that treat each sample by itself.
#include "MXKernels/PointRows.h"

#include "KernelTargets.h"
#include "MXKernels/Level.h"
#include "MXKernels/Reference.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "PointRows.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "Elementwise-inl.h"

#if MXKERNELS_VECTOR_TARGET
HWY_BEFORE_NAMESPACE();
namespace MXKernels {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

using Bytes = hn::ScalableTag<uint8_t>;

struct RuleSubtract {
  const uint8_t* m_pLit;
  const uint8_t* m_pDark;
  template <typename D>
  hn::Vec<D> operator()(D d, size_t i) const {
    return hn::SaturatedSub(hn::LoadU(d, m_pLit + i), hn::LoadU(d, m_pDark + i));
  }
};

void SubtractSaturated(const uint8_t* pLit, const uint8_t* pDark, uint8_t* pOut, size_t nCount) noexcept {
  if (!ForEachVector(Bytes(), RuleSubtract{pLit, pDark}, pOut, nCount)) {
    Reference::SubtractSaturated(pLit, pDark, pOut, nCount);
  }
}

struct RuleAbsoluteDifference {
  const uint8_t* m_pA;
  const uint8_t* m_pB;
  template <typename D>
  hn::Vec<D> operator()(D d, size_t i) const {
    const auto vA = hn::LoadU(d, m_pA + i);
    const auto vB = hn::LoadU(d, m_pB + i);
    return hn::Or(hn::SaturatedSub(vA, vB), hn::SaturatedSub(vB, vA));
  }
};

void AbsoluteDifferenceRow(const uint8_t* pA, const uint8_t* pB, uint8_t* pOut, size_t nCount) noexcept {
  if (!ForEachVector(Bytes(), RuleAbsoluteDifference{pA, pB}, pOut, nCount))
    Reference::AbsoluteDifferenceRow(pA, pB, pOut, nCount);
}

struct RuleAnd {
  const uint8_t* m_pA;
  const uint8_t* m_pB;
  template <typename D>
  hn::Vec<D> operator()(D d, size_t i) const {
    return hn::And(hn::LoadU(d, m_pA + i), hn::LoadU(d, m_pB + i));
  }
};

void AndRow(const uint8_t* pA, const uint8_t* pB, uint8_t* pOut, size_t nCount) noexcept {
  if (!ForEachVector(Bytes(), RuleAnd{pA, pB}, pOut, nCount)) Reference::AndRow(pA, pB, pOut, nCount);
}

struct RuleClamp {
  const uint8_t* m_pIn;
  uint8_t m_nLower, m_nUpper;
  template <typename D>
  hn::Vec<D> operator()(D d, size_t i) const {
    return hn::Min(hn::Max(hn::LoadU(d, m_pIn + i), hn::Set(d, m_nLower)), hn::Set(d, m_nUpper));
  }
};

void ClampRow(const uint8_t* pIn, uint8_t* pOut, size_t nCount, uint8_t nLower, uint8_t nUpper) noexcept {
  if (!ForEachVector(Bytes(), RuleClamp{pIn, nLower, nUpper}, pOut, nCount)) {
    Reference::ClampRow(pIn, pOut, nCount, nLower, nUpper);
  }
}

struct RuleThreshold {
  const uint8_t* m_pIn;
  uint8_t m_nThreshold, m_nBelow, m_nAbove;
  template <typename D>
  hn::Vec<D> operator()(D d, size_t i) const {
    const auto vIn = hn::LoadU(d, m_pIn + i);
    // x86 has no unsigned comparison of bytes, but an unsigned maximum.
    const auto bAbove = hn::Max(vIn, hn::Set(d, m_nThreshold)) == vIn;
    return hn::IfThenElse(bAbove, hn::Set(d, m_nAbove), hn::Set(d, m_nBelow));
  }
};

void ThresholdRow(const uint8_t* pIn, uint8_t* pOut, size_t nCount, uint8_t nThreshold, uint8_t nBelow,
                  uint8_t nAbove) noexcept {
  if (!ForEachVector(Bytes(), RuleThreshold{pIn, nThreshold, nBelow, nAbove}, pOut, nCount)) {
    Reference::ThresholdRow(pIn, pOut, nCount, nThreshold, nBelow, nAbove);
  }
}

struct RuleEqual {
  const uint8_t* m_pIn;
  uint8_t m_nValue;
  template <typename D>
  hn::Vec<D> operator()(D d, size_t i) const {
    return hn::VecFromMask(d, hn::LoadU(d, m_pIn + i) == hn::Set(d, m_nValue));
  }
};

void EqualRow(const uint8_t* pIn, uint8_t* pOut, size_t nCount, uint8_t nValue) noexcept {
  if (!ForEachVector(Bytes(), RuleEqual{pIn, nValue}, pOut, nCount)) {
    Reference::EqualRow(pIn, pOut, nCount, nValue);
  }
}

struct RuleBlend {
  const uint8_t* m_pIn;
  const uint8_t* m_pMask;
  template <typename D>
  hn::Vec<D> operator()(D d, size_t i) const {
    return FromHalves(d, i, [this](auto dHalf, size_t j) HWY_ATTR {
      const hn::Rebind<uint16_t, decltype(dHalf)> d16;
      const auto vProduct =
          hn::PromoteTo(d16, hn::LoadU(dHalf, m_pIn + j)) * hn::PromoteTo(d16, hn::LoadU(dHalf, m_pMask + j));
      return NarrowToBytes(dHalf, hn::Set(d16, 255) - DivideBy255(vProduct));
    });
  }
};

void InvertedBlendRow(const uint8_t* pIn, const uint8_t* pMask, uint8_t* pOut, size_t nCount) noexcept {
  if (!ForEachVector(Bytes(), RuleBlend{pIn, pMask}, pOut, nCount)) {
    Reference::InvertedBlendRow(pIn, pMask, pOut, nCount);
  }
}

}  // namespace HWY_NAMESPACE
}  // namespace MXKernels
HWY_AFTER_NAMESPACE();
#endif

#if HWY_ONCE
namespace MXKernels {

MXKERNELS_TABLE(SubtractSaturated);
MXKERNELS_TABLE(AbsoluteDifferenceRow);
MXKERNELS_TABLE(AndRow);
MXKERNELS_TABLE(ClampRow);
MXKERNELS_TABLE(ThresholdRow);
MXKERNELS_TABLE(EqualRow);
MXKERNELS_TABLE(InvertedBlendRow);

void SubtractSaturated(const uint8_t* pLit, const uint8_t* pDark, uint8_t* pOut, size_t nCount) noexcept {
  MXKERNELS_CALL(SubtractSaturated)(pLit, pDark, pOut, nCount);
}

void AbsoluteDifferenceRow(const uint8_t* pA, const uint8_t* pB, uint8_t* pOut, size_t nCount) noexcept {
  MXKERNELS_CALL(AbsoluteDifferenceRow)(pA, pB, pOut, nCount);
}

void AndRow(const uint8_t* pA, const uint8_t* pB, uint8_t* pOut, size_t nCount) noexcept {
  MXKERNELS_CALL(AndRow)(pA, pB, pOut, nCount);
}

void ClampRow(const uint8_t* pIn, uint8_t* pOut, size_t nCount, uint8_t nLower, uint8_t nUpper) noexcept {
  MXKERNELS_CALL(ClampRow)(pIn, pOut, nCount, nLower, nUpper);
}

void ThresholdRow(const uint8_t* pIn, uint8_t* pOut, size_t nCount, uint8_t nThreshold, uint8_t nBelow,
                  uint8_t nAbove) noexcept {
  MXKERNELS_CALL(ThresholdRow)(pIn, pOut, nCount, nThreshold, nBelow, nAbove);
}

void EqualRow(const uint8_t* pIn, uint8_t* pOut, size_t nCount, uint8_t nValue) noexcept {
  MXKERNELS_CALL(EqualRow)(pIn, pOut, nCount, nValue);
}

void InvertedBlendRow(const uint8_t* pIn, const uint8_t* pMask, uint8_t* pOut, size_t nCount) noexcept {
  MXKERNELS_CALL(InvertedBlendRow)(pIn, pMask, pOut, nCount);
}

}  // namespace MXKernels
#endif
