// Bodies of the two-image processors with a compiled rule, for the sources that instantiate them.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "MXImageProcessing/OverlapLoop.h"
#include "MXImageProcessing/TpIp2to1Rule.h"
#include "MXTools/ImageTypeDispatch.h"

template <typename T, typename U, typename V>
inline constexpr bool cbAnyFloating =
    std::is_floating_point_v<T> || std::is_floating_point_v<U> || std::is_floating_point_v<V>;

/// Holds every sample of the two inputs, their difference and every limit of the output. What is worked out in
/// 64 bits of two 32-bit floats and rounded to 32 is what 32 bits give.
template <typename T, typename U, typename V>
using TpWorkingDifference = std::conditional_t<
    cbAnyFloating<T, U, V>, double,
    std::conditional_t<(sizeof(T) < 4 && sizeof(U) < 4 && sizeof(V) < 4), int32_t, int64_t>>;

/// A kernel on bytes.
using ByteRule = void (*)(const uint8_t* pIn1, const uint8_t* pIn2, uint8_t* pOut, size_t nCount) noexcept;

/// The limits are applied to the result itself, so that nothing wraps.
template <typename V, typename W>
V LimitedResult(W nResult, W nLower, W nUpper) {
  // NaN stays NaN in a floating output and becomes the lower limit in an integer one.
  if constexpr (std::is_floating_point_v<W> && !std::is_floating_point_v<V>) {
    if (!(nResult >= nLower)) nResult = nLower;
  } else {
    if (nResult < nLower) nResult = nLower;
  }
  if (nResult > nUpper) nResult = nUpper;
  return static_cast<V>(nResult);
}

template <class TRule>
typename TpIp2to1Rule<TRule>::ClLimits TpIp2to1Rule<TRule>::LimitsOf(const ClImage& oOut) {
  return {std::min(oOut.Black(), oOut.White()), std::max(oOut.Black(), oOut.White())};
}

template <class TRule>
typename TpIp2to1Rule<TRule>::ClLimits TpIp2to1Rule<TRule>::Limits(const ClImage&, const ClImage&,
                                                                   ClImage& oOut) const {
  return LimitsOf(oOut);
}

template <class TRule>
double TpIp2to1Rule<TRule>::GetValue(ClImage&, ClImage&, ClImage& oOut, double dA, double dB) {
  const ClLimits oLimits = LimitsOf(oOut);
  return LimitedResult<double>(TRule::Apply(dA, dB), oLimits.m_dLower, oLimits.m_dUpper);
}

template <class TRule>
long TpIp2to1Rule<TRule>::DoProcess(ClImage& oIn1, ClImage& oIn2, ClImage& oOut, long nWidth, long nHeight,
                                    long nPlanes1, long nPlanes2, long nOffset1, long nRowStep1,
                                    long nOffset2, long nRowStep2, long nOffsetOut, long nRowStepOut) {
  ClOverlap oOverlap{nWidth,    nHeight,  nPlanes1,  nPlanes2,   nOffset1,
                     nRowStep1, nOffset2, nRowStep2, nOffsetOut, nRowStepOut};
  const ClLimits oLimits = Limits(oIn1, oIn2, oOut);
  const ClImage& oSecond = oOverlap.OneForThree() ? SpreadOverlap(oIn2, oOverlap) : oIn2;
  if (!oOverlap.SamplesPair()) return 0;
  return DispatchElementType(oIn1.DataType(), -101, [&](auto oElement) {
    return DispatchDefault<typename decltype(oElement)::Type>(oIn1, oSecond, oOut, oOverlap, oLimits);
  });
}

template <class TRule>
template <typename T>
long TpIp2to1Rule<TRule>::DispatchDefault(const ClImage& oIn1, const ClImage& oIn2, ClImage& oOut,
                                          const ClOverlap& oOverlap, const ClLimits& oLimits) {
  return DispatchElementType(oIn2.DataType(), -101, [&](auto oElement) {
    return DispatchDefault2<T, typename decltype(oElement)::Type>(oIn1, oIn2, oOut, oOverlap, oLimits);
  });
}

template <class TRule>
template <typename T, typename U>
long TpIp2to1Rule<TRule>::DispatchDefault2(const ClImage& oIn1, const ClImage& oIn2, ClImage& oOut,
                                           const ClOverlap& oOverlap, const ClLimits& oLimits) {
  return DispatchElementType(oOut.DataType(), -101, [&](auto oElement) {
    return Default<T, U, typename decltype(oElement)::Type>(oIn1, oIn2, oOut, oOverlap, oLimits);
  });
}

template <class TRule>
template <typename T, typename U, typename V>
long TpIp2to1Rule<TRule>::Default(const ClImage& oIn1, const ClImage& oIn2, ClImage& oOut,
                                  const ClOverlap& oOverlap, const ClLimits& oLimits) {
  using W = typename TRule::template Working<T, U, V>;
  // NOLINTBEGIN(bugprone-signed-char-misuse): limits of signed bytes are numbers, not characters
  const W nLower = static_cast<W>(ElementFromDouble<V>(oLimits.m_dLower));
  const W nUpper = static_cast<W>(ElementFromDouble<V>(oLimits.m_dUpper));
  // NOLINTEND(bugprone-signed-char-misuse)
  const long nSamples = oOverlap.m_nWidth * oOverlap.m_nPlanes1;
  for (long y = 0; y < oOverlap.m_nHeight; ++y) {
    const T* pIn1 = oIn1.Row<T>(0) + oOverlap.m_nOffset1 + y * oOverlap.m_nRowStep1;
    const U* pIn2 = oIn2.Row<U>(0) + oOverlap.m_nOffset2 + y * oOverlap.m_nRowStep2;
    // The output is never one of the inputs here.
    V* __restrict pOut = oOut.Row<V>(0) + oOverlap.m_nOffsetOut + y * oOverlap.m_nRowStepOut;
    if constexpr (std::is_same_v<T, uint8_t> && std::is_same_v<U, uint8_t> && std::is_same_v<V, uint8_t>) {
      constexpr ByteRule pfnBytes = TRule::cpfnBytes;
      if (pfnBytes != nullptr && nLower == 0 && nUpper == 255) {
        pfnBytes(pIn1, pIn2, pOut, static_cast<size_t>(nSamples));
        continue;
      }
    }
    for (long n = 0; n < nSamples; ++n) {
      const W nResult = TRule::Apply(static_cast<W>(pIn1[n]), static_cast<W>(pIn2[n]));
      pOut[n] = LimitedResult<V>(nResult, nLower, nUpper);
    }
  }
  return 0;
}
