// The minimum filter.
#pragma once

#include "MXImageProcessing/IpFilterRank.h"

struct ClRankMin;
extern template class TpIpFilterRank<ClRankMin>;

/// Each pixel becomes the smallest of its window.
class ClIpFilterMin : public TpIpFilterRank<ClRankMin> {
 public:
  ClProcessorBase* Create() const override;
  const char* Name() const override { return "ClIpFilterMin"; }
};
