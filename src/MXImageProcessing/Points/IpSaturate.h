// Limits grey values.
#pragma once

#include "MXImageProcessing/NewIp1to1Base.h"

/// out = in limited to the two borders, which saturate to the range of the element type.
///
/// Domain   all eight element types; works in place.
/// Threads  thread-bound.
/// Errors   ClException -44 the lower border is above the upper one.
class ClIpSaturate : public NewIpBase::ClIp1to1Base {
 public:
  ClIpSaturate();

  using NewIpBase::ClIp1to1Base::ApplyParam;
  long ApplyParam(ClImage& oIn, ClImage& oOut, double dLower, double dUpper);

  ClProcessorBase* Create() const override;
  const char* Name() const override { return "ClIpSaturate"; }
  void SetParametersToDefault() override { m_dInLowerBorder = m_dInUpperBorder = 0.0; }
  void DeclareParameters(ClParameterRows& oRows) override;

 protected:
  long DoProcess(ClImage& oIn, ClImage& oOut) override;

 private:
  template <typename T>
  void Saturate(const ClImage& oIn, ClImage& oOut) const;

  double m_dInLowerBorder;
  double m_dInUpperBorder;
};
