// The difference of two images.
#pragma once

#include "MXImageProcessing/TpIp2to1Rule.h"

struct ClRuleSubtract;
extern template class TpIp2to1Rule<ClRuleSubtract>;

/// out = first - second, limited as "Data Output Range" says.
///
/// Domain  as the base.
/// Range   DataDependent: between the output's black and white. InputDependent: between the darkest and the
///         brightest difference that the inputs' black and white allow. UserDependent: between the two
///         bounds, which become the output's black and white. All limits saturate to the output type.
/// Threads thread-bound.
/// Cost    one pass; three eUint8 images under limits of 0 and 255 take the vector kernel.
class ClIpSubtract : public TpIp2to1Rule<ClRuleSubtract> {
 public:
  enum EDataRangeType { DataDependent = 0, InputDependent = 1, UserDependent = 2 };

  ClIpSubtract() { ClIpSubtract::SetParametersToDefault(); }

  ClProcessorBase* Create() const override;
  const char* Name() const override { return "ClIpSubtract"; }
  void SetParametersToDefault() override;
  void DeclareParameters(ClParameterRows& oRows) override;

 protected:
  ClLimits Limits(const ClImage& oIn1, const ClImage& oIn2, ClImage& oOut) const override;

 private:
  double m_dLowerBound;
  double m_dUpperBound;
  EDataRangeType m_eDataRange;
};
