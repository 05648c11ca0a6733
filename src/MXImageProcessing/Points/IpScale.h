// Multiplies grey values.
#pragma once

#include "MXImageProcessing/NewIp1to1Base.h"

/// out = in * factor, limited to the output's black and white, truncated for integer types.
///
/// Domain   all eight element types.
/// Threads  thread-bound.
/// Cost     eUint8 by a table of 256 values.
class ClIpScale : public NewIpBase::ClIp1to1Base {
 public:
  ClIpScale();

  using NewIpBase::ClIp1to1Base::ApplyParam;
  long ApplyParam(ClImage& oImage, double dFactor) { return ApplyParam(oImage, oImage, dFactor); }
  long ApplyParam(ClImage& oIn, ClImage& oOut, double dFactor);

  ClProcessorBase* Create() const override;
  const char* Name() const override { return "ClIpScale"; }
  void SetParametersToDefault() override { m_dScaleFactor = 1.0; }
  void DeclareParameters(ClParameterRows& oRows) override;
  void ParameterString(char* szText, unsigned int nSize) const override;

 protected:
  long DoProcess(ClImage& oIn, ClImage& oOut) override;
  double GetValue(ClImage& oIn, ClImage& oOut, double dValue) override;

 private:
  double m_dScaleFactor;
};
