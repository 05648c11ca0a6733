// The threshold in the terms of each element type.
#include "MXImageProcessing/IpBinarizeGlobal.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "MXImageProcessing/MakeProcessor.h"
#include "MXImageProcessing/SampleLoop.h"
#include "MXKernels/PointRows.h"
#include "MXTools/ImageTypeDispatch.h"
#include "MXTools/ParameterRows.h"

namespace {

bool IsSet(double dValue) {
  return !std::isnan(dValue);
}

bool IsBetween(double dValue, double dA, double dB) {
  return dValue >= std::min(dA, dB) && dValue <= std::max(dA, dB);
}

}  // namespace

ClIpBinarizeGlobal::ClIpBinarizeGlobal() : NewIpBase::ClIp1to1Base(true, true) {
  EnableDataType(m_caAllTypes);
  ClIpBinarizeGlobal::SetParametersToDefault();
}

long ClIpBinarizeGlobal::ApplyParam(ClImage& oIn, ClImage& oOut, double dThreshold) {
  m_dThreshold = dThreshold;
  return ApplyParam(oIn, oOut);
}

ClProcessorBase* ClIpBinarizeGlobal::Create() const {
  return MakeProcessor<ClIpBinarizeGlobal>();
}

void ClIpBinarizeGlobal::SetParametersToDefault() {
  m_dBlack = m_dWhite = m_dThreshold = std::numeric_limits<double>::quiet_NaN();
}

void ClIpBinarizeGlobal::DeclareParameters(ClParameterRows& oRows) {
  NewIpBase::ClIp1to1Base::DeclareParameters(oRows);
  oRows.Number("Black", "Black", "In: Pixelvalue of Black", &m_dBlack, 0, 0);
  oRows.Number("White", "White", "In: Pixelvalue of White", &m_dWhite, 0, 0);
  oRows.Number("Threshold", "Threshold", "In: Smallest Pixelvalue that becomes White", &m_dThreshold, 0, 0);
}

void ClIpBinarizeGlobal::ParameterString(char* szText, unsigned int nSize) const {
  const int nPrecision = m_pInImage != nullptr && m_pInImage->IsFloating() ? 4 : 0;
  FormatParameterString(szText, nSize, "Thr%.*f [%.*f;%.*f]", nPrecision, m_dThreshold, nPrecision, m_dBlack,
                        nPrecision, m_dWhite);
}

double ClIpBinarizeGlobal::EffectiveBlack(const ClImage& oOut) const {
  return IsSet(m_dBlack) ? m_dBlack : oOut.Black();
}

double ClIpBinarizeGlobal::EffectiveWhite(const ClImage& oOut) const {
  return IsSet(m_dWhite) ? m_dWhite : oOut.White();
}

double ClIpBinarizeGlobal::EffectiveThreshold(const ClImage& oOut) const {
  return IsSet(m_dThreshold) ? m_dThreshold : (oOut.White() + oOut.Black()) * 0.5;
}

bool ClIpBinarizeGlobal::CheckThreshold(const ClImage& oIn) const {
  return !IsSet(m_dThreshold) || IsBetween(m_dThreshold, oIn.Black(), oIn.White());
}

bool ClIpBinarizeGlobal::CheckBlackWhite(const ClImage& oOut) const {
  return DispatchElementType(oOut.DataType(), 0, [&](auto oElement) {
           using Limits = std::numeric_limits<typename decltype(oElement)::Type>;
           const auto dLowest = static_cast<double>(Limits::lowest());
           const auto dHighest = static_cast<double>(Limits::max());
           return (!IsSet(m_dBlack) || IsBetween(m_dBlack, dLowest, dHighest)) &&
                          (!IsSet(m_dWhite) || IsBetween(m_dWhite, dLowest, dHighest))
                      ? 1L
                      : 0L;
         }) != 0;
}

double ClIpBinarizeGlobal::GetValue(ClImage&, ClImage& oOut, double dValue) {
  return dValue >= EffectiveThreshold(oOut) ? EffectiveWhite(oOut) : EffectiveBlack(oOut);
}

template <typename T>
void ClIpBinarizeGlobal::Binarize(const ClImage& oIn, ClImage& oOut) const {
  const T nBlack = ElementFromDouble<T>(EffectiveBlack(oOut));
  const T nWhite = ElementFromDouble<T>(EffectiveWhite(oOut));
  const double dThreshold = EffectiveThreshold(oOut);
  const T nThreshold = ElementFromDouble<T>(std::is_floating_point_v<T> ? dThreshold : std::ceil(dThreshold));
  if constexpr (std::is_same_v<T, uint8_t>) {
    const auto nSamples = static_cast<size_t>(oIn.SamplesPerRow());
    // The threshold saturates at 255, but no byte may reach a threshold above 255.
    const T nAbove = dThreshold > 255.0 ? nBlack : nWhite;
    for (int y = 0; y < oIn.Height(); ++y) {
      MXKernels::ThresholdRow(oIn.Row<T>(y), oOut.Row<T>(y), nSamples, nThreshold, nBlack, nAbove);
    }
  } else {
    MapSamples<T, T>(oIn, oOut, [=](T nValue) { return nValue < nThreshold ? nBlack : nWhite; });
  }
}

long ClIpBinarizeGlobal::DoProcess(ClImage& oIn, ClImage& oOut) {
  if (!CheckThreshold(oIn) || !CheckBlackWhite(oOut)) return -35;
  return DispatchElementType(oIn.DataType(), -101, [&](auto oElement) {
    Binarize<typename decltype(oElement)::Type>(oIn, oOut);
    return 0L;
  });
}
