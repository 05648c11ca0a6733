// The distance of two images.
#pragma once

#include "MXImageProcessing/TpIp2to1Rule.h"

struct ClRuleDelta;
extern template class TpIp2to1Rule<ClRuleDelta>;

/// out = |first - second|, limited to the output's black and white.
///
/// Domain  as the base.
/// Threads thread-bound.
/// Cost    one pass; three eUint8 images take the vector kernel.
class ClIpDelta : public TpIp2to1Rule<ClRuleDelta> {
 public:
  ClProcessorBase* Create() const override;
  const char* Name() const override { return "ClIpDelta"; }
};
