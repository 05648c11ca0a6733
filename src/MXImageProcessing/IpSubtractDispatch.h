// The inner levels of the difference's type dispatch, included by the sources that compile them.
#pragma once

#include <algorithm>
#include <cstdint>
#include <type_traits>

#include "MXImageProcessing/IpSubtract.h"
#include "MXImageProcessing/OverlapLoop.h"
#include "MXKernels/PointRows.h"
#include "MXTools/ImageTypeDispatch.h"

extern template long ClIpSubtract::DispatchDefault<uint8_t>(ClImage&, ClImage&, ClImage&, const ClOverlap&);
extern template long ClIpSubtract::DispatchDefault<int8_t>(ClImage&, ClImage&, ClImage&, const ClOverlap&);
extern template long ClIpSubtract::DispatchDefault<uint16_t>(ClImage&, ClImage&, ClImage&, const ClOverlap&);
extern template long ClIpSubtract::DispatchDefault<int16_t>(ClImage&, ClImage&, ClImage&, const ClOverlap&);
extern template long ClIpSubtract::DispatchDefault<uint32_t>(ClImage&, ClImage&, ClImage&, const ClOverlap&);
extern template long ClIpSubtract::DispatchDefault<int32_t>(ClImage&, ClImage&, ClImage&, const ClOverlap&);
extern template long ClIpSubtract::DispatchDefault<float>(ClImage&, ClImage&, ClImage&, const ClOverlap&);
extern template long ClIpSubtract::DispatchDefault<double>(ClImage&, ClImage&, ClImage&, const ClOverlap&);

/// Holds every difference of the inputs and every limit of the output. A difference of 32-bit floats that is
/// taken in 64 bits and rounded to 32 is the one that 32 bits give.
template <typename T, typename U, typename V>
using TDifference = std::conditional_t<
    std::is_floating_point_v<T> || std::is_floating_point_v<U> || std::is_floating_point_v<V>, double,
    std::conditional_t<(sizeof(T) < 4 && sizeof(U) < 4 && sizeof(V) < 4), int32_t, int64_t>>;

template <typename T>
long ClIpSubtract::DispatchDefault(ClImage& oIn1, ClImage& oIn2, ClImage& oOut, const ClOverlap& oOverlap) {
  return DispatchElementType(oIn2.DataType(), -101, [&](auto oElement) {
    return DispatchDefault2<T, typename decltype(oElement)::Type>(oIn1, oIn2, oOut, oOverlap);
  });
}

template <typename T, typename U>
long ClIpSubtract::DispatchDefault2(ClImage& oIn1, ClImage& oIn2, ClImage& oOut, const ClOverlap& oOverlap) {
  return DispatchElementType(oOut.DataType(), -101, [&](auto oElement) {
    return Default<T, U, typename decltype(oElement)::Type>(oIn1, oIn2, oOut, oOverlap);
  });
}

template <typename V>
void ClIpSubtract::Limits(const ClImage& oIn1, const ClImage& oIn2, ClImage& oOut, V& nLower,
                          V& nUpper) const {
  switch (m_eDataRange) {
    case InputDependent:
      nUpper = ElementFromDouble<V>(oIn1.White() - oIn2.Black());
      nLower = ElementFromDouble<V>(oIn1.Black() - oIn2.White());
      break;
    case UserDependent:
      nUpper = ElementFromDouble<V>(m_dUpperBound);
      nLower = ElementFromDouble<V>(m_dLowerBound);
      oOut.SetBlackWhite(static_cast<double>(nLower), static_cast<double>(nUpper));
      break;
    default:
      nUpper = ElementFromDouble<V>(std::max(oOut.Black(), oOut.White()));
      nLower = ElementFromDouble<V>(std::min(oOut.Black(), oOut.White()));
      break;
  }
}

template <typename T, typename U, typename V>
long ClIpSubtract::Default(ClImage& oIn1, ClImage& oIn2, ClImage& oOut, const ClOverlap& oOverlap) {
  V nLower, nUpper;
  Limits(oIn1, oIn2, oOut, nLower, nUpper);
  const T* pIn1 = oIn1.Row<T>(0);
  const U* pIn2 = oIn2.Row<U>(0);
  V* pOut = oOut.Row<V>(0);
  if constexpr (std::is_same_v<T, uint8_t> && std::is_same_v<U, uint8_t> && std::is_same_v<V, uint8_t>) {
    if (nLower == 0 && nUpper == 255 && oOverlap.SamplesPair()) {
      const auto nSamples = static_cast<size_t>(oOverlap.m_nWidth * oOverlap.m_nPlanes1);
      for (long y = 0; y < oOverlap.m_nHeight; ++y) {
        MXKernels::SubtractSaturated(pIn1 + oOverlap.m_nOffset1 + y * oOverlap.m_nRowStep1,
                                     pIn2 + oOverlap.m_nOffset2 + y * oOverlap.m_nRowStep2,
                                     pOut + oOverlap.m_nOffsetOut + y * oOverlap.m_nRowStepOut, nSamples);
      }
      return 0;
    }
  }
  using W = TDifference<T, U, V>;
  // NOLINTBEGIN(bugprone-signed-char-misuse): limits of signed bytes are numbers, not characters
  const W nLow = static_cast<W>(nLower);
  const W nHigh = static_cast<W>(nUpper);
  // NOLINTEND(bugprone-signed-char-misuse)
  ForOverlap(pIn1, pIn2, pOut, oOverlap, [nLow, nHigh](T nA, U nB) {
    W nDifference = static_cast<W>(nA) - static_cast<W>(nB);
    // NaN stays NaN in a floating output and becomes the lower limit in an integer one.
    if constexpr (!std::is_floating_point_v<V>) {
      if (!(nDifference >= nLow)) nDifference = nLow;
    } else {
      if (nDifference < nLow) nDifference = nLow;
    }
    if (nDifference > nHigh) nDifference = nHigh;
    return static_cast<V>(nDifference);
  });
  return 0;
}
