// The bell and its width.
#include "MXImageProcessing/IpFilterGauss.h"

#include <algorithm>
#include <cstring>

#include "MXImageProcessing/MakeProcessor.h"
#include "MXTools/ParameterRows.h"
#include "portable/Math.h"

long ClIpFilterGauss::ApplyParam(ClImage& oIn, ClImage& oOut, double dDeviation, long nWidth) {
  m_pInImage = &oIn;
  m_pOutImage = &oOut;
  dSigma = dDeviation;
  nFilterWidth = nWidth;
  return Apply();
}

ClProcessorBase* ClIpFilterGauss::Create() const {
  return MakeProcessor<ClIpFilterGauss>();
}

void ClIpFilterGauss::SetParametersToDefault() {
  ClIpLinFilterBase::SetParametersToDefault();
  nFilterWidth = 0;
  dSigma = 1.0;
}

void ClIpFilterGauss::DeclareParameters(ClParameterRows& oRows) {
  ClIpLinFilterBase::DeclareParameters(oRows);
  oRows.DescribeBoth();
  oRows.Number("dSigma", "dSigma", "In Sigma", &dSigma);
}

void ClIpFilterGauss::ParameterString(char* szText, unsigned int nSize) const {
  FormatParameterString(szText, nSize, "S[%.2f] ", dSigma);
  const auto nLength = static_cast<unsigned int>(std::strlen(szText));
  ClIpLinFilterBase::ParameterString(szText + nLength, nSize - nLength);
}

long ClIpFilterGauss::CalcFilterWidth(double dDeviation) {
  // The limit keeps the number within its type; no image is that wide.
  constexpr double cdMost = 1 << 30;
  if (!(dDeviation > 0.0)) return 1;
  const auto nWidth = static_cast<long>(std::min(8.0 * dDeviation, cdMost));
  return nWidth < 4 ? 3 : nWidth | 1;
}

void ClIpFilterGauss::CalcFilter(TpArrayStatic<double>& oReal, long nWidth) {
  const long nFirst = (1 - nWidth) / 2;
  const double dTwoSquares = 2.0 * dSigma * dSigma;
  // The square of a very small deviation underflows to 0.
  const bool bBell = dSigma > 0.0 && dTwoSquares > 0.0;
  for (long n = 0; n < nWidth; ++n) {
    const auto i = static_cast<double>(nFirst + n);
    const double dNone = nFirst + n == 0 ? 1.0 : 0.0;
    oReal[static_cast<unsigned int>(n)] =
        bBell ? Portable::Exp(-(i * i) / dTwoSquares) / (2.5066282746310002 * dSigma) : dNone;
  }
}

long ClIpFilterGauss::Initialize() {
  if (m_pInImage == nullptr || m_pOutImage == nullptr) return -35;
  if (nFilterWidth < 1) nFilterWidth = CalcFilterWidth(dSigma);
  return ClIpLinFilterBase::Initialize();
}
