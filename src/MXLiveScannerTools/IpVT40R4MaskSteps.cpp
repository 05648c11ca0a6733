// The single steps of the finger mask: background, envelope, fades and the first mask.
#include <algorithm>

#include "MXKernels/LayoutRows.h"
#include "MXKernels/PointRows.h"
#include "MXLiveScannerTools/IpVT40R4Mask.h"
#include "MXTools/ImageTypeDispatch.h"

namespace {

void FadeSample(uint8_t& rnSample, int nNumerator, int nDenominator) {
  rnSample = static_cast<uint8_t>(int64_t{rnSample} * nNumerator / nDenominator);
}

/// The row times nNumerator / nDenominator, which is below 1.
void FadeRow(uint8_t* pRow, int nWidth, int nNumerator, int nDenominator) {
  if (nDenominator <= 256) {
    const auto nFactor =
        MXKernels::FadeFactor(static_cast<uint32_t>(nNumerator), static_cast<uint32_t>(nDenominator));
    return MXKernels::FadeRow(pRow, nFactor, static_cast<size_t>(nWidth));
  }
  for (int x = 0; x < nWidth; ++x) FadeSample(pRow[x], nNumerator, nDenominator);
}

}  // namespace

void ClIpVT40R4Mask::StartSmoothing(int nWidth, int nHeight) {
  m_oDarkest.Start(nWidth, nHeight, MXKernels::MinOf7RowsRow, MXKernels::MaxOf7RowsRow, 64);
  m_oBrightest.Start(nWidth, nHeight, MXKernels::MaxOf7RowsRow, MXKernels::MinOf7RowsRow, 255);
  for (ClImage* pImage : {&m_oSignal, &m_oEnvelope}) {
    pImage->NewWithType(ClImage::eUint8, nWidth, nHeight, 1, 0, 0, true);
  }
}

/// The envelope is that of the signal, whose rows are made when it asks for them.
void ClIpVT40R4Mask::EstimateAtInputResolution() {
  const int nWidth = m_pInImage->Width(), nHeight = m_pInImage->Height();
  StartSmoothing(nWidth, nHeight);
  m_oRows.Start(1, static_cast<size_t>(nWidth), 0);
  const auto In = [this](int n) { return m_pInImage->Row<uint8_t>(n); };
  const auto MakeSignal = [&](int n) {
    uint8_t *pBackground = m_oRows.Row(0), *pSignal = m_oSignal.Row<uint8_t>(n);
    m_oDarkest.MakeRow(n, In, pBackground);
    MXKernels::SubtractSaturated(In(n), pBackground, pSignal, static_cast<size_t>(nWidth));
    return pSignal;
  };
  for (int y = 0; y < nHeight; ++y) m_oBrightest.MakeRow(y, MakeSignal, m_oEnvelope.Row<uint8_t>(y));
}

/// The background is that of the cells' darkest pixels, the envelope that of their brightest ones.
void ClIpVT40R4Mask::EstimateAtHalfResolution() {
  const int nWidth = m_pInImage->Width() / 2, nHeight = m_pInImage->Height() / 2;
  const auto nCount = static_cast<size_t>(nWidth);
  StartSmoothing(nWidth, nHeight);
  m_oBackground.NewWithType(ClImage::eUint8, nWidth, nHeight, 1, 0, 0, true);
  // Cells are read 9 rows ahead of the background, and the envelope keeps the last 7 rows.
  m_oRows.Start(16, nCount, 0);
  m_oLowerRows.Start(8, nCount, 0);
  const auto ReadCells = [&](int n) {
    uint8_t* pLower = m_oLowerRows.Row(n);
    MXKernels::ScaleDownRow(m_pInImage->Row<uint8_t>(2 * n), m_pInImage->Row<uint8_t>(2 * n + 1), nCount,
                            m_oSignal.Row<uint8_t>(n), m_oRows.Row(n), pLower);
    return pLower;
  };
  const auto MakeUpper = [&](int n) {
    uint8_t *pBackground = m_oBackground.Row<uint8_t>(n), *pUpper = m_oRows.Row(n);
    m_oDarkest.MakeRow(n, ReadCells, pBackground);
    uint8_t* pSignal = m_oSignal.Row<uint8_t>(n);
    MXKernels::SubtractSaturated(pSignal, pBackground, pSignal, nCount);
    MXKernels::SubtractSaturated(pUpper, pBackground, pUpper, nCount);
    return pUpper;
  };
  for (int y = 0; y < nHeight; ++y) m_oBrightest.MakeRow(y, MakeUpper, m_oEnvelope.Row<uint8_t>(y));
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
