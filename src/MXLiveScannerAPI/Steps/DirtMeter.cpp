// Sums of empty frames, and the specks in them.
#include "MXLiveScannerAPI/DirtMeter.h"

#include <algorithm>

#include "MXCalibrate/CalibrateGeometricData.h"
#include "MXKernels/DifferenceRows.h"

namespace {

/// Up to this brightness of its brightest tenth the platen is empty.
constexpr double cdEmptyBrightness = 24.0;
/// A speck differs from its surroundings by more than this in the sum over the ring.
constexpr uint16_t cnSpeckDeviation = 22;
/// The grid of overlapping blocks over which specks are counted, and the steps of the axes.
constexpr int cnBlocks = 7;
constexpr int cnSteps = 10;

/// Limits a co-ordinate to the pixels of the sensor.
int ToPixel(double dCoordinate, int nLimit) {
  return static_cast<int>(std::max(0.0, std::min(dCoordinate, static_cast<double>(nLimit))));
}

}  // namespace

ClDirtMeter::ClDirtMeter(const ClCalibrateGeometricData& oCalibration, const ClImage& oDifference)
    : m_oPlaten(PlatenOf(oCalibration)) {
  m_oSum.NewWithType(ClImage::eUint16, oDifference.Width(), oDifference.Height(), 1, 0, 0, true);
  Reset();
}

ClDirtMeter::StRectangle ClDirtMeter::PlatenOf(const ClCalibrateGeometricData& oCalibration) {
  const int nWidth = static_cast<int>(oCalibration.m_nSourceWidth);
  const int nHeight = static_cast<int>(oCalibration.m_nSourceHeight);
  StRectangle oBounds{nWidth, nHeight, 0, 0};
  const ClCalibrateGeometricData::Points& aPoints = oCalibration.m_aActual[0];
  for (unsigned int n = 0; n < aPoints.Entries(); ++n) {
    const int nX = ToPixel(aPoints[n].x, nWidth - 1);
    const int nY = ToPixel(aPoints[n].y, nHeight - 1);
    oBounds.nX0 = std::min(oBounds.nX0, nX);
    oBounds.nY0 = std::min(oBounds.nY0, nY);
    oBounds.nX1 = std::max(oBounds.nX1, nX);
    oBounds.nY1 = std::max(oBounds.nY1, nY);
  }
  // The outermost points belong to the platen.
  ++oBounds.nX1;
  ++oBounds.nY1;
  return oBounds;
}

void ClDirtMeter::Reset() {
  m_nEmptyFrames = 0;
  m_oSum = static_cast<unsigned char>(0);
}

ClDirtMeter::ESight ClDirtMeter::Add(const ClImage& oDifference) {
  ++m_nFrames;
  if (IsCovered(oDifference)) return eCovered;
  return m_nFrames % 2 == 0 && AddEmpty(oDifference) ? eMeasured : eEmpty;
}

bool ClDirtMeter::IsCovered(const ClImage& oDifference) {
  const int nPixels = (m_oPlaten.nX1 - m_oPlaten.nX0) * (m_oPlaten.nY1 - m_oPlaten.nY0);
  m_oHistogram.Create(oDifference, m_oPlaten.nX0, m_oPlaten.nY0, m_oPlaten.nX1, m_oPlaten.nY1);
  return m_oHistogram.GetBrightestAvrg(static_cast<unsigned int>(nPixels / 10)) > cdEmptyBrightness;
}

bool ClDirtMeter::AddEmpty(const ClImage& oDifference) {
  const size_t nWidth = static_cast<size_t>(oDifference.Width());
  ClImage& oOldest = m_aRing[m_nEmptyFrames % cnRing];
  for (int y = 0; y < oDifference.Height(); ++y)
    MXKernels::AddToSumsRow(oDifference.Row<uint8_t>(y), m_oSum.Row<uint16_t>(y), nWidth);
  const bool bFull = m_nEmptyFrames >= cnRing;
  if (bFull) {
    for (int y = 0; y < oDifference.Height(); ++y)
      MXKernels::TakeFromSumsRow(oOldest.Row<uint8_t>(y), m_oSum.Row<uint16_t>(y), nWidth);
    m_nLevel = Measure();
  }
  oOldest = oDifference;
  ++m_nEmptyFrames;
  return bFull;
}

int ClDirtMeter::Measure() {
  const int nWidth = m_oSum.Width();
  const int nHeight = m_oSum.Height();
  m_oFilter.ApplyParam(m_oSum, m_oSmooth, (nWidth / 87) | 1);
  m_oFilter.ApplyParam(m_oSmooth, m_oGround, (nHeight / 123) | 1);
  m_oSpecks.NewWithType(ClImage::eUint8, nWidth, nHeight, 1, 0, 0, true);
  for (int y = 0; y < nHeight; ++y) {
    MXKernels::DeviationRow(m_oSum.Row<uint16_t>(y), m_oGround.Row<uint16_t>(y), m_oSpecks.Row<uint8_t>(y),
                            static_cast<size_t>(nWidth), cnSpeckDeviation);
  }
  int nSum = 0;
  for (int j = 1; j <= cnBlocks; ++j) {
    for (int i = 1; i <= cnBlocks; ++i) {
      const int nX0 = nWidth * i / cnSteps, nX1 = nWidth * (i + 2) / cnSteps;
      const int nY0 = nHeight * j / cnSteps, nY1 = nHeight * (j + 2) / cnSteps;
      const int64_t nPixels = int64_t{nX1 - nX0} * (nY1 - nY0);
      // A calibration may state any size: a frame of few pixels has blocks without any.
      if (nPixels == 0) continue;
      m_oHistogram.Create(m_oSpecks, nX0, nY0, nX1, nY1);
      const auto nShare = static_cast<int>(int64_t{m_oHistogram.Count(255)} * 15000 / nPixels);
      // Two parts in 15000 are noise.
      nSum += std::max(0, std::min(nShare - 2, 100));
    }
  }
  return nSum / (cnBlocks * cnBlocks);
}
