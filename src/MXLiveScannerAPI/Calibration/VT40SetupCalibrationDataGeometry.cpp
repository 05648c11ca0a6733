// From the scanner's point correspondence to the seven data sets of its kinds of frame.
#include <cmath>

#include "MXCalibrate/IpCalibrateGeometricBuildRefPointsVT40Donut.h"
#include "MXLiveScannerAPI/VT40SetupCalibrationData.h"
#include "MXTools/Exception.h"
#include "MXTools/MemStream.h"
#include "MXTools/NumberLimits.h"

namespace {

constexpr unsigned int cnGridPoints = 64;
constexpr unsigned int cnGridSide = 8;
constexpr double cdMostOffGrid = 15.0;
constexpr uint32_t cnTargetSize = 1600;
/// No sensor is larger: the limit bounds what is allocated by the size of a frame.
constexpr uint32_t cnMostSource = 16384;
/// The smallest frame is an eighth of the width and a quarter of the height.
constexpr uint32_t cnLeastSource = 8;

[[noreturn]] void RaiseInvalid() {
  KLV_RAISE(ClException, "invalid calibration data found in scanner eprom.", -39);
}

bool AreFinite(const ClCalibrateGeometricData::Points& aPoints) {
  for (unsigned int n = 0; n < aPoints.Entries(); ++n) {
    if (!std::isfinite(aPoints[n].x) || !std::isfinite(aPoints[n].y)) return false;
  }
  return true;
}

void ScalePoints(ClCalibrateGeometricData::Points& aPoints, double dX, double dY) {
  for (unsigned int n = 0; n < aPoints.Entries(); ++n)
    aPoints[n] = ClVector(aPoints[n].x * dX, aPoints[n].y * dY);
}

void DivideSource(ClCalibrateGeometricData& oData, uint32_t nX, uint32_t nY) {
  oData.m_nSourceWidth /= nX;
  oData.m_nSourceHeight /= nY;
  oData.m_nSourcePelsX /= nX;
  oData.m_nSourcePelsY /= nY;
  ScalePoints(oData.m_aActual[0], 1.0 / nX, 1.0 / nY);
}

void DivideTarget(ClCalibrateGeometricData& oData, uint32_t nBy) {
  oData.m_nTargetWidth /= nBy;
  oData.m_nTargetHeight /= nBy;
  oData.m_nTargetPelsX /= nBy;
  oData.m_nTargetPelsY /= nBy;
  ScalePoints(oData.m_aTarget, 1.0 / nBy, 1.0 / nBy);
}

}  // namespace

void ClVT40SetupCalibrationData::UpdateGeometricData(const void* pData, unsigned int nSize) {
  CopyBlock(pData, nSize, m_aGeoRaw);
  ClMemStream oBlock(static_cast<const unsigned char*>(pData), nSize);
  ClCalibrateGeometricData oData;
  oData.Read(oBlock);
  oData.m_nBackground = 0;
  // The frames have one plane: with a map for more planes every frame would be refused.
  if (oData.m_nPlanes != 1 || oData.m_nTargetWidth != cnTargetSize || oData.m_nTargetHeight != cnTargetSize) {
    RaiseInvalid();
  }
  CheckPoints(oData);
  // On scanners of the first revision the points need not form the target's grid.
  if (m_nScannerRevision != 0) ClIpCalibrateGeometricBuildRefPointsVT40Donut().ValidateCalibrationData(oData);
  RepairPoints(oData.m_aActual[0]);
  m_GeoFull = oData;
  DeriveDataSets();
  m_oFullWarpSmall.m_pData = &m_GeoFullSmall;
  m_oPreviewWarpSmall.m_pData = &m_GeoPreviewSmall;
  m_oFullWarp.m_pData = &m_GeoFullWork;
  m_oPreviewWarp.m_pData = &m_GeoPreview;
  m_oFullWarp.Reset();
  m_oPreviewWarp.Reset();
  m_oFullWarpSmall.Reset();
  m_oPreviewWarpSmall.Reset();
}

void ClVT40SetupCalibrationData::CheckPoints(const ClCalibrateGeometricData& oData) const {
  const bool bSizes = oData.m_nSourceWidth >= cnLeastSource && oData.m_nSourceWidth <= cnMostSource &&
                      oData.m_nSourceHeight >= cnLeastSource && oData.m_nSourceHeight <= cnMostSource;
  const unsigned int nTargets = oData.m_aTarget.Entries();
  if (!bSizes || nTargets == 0 || !AreFinite(oData.m_aTarget)) RaiseInvalid();
  const unsigned int nActuals = oData.m_aActual[0].Entries();
  const bool bGrid = nTargets == cnGridPoints && nActuals == cnGridPoints;
  const bool bOldGrid = m_nScannerRevision == 0 && nActuals >= cnGridPoints && nTargets <= nActuals;
  if ((!bGrid && !bOldGrid) || !AreFinite(oData.m_aActual[0])) RaiseInvalid();
}

void ClVT40SetupCalibrationData::RepairPoints(Points& aPoints) {
  for (unsigned int nColumn = 1; nColumn < cnGridSide - 1; ++nColumn) {
    for (unsigned int nRow = 1; nRow < cnGridSide - 1; ++nRow) {
      const unsigned int n = cnGridSide * nColumn + nRow;
      const ClVector oMiddle((aPoints[n - 1].x + aPoints[n + 1].x) / 2,
                             (aPoints[n - cnGridSide].y + aPoints[n + cnGridSide].y) / 2);
      if ((aPoints[n] - oMiddle).Length() > cdMostOffGrid) aPoints[n] = oMiddle;
    }
  }
}

void ClVT40SetupCalibrationData::DeriveDataSets() {
  m_GeoPreview = m_GeoFull;
  m_GeoQuarter = m_GeoFull;
  m_GeoFullSmall = m_GeoFull;
  m_GeoPreviewSmall = m_GeoFull;
  m_GeoQuarterSmall = m_GeoFull;
  m_GeoFullWork = m_GeoFull;

  DivideSource(m_GeoPreview, 2, 2);
  DivideTarget(m_GeoPreview, 2);
  DivideSource(m_GeoQuarter, 4, 4);
  DivideTarget(m_GeoQuarter, 4);
  DivideSource(m_GeoFullSmall, 2, 1);
  DivideSource(m_GeoPreviewSmall, 4, 2);
  DivideTarget(m_GeoPreviewSmall, 2);
  DivideSource(m_GeoQuarterSmall, 8, 4);
  DivideTarget(m_GeoQuarterSmall, 4);

  const double dX = static_cast<double>(cnWorkWidth) / m_GeoFull.m_nSourceWidth;
  const double dY = static_cast<double>(cnWorkHeight) / m_GeoFull.m_nSourceHeight;
  m_GeoFullWork.m_nSourceWidth = cnWorkWidth;
  m_GeoFullWork.m_nSourceHeight = cnWorkHeight;
  m_GeoFullWork.m_nSourcePelsX = Klv::ClampNumber<uint32_t>(m_GeoFull.m_nSourcePelsX * dX);
  m_GeoFullWork.m_nSourcePelsY = Klv::ClampNumber<uint32_t>(m_GeoFull.m_nSourcePelsY * dY);
  ScalePoints(m_GeoFullWork.m_aActual[0], dX, dY);
}
