// The difference: its rule, its three kinds of limits and its parameters.
#include "MXImageProcessing/IpSubtract.h"

#include "MXImageProcessing/NewProcessor.h"
#include "MXKernels/PointRows.h"
#include "MXTools/ParameterContainer.h"
#include "MXTools/ParameterInterface.h"
#include "TpIp2to1RuleImpl.h"

struct ClRuleSubtract {
  template <typename T, typename U, typename V>
  using Working = TpWorkingDifference<T, U, V>;
  static constexpr ByteRule cpfnBytes = MXKernels::SubtractSaturated;

  template <typename W>
  static W Apply(W nA, W nB) {
    return nA - nB;
  }
};
template class TpIp2to1Rule<ClRuleSubtract>;

namespace {

/// The bound as the output can hold it.
double CutToType(double dBound, unsigned char nType) {
  DispatchElementType(nType, -101, [&](auto oElement) {
    dBound = static_cast<double>(ElementFromDouble<typename decltype(oElement)::Type>(dBound));
    return 0L;
  });
  return dBound;
}

}  // namespace

ClProcessorBase* ClIpSubtract::Create() const {
  return NewProcessor<ClIpSubtract>();
}

void ClIpSubtract::SetParametersToDefault() {
  ClIp2to1Base::SetParametersToDefault();
  m_dLowerBound = 0.0;
  m_dUpperBound = 0.0;
  m_eDataRange = DataDependent;
}

void ClIpSubtract::QueryParameters(ClParameterInterface& oInterface) {
  ClIp2to1Base::QueryParameters(oInterface);
  constexpr auto eIn = ClParameterInterface::eIn;
  oInterface.AddParameter(&m_dLowerBound, "LowerBound", "Double: Lower limit of the result", eIn, 1.0, -1.0);
  oInterface.AddParameter(&m_dUpperBound, "UpperBound", "Double: Upper limit of the result", eIn, 1.0, -1.0);
  oInterface.AddEnum(&m_eDataRange, "Data Output Range", "Enum: Where the limits come from",
                     "DataDependent\0InputDependent\0UserDependent\0", eIn);
}

void ClIpSubtract::PublishParameters(ClParameterContainer& oContainer) {
  ClIp2to1Base::PublishParameters(oContainer);
  oContainer.AddNumeric("LowerBound", &m_dLowerBound);
  oContainer.AddNumeric("UpperBound", &m_dUpperBound);
  auto* pRange =
      oContainer.AddParam<TpParameterEnumPointer<EDataRangeType, ClParameter>>("Data Output Range");
  pRange->BindVariable(&m_eDataRange);
  pRange->AddValue(DataDependent, "DataDependent");
  pRange->AddValue(InputDependent, "InputDependent");
  pRange->AddValue(UserDependent, "UserDependent");
}

ClIpSubtract::ClLimits ClIpSubtract::Limits(const ClImage& oIn1, const ClImage& oIn2, ClImage& oOut) const {
  switch (m_eDataRange) {
    case InputDependent:
      return {oIn1.Black() - oIn2.White(), oIn1.White() - oIn2.Black()};
    case UserDependent: {
      const ClLimits oBounds{CutToType(m_dLowerBound, oOut.DataType()),
                             CutToType(m_dUpperBound, oOut.DataType())};
      oOut.SetBlackWhite(oBounds.m_dLower, oBounds.m_dUpper);
      return oBounds;
    }
    default:
      return LimitsOf(oOut);
  }
}
