// The distance's rule.
#include "MXImageProcessing/IpDelta.h"

#include "MXImageProcessing/MakeProcessor.h"
#include "MXKernels/PointRows.h"
#include "TpIp2to1RuleImpl.h"

struct ClRuleDelta {
  static constexpr ByteRule cpBytes = &MXKernels::AbsoluteDifferenceRow;

  static bool ResultFitsIn32Bits(int nSize1, int nSize2) { return nSize1 < 4 && nSize2 < 4; }
  template <typename W>
  static W Apply(W nA, W nB) {
    // NaN fails the comparison and stays NaN.
    return nA > nB ? nA - nB : nB - nA;
  }
};
template class TpIp2to1Rule<ClRuleDelta>;

ClProcessorBase* ClIpDelta::Create() const {
  return MakeProcessor<ClIpDelta>();
}
