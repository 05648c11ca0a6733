// The two-image processors whose rule is compiled into the loop: what they share beside the rule.
#pragma once

#include "MXImageProcessing/Ip2to1Base.h"

struct ClOverlap;

/// Applies TRule to each pair of samples and limits the result.
///
/// TRule says what the rule is (Apply), for inputs of how many bytes 32 bits hold its result
/// (ResultFitsIn32Bits) and, where there is one, which kernel does the same on bytes under limits of 0 and
/// 255 (cpBytes). The rule works in 64-bit floats if any image is floating, else in integers of 32 or 64
/// bits that hold every result and limit. A processor with a new rule derives from this class and
/// instantiates it in its own source, which includes TpIp2to1RuleImpl.h.
///
/// Domain   as the base.
/// Range    the exact result of the rule, limited, then truncated for integer outputs. NaN becomes the
///          lower limit of an integer output.
/// Threads  thread-bound.
/// Cost     one pass by strips; the types are resolved once a call. One plane beside three is first spread to
///          three.
template <typename TRule>
class TpIp2to1Rule : public ClIp2to1Base {
 protected:
  struct ClLimits {
    double m_dLower;
    double m_dUpper;
  };

  long DoProcess(ClImage& oIn1, ClImage& oIn2, ClImage& oOut, long nWidth, long nHeight, long nPlanes1,
                 long nPlanes2, long nOffset1, long nRowStep1, long nOffset2, long nRowStep2, long nOffsetOut,
                 long nRowStepOut) override;
  double GetValue(ClImage& oIn1, ClImage& oIn2, ClImage& oOut, double dA, double dB) override;

  /// The limits of this call, before they saturate to the output's type; a subclass may set the output's
  /// black and white. In this class these are the limits.
  virtual ClLimits Limits(const ClImage& oIn1, const ClImage& oIn2, ClImage& oOut) const;
  static ClLimits LimitsOf(const ClImage& oOut);

 private:
  static bool IsForKernel(const ClImage& oIn1, const ClImage& oIn2, const ClImage& oOut,
                          const ClLimits& oLimits);
  static long RunKernel(const ClImage& oIn1, const ClImage& oIn2, ClImage& oOut, const ClOverlap& oOverlap);
  template <typename W>
  static long Run(const ClImage& oIn1, const ClImage& oIn2, ClImage& oOut, const ClOverlap& oOverlap,
                  const ClLimits& oLimits);
};
