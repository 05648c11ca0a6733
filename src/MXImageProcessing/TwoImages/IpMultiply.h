// The product of two images.
#pragma once

#include "MXImageProcessing/TpIp2to1Rule.h"

struct ClRuleMultiply;
extern template class TpIp2to1Rule<ClRuleMultiply>;

/// out = first * second, limited to what the inputs' black and white can give.
///
/// Domain  as the base.
/// Range   the output's white becomes the largest of the four products of the inputs' black and white, its
///         black the smallest, for an unsigned type not below 0; these two, limited to the output type, are
///         the limits.
/// Threads thread-bound.
class ClIpMultiply : public TpIp2to1Rule<ClRuleMultiply> {
 public:
  ClProcessorBase* Create() const override;
  const char* Name() const override { return "ClIpMultiply"; }

 protected:
  ClLimits Limits(const ClImage& oIn1, const ClImage& oIn2, ClImage& oOut) const override;
};
