// The single steps of the finger mask: background, envelope, fades and the first mask.
#include <algorithm>

#include "MXKernels/PointRows.h"
#include "MXLiveScannerTools/IpVT40R4Mask.h"
#include "MXTools/ImageTypeDispatch.h"

namespace {

// Width of the filters, in pixels of the resolution that is segmented.
constexpr long cnExtremeWidth = 7;

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

void ClIpVT40R4Mask::MakeFirstMask() {
  // Beyond these limits the decision no longer changes: 100 times the brightest sample is 25500.
  const int nFog = std::min(std::max(ElementFromDouble<int>(100.0 * m_dInFogThresh), -1), 25501);
  const auto nLimit = ElementFromDouble<uint16_t>(65535.0 * m_dInLBPThresh);
  m_oFirstMask.Make(m_oSignal, m_oEnvelope,
                    {{m_nInSignalBack, m_nInSignalFront, nLimit}, m_nInMaskThresh, nFog}, m_oMask);
}
