// The difference: its rule, its three kinds of limits and its parameters.
#include "MXImageProcessing/IpSubtract.h"

#include "MXImageProcessing/MakeProcessor.h"
#include "MXKernels/PointRows.h"
#include "MXTools/ParameterRows.h"
#include "TpIp2to1RuleImpl.h"

struct ClRuleSubtract {
  static constexpr ByteRule cpBytes = &MXKernels::SubtractSaturated;

  static bool ResultFitsIn32Bits(int nSize1, int nSize2) { return nSize1 < 4 && nSize2 < 4; }
  template <typename W>
  static W Apply(W nA, W nB) {
    return nA - nB;
  }
};
template class TpIp2to1Rule<ClRuleSubtract>;

ClProcessorBase* ClIpSubtract::Create() const {
  return MakeProcessor<ClIpSubtract>();
}

void ClIpSubtract::SetParametersToDefault() {
  ClIp2to1Base::SetParametersToDefault();
  m_dLowerBound = 0.0;
  m_dUpperBound = 0.0;
  m_eDataRange = DataDependent;
}

void ClIpSubtract::DeclareParameters(ClParameterRows& oRows) {
  ClIp2to1Base::DeclareParameters(oRows);
  oRows.Number("LowerBound", "LowerBound", "Double: Lower limit of the result", &m_dLowerBound);
  oRows.Number("UpperBound", "UpperBound", "Double: Upper limit of the result", &m_dUpperBound);
  oRows.Choice("Data Output Range", "Data Output Range", "Enum: Where the limits come from", &m_eDataRange,
               {{DataDependent, "DataDependent"},
                {InputDependent, "InputDependent"},
                {UserDependent, "UserDependent"}});
}

ClIpSubtract::ClLimits ClIpSubtract::Limits(const ClImage& oIn1, const ClImage& oIn2, ClImage& oOut) const {
  switch (m_eDataRange) {
    case InputDependent:
      return {oIn1.Black() - oIn2.White(), oIn1.White() - oIn2.Black()};
    case UserDependent: {
      const ClLimits oBounds{CutToElementType(m_dLowerBound, oOut.DataType()),
                             CutToElementType(m_dUpperBound, oOut.DataType())};
      oOut.SetBlackWhite(oBounds.m_dLower, oBounds.m_dUpper);
      return oBounds;
    }
    default:
      return LimitsOf(oOut);
  }
}
