// The Gaussian filter.
#pragma once

#include "MXImageProcessing/IpLinFilterBase.h"

/// Each pixel becomes the mean of its window, weighted by a bell of deviation dSigma. A width below 1 is
/// worked out from it: eight times dSigma, odd.
///
/// Errors  as the base. Returned: -35 an image is missing.
class ClIpFilterGauss : public ClIpLinFilterBase {
 public:
  ClIpFilterGauss() { ClIpFilterGauss::SetParametersToDefault(); }

  long ApplyParam(ClImage& oIn, ClImage& oOut, double dDeviation, long nWidth);

  ClProcessorBase* Create() const override;
  const char* Name() const override { return "ClIpFilterGauss"; }
  void SetParametersToDefault() override;
  void DeclareParameters(ClParameterRows& oRows) override;
  void ParameterString(char* szText, unsigned int nSize) const override;

  /// The width that goes with a deviation; 1 where it is not above 0.
  static long CalcFilterWidth(double dDeviation);
  void CalcFilter(TpArrayStatic<double>& oReal, long nWidth) override;

  /// Units  pixels.
  double dSigma;

 protected:
  long Initialize() override;
};
