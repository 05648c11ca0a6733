// Bodies of the two-image processors with a compiled rule, for the sources that instantiate them.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "MXImageProcessing/OverlapLoop.h"
#include "MXImageProcessing/OverlapStrips.h"
#include "MXImageProcessing/TpIp2to1Rule.h"
#include "MXKernels/Kernel.h"

/// A kernel on bytes.
using ByteRule = const MXKernels::TpKernel<MXKernels::TwoRows<uint8_t>>*;

/// The limits are applied to the result itself, so that nothing wraps.
template <typename W>
W LimitedResult(W nResult, const TpStripLimits<W>& oLimits) {
  if (nResult < oLimits.m_nLower) nResult = oLimits.m_nLower;
  return nResult > oLimits.m_nUpper ? oLimits.m_nUpper : nResult;
}

/// Applies the rule to the samples of two strips; the limited results replace the first strip.
template <typename TRule, typename W>
void ApplyToStrip(W* __restrict pFirst, const W* __restrict pSecond, size_t nCount,
                  const TpStripLimits<W>& oStripLimits) {
  const TpStripLimits<W> oLimits = oStripLimits;
  if constexpr (std::is_same_v<W, double>) {
    if (!oLimits.m_bKeepsNaN) {
      for (size_t n = 0; n < nCount; ++n) {
        const W nResult = TRule::Apply(pFirst[n], pSecond[n]);
        pFirst[n] = LimitedResult(nResult >= oLimits.m_nLower ? nResult : oLimits.m_nLower, oLimits);
      }
      return;
    }
  }
  for (size_t n = 0; n < nCount; ++n) {
    pFirst[n] = LimitedResult(static_cast<W>(TRule::Apply(pFirst[n], pSecond[n])), oLimits);
  }
}

/// By its type: for the sanitizers' builds the address of a kernel is no constant.
template <typename TRule>
constexpr bool cbHasKernel = !std::is_null_pointer_v<decltype(TRule::cpBytes)>;

template <typename TRule>
typename TpIp2to1Rule<TRule>::ClLimits TpIp2to1Rule<TRule>::LimitsOf(const ClImage& oOut) {
  return {std::min(oOut.Black(), oOut.White()), std::max(oOut.Black(), oOut.White())};
}

template <typename TRule>
typename TpIp2to1Rule<TRule>::ClLimits TpIp2to1Rule<TRule>::Limits(const ClImage&, const ClImage&,
                                                                   ClImage& oOut) const {
  return LimitsOf(oOut);
}

template <typename TRule>
double TpIp2to1Rule<TRule>::GetValue(ClImage&, ClImage&, ClImage& oOut, double dA, double dB) {
  const ClLimits oLimits = LimitsOf(oOut);
  return LimitedResult<double>(TRule::Apply(dA, dB), {oLimits.m_dLower, oLimits.m_dUpper, true});
}

template <typename TRule>
long TpIp2to1Rule<TRule>::DoProcess(ClImage& oIn1, ClImage& oIn2, ClImage& oOut, long nWidth, long nHeight,
                                    long nPlanes1, long nPlanes2, long nOffset1, long nRowStep1,
                                    long nOffset2, long nRowStep2, long nOffsetOut, long nRowStepOut) {
  ClOverlap oOverlap{nWidth,    nHeight,  nPlanes1,  nPlanes2,   nOffset1,
                     nRowStep1, nOffset2, nRowStep2, nOffsetOut, nRowStepOut};
  ClLimits oLimits = Limits(oIn1, oIn2, oOut);
  oLimits = {CutToElementType(oLimits.m_dLower, oOut.DataType()),
             CutToElementType(oLimits.m_dUpper, oOut.DataType())};
  const ClImage& oSecond = oOverlap.OneForThree() ? SpreadOverlap(oIn2, oOverlap) : oIn2;
  if (!oOverlap.SamplesPair()) return 0;
  if (cbHasKernel<TRule> && IsForKernel(oIn1, oSecond, oOut, oLimits)) {
    return RunKernel(oIn1, oSecond, oOut, oOverlap);
  }
  if (oIn1.IsFloating() || oIn2.IsFloating() || oOut.IsFloating()) {
    return Run<double>(oIn1, oSecond, oOut, oOverlap, oLimits);
  }
  const bool bNarrow =
      oOut.ElementSize() < 4 && TRule::ResultFitsIn32Bits(oIn1.ElementSize(), oIn2.ElementSize());
  return bNarrow ? Run<int32_t>(oIn1, oSecond, oOut, oOverlap, oLimits)
                 : Run<int64_t>(oIn1, oSecond, oOut, oOverlap, oLimits);
}

template <typename TRule>
bool TpIp2to1Rule<TRule>::IsForKernel(const ClImage& oIn1, const ClImage& oIn2, const ClImage& oOut,
                                      const ClLimits& oLimits) {
  return oIn1.DataType() == ClImage::eUint8 && oIn2.DataType() == ClImage::eUint8 &&
         oOut.DataType() == ClImage::eUint8 && oLimits.m_dLower == 0.0 && oLimits.m_dUpper == 255.0;
}

template <typename TRule>
long TpIp2to1Rule<TRule>::RunKernel(const ClImage& oIn1, const ClImage& oIn2, ClImage& oOut,
                                    const ClOverlap& oOverlap) {
  if constexpr (cbHasKernel<TRule>) {
    for (long y = 0; y < oOverlap.m_nHeight; ++y) {
      (*TRule::cpBytes)(oIn1.Data() + oOverlap.m_nOffset1 + y * oOverlap.m_nRowStep1,
                        oIn2.Data() + oOverlap.m_nOffset2 + y * oOverlap.m_nRowStep2,
                        oOut.Data() + oOverlap.m_nOffsetOut + y * oOverlap.m_nRowStepOut,
                        static_cast<size_t>(oOverlap.m_nWidth * oOverlap.m_nPlanes1));
    }
  }
  return 0;
}

template <typename TRule>
template <typename W>
long TpIp2to1Rule<TRule>::Run(const ClImage& oIn1, const ClImage& oIn2, ClImage& oOut,
                              const ClOverlap& oOverlap, const ClLimits& oLimits) {
  return ApplyByStrips<W>(
      oIn1, oIn2, oOut, oOverlap,
      {static_cast<W>(oLimits.m_dLower), static_cast<W>(oLimits.m_dUpper), oOut.IsFloating()},
      ApplyToStrip<TRule, W>);
}
