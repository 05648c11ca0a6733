// The product and its limits.
#include "MXImageProcessing/IpScale.h"

#include <algorithm>

#include "MXImageProcessing/MakeProcessor.h"
#include "MXImageProcessing/SampleLoop.h"
#include "MXTools/ParameterRows.h"

namespace {

/// The product within the output's black and white, which are taken once for all samples.
class ClLimitedProduct {
 public:
  ClLimitedProduct(double dFactor, const ClImage& oOut)
      : m_dFactor(dFactor),
        m_dLower(std::min(oOut.Black(), oOut.White())),
        m_dUpper(std::max(oOut.Black(), oOut.White())) {}
  double operator()(double dValue) const {
    return std::min(std::max(dValue * m_dFactor, m_dLower), m_dUpper);
  }

 private:
  double m_dFactor, m_dLower, m_dUpper;
};

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
  return MakeProcessor<ClIpScale>();
}

void ClIpScale::DeclareParameters(ClParameterRows& oRows) {
  NewIpBase::ClIp1to1Base::DeclareParameters(oRows);
  oRows.Number("dScaleFactor", "ScaleFactor", "In: Grey Value Multiplier", &m_dScaleFactor);
}

void ClIpScale::ParameterString(char* szText, unsigned int nSize) const {
  const int nPrecision = m_pInImage != nullptr && m_pInImage->IsFloating() ? 4 : 0;
  FormatParameterString(szText, nSize, "ScaleFactor = %.*f", nPrecision, m_dScaleFactor);
}

double ClIpScale::GetValue(ClImage&, ClImage& oOut, double dValue) {
  return ClLimitedProduct(m_dScaleFactor, oOut)(dValue);
}

long ClIpScale::DoProcess(ClImage& oIn, ClImage& oOut) {
  return MapByRule(oIn, oOut, true, ClLimitedProduct(m_dScaleFactor, oOut));
}
