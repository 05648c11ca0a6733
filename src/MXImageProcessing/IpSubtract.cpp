// Parameters of the difference and the first level of its type dispatch.
#include "MXImageProcessing/IpSubtract.h"

#include <algorithm>

#include "IpSubtractDispatch.h"
#include "MXImageProcessing/NewProcessor.h"
#include "MXTools/ParameterContainer.h"

ClProcessorBase* ClIpSubtract::Create() const {
  return NewProcessor<ClIpSubtract>();
}

void ClIpSubtract::SetParametersToDefault() {
  ClIp2to1Base::SetParametersToDefault();
  m_dLowerBound = 0.0;
  m_dUpperBound = 0.0;
  m_eDataRange = DataDependent;
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

double ClIpSubtract::GetValue(ClImage&, ClImage&, ClImage& oOut, double dA, double dB) {
  const double dLower = std::min(oOut.Black(), oOut.White());
  const double dUpper = std::max(oOut.Black(), oOut.White());
  return std::min(std::max(dA - dB, dLower), dUpper);
}

long ClIpSubtract::DoProcess(ClImage& oIn1, ClImage& oIn2, ClImage& oOut, long nWidth, long nHeight,
                             long nPlanes1, long nPlanes2, long nOffset1, long nRowStep1, long nOffset2,
                             long nRowStep2, long nOffsetOut, long nRowStepOut) {
  const ClOverlap oOverlap{nWidth,    nHeight,  nPlanes1,  nPlanes2,   nOffset1,
                           nRowStep1, nOffset2, nRowStep2, nOffsetOut, nRowStepOut};
  return DispatchElementType(oIn1.DataType(), -101, [&](auto oElement) {
    return DispatchDefault<typename decltype(oElement)::Type>(oIn1, oIn2, oOut, oOverlap);
  });
}
