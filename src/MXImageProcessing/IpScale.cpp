// The product and its limits.
#include "MXImageProcessing/IpScale.h"

#include <algorithm>

#include "MXImageProcessing/NewProcessor.h"
#include "MXImageProcessing/SampleLoop.h"
#include "MXTools/ImageTypeDispatch.h"
#include "MXTools/ParameterContainer.h"

namespace {

double Limited(double dValue, const ClImage& oOut) {
  const double dLower = std::min(oOut.Black(), oOut.White());
  const double dUpper = std::max(oOut.Black(), oOut.White());
  return std::min(std::max(dValue, dLower), dUpper);
}

}  // namespace

ClIpScale::ClIpScale() {
  EnableDataType(m_caAllTypes);
  ClIpScale::SetParametersToDefault();
}

long ClIpScale::ApplyParam(ClImage& oIn, ClImage& oOut, double dFactor) {
  m_dScaleFactor = dFactor;
  return ApplyParam(oIn, oOut);
}

ClProcessorBase* ClIpScale::Create() const {
  return NewProcessor<ClIpScale>();
}

void ClIpScale::PublishParameters(ClParameterContainer& oContainer) {
  NewIpBase::ClIp1to1Base::PublishParameters(oContainer);
  oContainer.AddNumeric("dScaleFactor", &m_dScaleFactor);
}

void ClIpScale::ParameterString(char* szText, unsigned int nSize) const {
  const int nPrecision = m_pInImage != nullptr && m_pInImage->IsFloating() ? 4 : 0;
  FormatParameterString(szText, nSize, "ScaleFactor = %.*f", nPrecision, m_dScaleFactor);
}

double ClIpScale::GetValue(ClImage&, ClImage& oOut, double dValue) {
  return Limited(dValue * m_dScaleFactor, oOut);
}

long ClIpScale::DoProcess(ClImage& oIn, ClImage& oOut) {
  if (oIn.DataType() == ClImage::eUint8) return NewIpBase::ClIp1to1Base::DoProcess(oIn, oOut);
  return DispatchElementType(oIn.DataType(), -101, [&](auto oElement) {
    Scale<typename decltype(oElement)::Type>(oIn, oOut);
    return 0L;
  });
}

template <typename T>
void ClIpScale::Scale(const ClImage& oIn, ClImage& oOut) const {
  const double dFactor = m_dScaleFactor;
  MapSamples<T, T>(oIn, oOut, [&oOut, dFactor](T nValue) {
    return ElementFromDouble<T>(Limited(static_cast<double>(nValue) * dFactor, oOut));
  });
}
