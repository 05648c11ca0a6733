// What a kernel is to its callers: an object that is called like a function and runs at the level in force.
#pragma once

#include <cstddef>
#include <cstdint>

#include "MXKernels/Level.h"

namespace MXKernels {

/// The row functions that make one row of one or of two others, with numbers of their own.
template <typename TIn, typename TOut = TIn, typename... TNumbers>
using OneRow = void(const TIn* pIn, TOut* pOut, size_t nCount, TNumbers... oNumbers) noexcept;
template <typename TIn, typename TOut = TIn, typename... TNumbers>
using TwoRows = void(const TIn* pA, const TIn* pB, TOut* pOut, size_t nCount, TNumbers... oNumbers) noexcept;

/// A kernel for several element types, each with a row function of its own; the arguments choose among them.
template <typename... TRows>
struct TpKernel : TpKernel<TRows>... {
  using TpKernel<TRows>::operator()...;
};

/// A row function in one form for each level. A call runs the form of the level in force.
///
/// Kernels are constants that the compiler fills in: constructors of static objects may call them.
/// Threads: reentrant.
template <typename TResult, typename... TArguments>
class TpKernel<TResult(TArguments...) noexcept> {
 public:
  using Row = TResult(TArguments...) noexcept;

  /// The plain form, then those of the other levels; null for a level that this build leaves out, which is
  /// never in force.
  constexpr TpKernel(Row* pfnScalar, Row* pfnSse4, Row* pfnAvx2, Row* pfnAvx3) noexcept
      : m_apfnRow{pfnScalar, pfnSse4, pfnAvx2, pfnAvx3} {}

  TResult operator()(TArguments... oArguments) const noexcept {
    return m_apfnRow[Detail::LevelIndex()](oArguments...);
  }

 private:
  Row* m_apfnRow[eLevelCount];
};

}  // namespace MXKernels
