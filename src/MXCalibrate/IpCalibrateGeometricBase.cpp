// Preparing a warp and applying its map.
#include "MXCalibrate/IpCalibrateGeometricBase.h"

#include "MXTools/Exception.h"
#include "MXTools/FpImage.h"
#include "MXTools/MXLogging.h"

void ClIpCalibrateGeometricBase::Reset() {
  m_nSourceWidth = m_nSourceHeight = 0;
  m_nTargetWidth = m_nTargetHeight = m_nTargetPelsX = m_nTargetPelsY = 0;
  m_nPlanes = 0;
  m_nBackground = 0;
  m_pMap.reset();
}

void ClIpCalibrateGeometricBase::Initiate() {
  ClLogging::LogF(eLogDebug, "ClIpCalibrateGeometricBase::Initiate() Enter");
  if (m_nSourceWidth == 0) {
    if (m_pData == nullptr) KLV_RAISE(ClException, "The calibrations data is not set", -37);
    m_nSourceWidth = m_pData->m_nSourceWidth;
    m_nSourceHeight = m_pData->m_nSourceHeight;
    m_nTargetWidth = m_pData->m_nTargetWidth;
    m_nTargetHeight = m_pData->m_nTargetHeight;
    m_nTargetPelsX = m_pData->m_nTargetPelsX;
    m_nTargetPelsY = m_pData->m_nTargetPelsY;
    m_nPlanes = m_pData->m_nPlanes;
    m_nBackground = m_pData->m_nBackground;
    InitiateParams(m_pData->m_aTarget, m_pData->m_aActual, m_nPlanes);
  }
  ClLogging::LogF(eLogDebug, "ClIpCalibrateGeometricBase::Initiate() Leaving");
}

void ClIpCalibrateGeometricBase::CheckParams(const Points& aTarget, const Points* pActual,
                                             uint32_t nPlanes) const {
  if (nPlanes == 0 || nPlanes > ClCalibrateGeometricData::cnMaxPlanes) {
    KLV_RAISE(ClException, "Calibration needs one to three planes", -44);
  }
  for (uint32_t n = 0; n < nPlanes; ++n) {
    if (pActual[n].Entries() < aTarget.Entries()) {
      KLV_RAISE(ClException, "Calibration has fewer actual than target points", -44);
    }
  }
  if (!IsSourceInReach()) KLV_RAISE(ClException, "The source image is too large for a map", -44);
}

bool ClIpCalibrateGeometricBase::IsSourceInReach() const {
  // The width is tested first: beyond this limit, rounding it up would overflow 32 bits.
  return m_nSourceWidth <= INT32_MAX - 3 && uint64_t{m_nSourceHeight} * SourceRowBytes() <= INT32_MAX;
}

std::unique_ptr<ClIpCalibrateGeometricBaseMap> ClIpCalibrateGeometricBase::NewMap() const {
  return std::make_unique<ClIpCalibrateGeometricBaseMap>(m_nTargetHeight, size_t{m_nTargetWidth} * m_nPlanes,
                                                         m_nSourceHeight, SourceRowBytes());
}

ClIpCalibrateGeometricBase::Entry ClIpCalibrateGeometricBase::EntryOf(double dX, double dY) const {
  const double dMaxX = static_cast<double>(m_nSourceWidth) - 1 - 2.0;
  const double dMaxY = static_cast<double>(m_nSourceHeight) - 1 - 2.0;
  // Written so that NaN has no source.
  if (!(dX >= 1.0 && dY >= 1.0 && dX <= dMaxX && dY <= dMaxY)) return {-1, 0};
  const int32_t nX = static_cast<int32_t>(dX);
  const int32_t nY = static_cast<int32_t>(dY);
  const uint32_t nPhaseX = static_cast<uint32_t>((dX - nX) * 32);
  const uint32_t nPhaseY = static_cast<uint32_t>((dY - nY) * 32);
  return {(nY - 1) * static_cast<int32_t>(SourceRowBytes()) + nX - 1, nPhaseX + 32 * nPhaseY};
}

void ClIpCalibrateGeometricBase::CheckRegion() const {
  if (m_nRoiWidth == 0) {
    if (m_nRoiHeight != 0 || m_nRoiX != 0 || m_nRoiY != 0)
      KLV_RAISE(ClException, "Invalid ROI parameters", -44);
    return;
  }
  if (m_nRoiHeight == 0) KLV_RAISE(ClException, "Invalid ROI parameters", -44);
  if (uint64_t{m_nRoiWidth} + m_nRoiX > m_nTargetWidth ||
      uint64_t{m_nRoiHeight} + m_nRoiY > m_nTargetHeight) {
    KLV_RAISE(ClException, "Target subimage not within target image", -44);
  }
}

bool ClIpCalibrateGeometricBase::FitsMap(const ClImage& oIn) const {
  return oIn.DataType() == ClImage::eUint8 && oIn.Planes() == 1 &&
         static_cast<uint32_t>(oIn.Width()) == m_nSourceWidth &&
         static_cast<uint32_t>(oIn.Height()) == m_nSourceHeight && oIn.RowBytes() == SourceRowBytes() &&
         oIn.Data() != nullptr;
}

void ClIpCalibrateGeometricBase::Calibrate() {
  if (m_pInImage == nullptr) return;
  if (m_nSourceWidth == 0 || m_nSourceHeight == 0 || m_nTargetWidth == 0 || m_nTargetHeight == 0) {
    KLV_RAISE(ClException, "Calibrate is not initialized", -2);
  }
  if (m_pInImage == m_pOutImage) KLV_RAISE(ClException, "InImage can't be the out image", -35);
  if (m_pOutImage == nullptr) KLV_RAISE(ClException, "m_pOutImage is not set", -701);
  CheckRegion();
  // The map's offsets are valid for this size only.
  if (!FitsMap(*m_pInImage)) KLV_RAISE(ClException, "InImage does not fit the calibration data", -44);
  const bool bRegion = m_nRoiWidth != 0;
  m_pOutImage->NewWithType(ClImage::eUint8, static_cast<int>(bRegion ? m_nRoiWidth : m_nTargetWidth),
                           static_cast<int>(bRegion ? m_nRoiHeight : m_nTargetHeight),
                           static_cast<int>(m_nPlanes), static_cast<int>(m_nTargetPelsX),
                           static_cast<int>(m_nTargetPelsY), true);
  if (m_pMap == nullptr) KLV_RAISE(ClException, "Calibrate is not initialized", -2);
  const size_t nFirst = static_cast<size_t>(m_nRoiX) * m_nPlanes;
  const size_t nCount = static_cast<size_t>(m_pOutImage->SamplesPerRow());
  for (int nY = 0; nY < m_pOutImage->Height(); ++nY) {
    m_pMap->WarpRow(m_nRoiY + static_cast<uint32_t>(nY), nFirst, nCount, *m_pInImage, Table(), m_nBackground,
                    m_pOutImage->Row<uint8_t>(nY));
  }
}

bool ClIpCalibrateGeometricBase::HasRowsOf(const ClImage& oIn, const ClImage& oLikeTarget) const {
  return m_pMap != nullptr && m_nPlanes == 1 && m_nTargetWidth != 0 && FitsMap(oIn) &&
         oLikeTarget.HasSize(static_cast<int>(m_nTargetWidth), static_cast<int>(m_nTargetHeight));
}

void ClIpCalibrateGeometricBase::WarpRow(const ClImage& oIn, int nRow, uint8_t* pOut) const {
  m_pMap->WarpRow(static_cast<uint32_t>(nRow), 0, m_nTargetWidth, oIn, Table(), m_nBackground, pOut);
}

void ClIpCalibrateGeometricBase::NewTarget(ClImage& oOut) const {
  oOut.NewWithType(ClImage::eUint8, static_cast<int>(m_nTargetWidth), static_cast<int>(m_nTargetHeight),
                   static_cast<int>(m_nPlanes), static_cast<int>(m_nTargetPelsX),
                   static_cast<int>(m_nTargetPelsY), true);
}
