// Compiles the rank filter for the maximum.
#include "MXImageProcessing/IpFilterMax.h"

#include "IpFilterRankImpl.h"
#include "MXImageProcessing/MakeProcessor.h"
#include "MXKernels/RankRows.h"

struct ClRankMax {
  template <typename T>
  static T Pick(T nA, T nB) {
    return nB > nA ? nB : nA;
  }
  static constexpr const auto& Rows = MXKernels::MaxRows;
  static constexpr const auto& WindowRow = MXKernels::MaxWindowRow;
};

template class TpIpFilterRank<ClRankMax>;

ClProcessorBase* ClIpFilterMax::Create() const {
  return MakeProcessor<ClIpFilterMax>();
}
