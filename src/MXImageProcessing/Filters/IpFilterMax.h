// The maximum filter.
#pragma once

#include "MXImageProcessing/IpFilterRank.h"

struct ClRankMax;
extern template class TpIpFilterRank<ClRankMax>;

/// Each pixel becomes the largest of its window.
class ClIpFilterMax : public TpIpFilterRank<ClRankMax> {
 public:
  ClProcessorBase* Create() const override;
  const char* Name() const override { return "ClIpFilterMax"; }
};
