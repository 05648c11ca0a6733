// The difference of two images.
#pragma once

#include "MXImageProcessing/Ip2to1Base.h"

struct ClOverlap;

/// out = first - second, limited as "Data Output Range" says.
///
/// Domain  as the base.
/// Range   DataDependent: between the output's black and white. InputDependent: between the darkest and the
///         brightest difference that the inputs' black and white allow. UserDependent: between the two
///         bounds, which become the output's black and white. All limits are cut to the output type.
/// Threads thread-bound.
/// Cost    one pass; three eUint8 images under limits of 0 and 255 take the vector kernel.
class ClIpSubtract : public ClIp2to1Base {
 public:
  enum EDataRangeType { DataDependent = 0, InputDependent = 1, UserDependent = 2 };

  ClIpSubtract() { ClIpSubtract::SetParametersToDefault(); }

  ClProcessorBase* Create() const override;
  const char* Name() const override { return "ClIpSubtract"; }
  void SetParametersToDefault() override;
  void PublishParameters(ClParameterContainer& oContainer) override;

 protected:
  long DoProcess(ClImage& oIn1, ClImage& oIn2, ClImage& oOut, long nWidth, long nHeight, long nPlanes1,
                 long nPlanes2, long nOffset1, long nRowStep1, long nOffset2, long nRowStep2, long nOffsetOut,
                 long nRowStepOut) override;
  double GetValue(ClImage& oIn1, ClImage& oIn2, ClImage& oOut, double dA, double dB) override;

 private:
  // The levels below the first input's type are compiled in a source of their own for each type group.
  template <typename T>
  long DispatchDefault(ClImage& oIn1, ClImage& oIn2, ClImage& oOut, const ClOverlap& oOverlap);
  template <typename T, typename U>
  long DispatchDefault2(ClImage& oIn1, ClImage& oIn2, ClImage& oOut, const ClOverlap& oOverlap);
  template <typename T, typename U, typename V>
  long Default(ClImage& oIn1, ClImage& oIn2, ClImage& oOut, const ClOverlap& oOverlap);
  /// The limits of the output, before they are cut to its type; sets the output's black and white.
  template <typename V>
  void Limits(const ClImage& oIn1, const ClImage& oIn2, ClImage& oOut, V& nLower, V& nUpper) const;

  double m_dLowerBound;
  double m_dUpperBound;
  EDataRangeType m_eDataRange;
};
