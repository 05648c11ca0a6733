// Compiles the rank filter for the minimum.
#include "MXImageProcessing/IpFilterMin.h"

#include "IpFilterRankImpl.h"
#include "MXImageProcessing/MakeProcessor.h"
#include "MXKernels/RankRows.h"

struct ClRankMin {
  template <typename T>
  static T Pick(T nA, T nB) {
    return nB < nA ? nB : nA;
  }
  static constexpr const auto& Rows = MXKernels::MinRows;
  static constexpr const auto& WindowRow = MXKernels::MinWindowRow;
};

template class TpIpFilterRank<ClRankMin>;

ClProcessorBase* ClIpFilterMin::Create() const {
  return MakeProcessor<ClIpFilterMin>();
}
