// The single steps of the finger mask: background, envelope, texture, fog and the first mask.
#include <algorithm>

#include "MXKernels/MaskRows.h"
#include "MXKernels/PointRows.h"
#include "MXLiveScannerTools/IpVT40R4Mask.h"
#include "MXTools/ImageTypeDispatch.h"

namespace {

// Widths of the filters, in pixels of the resolution that is segmented.
constexpr long cnExtremeWidth = 7;
constexpr long cnTextureWidth = 15;
constexpr long cnNearWidth = 11;
constexpr long cnFarWidth = 101;
constexpr long cnMaskWidth = 21;

/// The row times nNumerator / nDenominator, which is below 1.
void FadeRow(uint8_t* pRow, int nWidth, int nNumerator, int nDenominator) {
  uint8_t aTable[256];
  for (int n = 0; n < 256; ++n) aTable[n] = static_cast<uint8_t>(int64_t{n} * nNumerator / nDenominator);
  MXKernels::LookUpRow(pRow, pRow, static_cast<size_t>(nWidth), aTable);
}

void FadeSample(uint8_t& rnSample, int nNumerator, int nDenominator) {
  rnSample = static_cast<uint8_t>(int64_t{rnSample} * nNumerator / nDenominator);
}

}  // namespace

// The level of each class on the scale where a window full of one class counts 255; their sum is 255.
const unsigned char ClIpVT40R4Mask::m_anBinRef[ClIpComputeLBPImage_4Neighborhood::cnClasses] = {36, 49, 92,
                                                                                                44, 23, 11};

void ClIpVT40R4Mask::EstimateBackground(ClImage& oDark) {
  m_oFilterMin.ApplyParam(oDark, m_oExtreme1, cnExtremeWidth, ClIpFilterBase::eModeXY);
  m_oFilterMax.ApplyParam(m_oExtreme1, m_oExtreme2, cnExtremeWidth, ClIpFilterBase::eModeXY);
  m_oSaturate.ApplyParam(m_oExtreme2, m_oExtreme2, 0.0, 64.0);
  m_oFilterMid.ApplyParam(m_oExtreme2, m_oBackground, cnExtremeWidth);
}

void ClIpVT40R4Mask::EstimateEnvelope(ClImage& oBright) {
  m_oFilterMax.ApplyParam(oBright, m_oExtreme1, cnExtremeWidth, ClIpFilterBase::eModeXY);
  m_oFilterMin.ApplyParam(m_oExtreme1, m_oExtreme2, cnExtremeWidth, ClIpFilterBase::eModeXY);
  m_oFilterMid.ApplyParam(m_oExtreme2, m_oEnvelope, cnExtremeWidth);
}

void ClIpVT40R4Mask::FadeBorders() {
  const int nWidth = m_oSignal.Width(), nHeight = m_oSignal.Height();
  for (int y = 0; y < std::min(m_nInBottomFade, nHeight); ++y) {
    FadeRow(m_oSignal.Row<uint8_t>(y), nWidth, y, m_nInBottomFade);
  }
  const int nTop = std::min(std::max(m_nInTopFade, 0), nHeight);
  for (int y = nHeight - nTop; y < nHeight; ++y) {
    FadeRow(m_oSignal.Row<uint8_t>(y), nWidth, nHeight - 1 - y, m_nInTopFade);
  }
  const int nLeft = std::min(std::max(m_nInLeftFade, 0), nWidth);
  const int nRight = std::min(std::max(m_nInRightFade, 0), nWidth);
  for (int y = 0; y < nHeight; ++y) {
    uint8_t* pRow = m_oSignal.Row<uint8_t>(y);
    for (int x = 0; x < nLeft; ++x) FadeSample(pRow[x], x, m_nInLeftFade);
    for (int x = nWidth - nRight; x < nWidth; ++x) FadeSample(pRow[x], nWidth - 1 - x, m_nInRightFade);
  }
}

void ClIpVT40R4Mask::MeasureTexture() {
  m_oTexture.m_poInImage = &m_oSignal;
  m_oTexture.m_poOutImage = &m_oClasses;
  m_oTexture.Apply();
  m_oDistance.NewWithType(ClImage::eUint16, m_oSignal.Width(), m_oSignal.Height(), 1, 0, 0, true);
  m_oDistance = 0;
  const auto nCount = static_cast<size_t>(m_oSignal.Width());
  for (unsigned int n = 0; n < ClIpComputeLBPImage_4Neighborhood::cnClasses; ++n) {
    m_oFilterMid.ApplyParam(m_oTexture.m_aoClassImages[n], m_oShare, cnTextureWidth);
    for (int y = 0; y < m_oSignal.Height(); ++y) {
      MXKernels::AddSquaredDistanceRow(m_oShare.Row<uint8_t>(y), m_anBinRef[n], m_oDistance.Row<uint16_t>(y),
                                       nCount);
    }
  }
}

void ClIpVT40R4Mask::DecideByBrightness() {
  const MXKernels::BrightnessDecision oDecision{m_nInSignalBack, m_nInSignalFront,
                                                ElementFromDouble<uint16_t>(65535.0 * m_dInLBPThresh),
                                                m_anSquareRoot};
  for (int y = 0; y < m_oSignal.Height(); ++y) {
    MXKernels::DecideByBrightnessRow(m_oSignal.Row<uint8_t>(y), m_oDistance.Row<uint16_t>(y),
                                     static_cast<size_t>(m_oSignal.Width()), oDecision);
  }
}

void ClIpVT40R4Mask::TestFog() {
  m_oSaturate.ApplyParam(m_oEnvelope, m_oBrightness, 0.0, 127.0);
  m_oScale.ApplyParam(m_oBrightness, 2.0);
  m_oFilterMid.ApplyParam(m_oBrightness, m_oNear, cnNearWidth);
  m_oFilterMid.ApplyParam(m_oBrightness, m_oFar, cnFarWidth);
}

void ClIpVT40R4Mask::MakeFirstMask() {
  const int nWidth = m_oSmoothed.Width(), nHeight = m_oSmoothed.Height();
  // Beyond these limits the decision no longer changes: 100 times the brightest sample is 25500.
  const int nFog = std::min(std::max(ElementFromDouble<int>(100.0 * m_dInFogThresh), -1), 25501);
  m_oMask.NewWithType(ClImage::eUint8, nWidth, nHeight, 1, 0, 0, true);
  for (int y = 0; y < nHeight; ++y) {
    MXKernels::FingerRow(m_oSmoothed.Row<uint16_t>(y), m_oNear.Row<uint8_t>(y), m_oFar.Row<uint8_t>(y),
                         m_oMask.Row<uint8_t>(y), static_cast<size_t>(nWidth), m_nInMaskThresh, nFog);
  }
  m_oFilterMid.ApplyParam(m_oMask, m_oExtreme1, cnMaskWidth);
  m_oBinarize.ApplyParam(m_oExtreme1, m_oMask, 192.0);
}
