// The steps from a frame to the position of a pen.
#include "MXLiveScannerAPI/PenDetector.h"

#include <algorithm>

#include "MXKernels/DifferenceRows.h"

namespace {

/// The pad's contrast is low, so that grey values are multiplied by four.
constexpr double cdContrast = 4.0;
constexpr long cnAreaWidth = 5;
constexpr long cnTipWidth = 3;

/// When no pixel has changed by more than this, nothing touches the glass.
constexpr int cnNoTouch = 32;
/// What belongs to a tip or to a large object lies within a squared distance of the brightest pixel, and has
/// changed by at least so much.
constexpr int cnTipReach = 99, cnTipChange = 11;
constexpr int cnLargeReach = 2499, cnLargeChange = 4;
constexpr int cnLargeSide = 49;
/// A pen never shows more pixels than the first, never fewer than the second, and its pixels scatter less
/// than the third.
constexpr int cnLargePixels = 300;
constexpr int cnTipPixels = 5;
constexpr double cdTipVariance = 15.0;

}  // namespace

ClPenDetector::ClPenDetector(int nWidth, int nHeight, bool bHalfHeight)
    : m_nFrameWidth(nWidth),
      m_nWidth(nWidth / 2),
      m_nHeight(nHeight / 2),
      m_nFirstX(3 * m_nWidth / 50),
      m_nEndX(47 * m_nWidth / 50),
      m_nFirstY(m_nHeight / 20),
      m_nEndY(bHalfHeight ? 19 * m_nHeight / 20 : 4 * m_nHeight / 5) {
  for (ClImage& oImage : m_aHistory) {
    oImage.NewWithType(ClImage::eUint8, m_nWidth, m_nHeight, 1, 0, 0, true);
    oImage = 0;
  }
  m_oSum.NewWithType(ClImage::eUint16, m_nWidth, m_nHeight, 1, 0, 0, true);
  m_oSum = 0;
}

ClPenDetector::StSight ClPenDetector::Detect(ClImage& oFrame) {
  m_oScale.ApplyParam(oFrame, cdContrast);
  m_oHalve.ApplyParam(oFrame, 2, m_oFrame, true);
  RemoveBackground();
  m_oMean.ApplyParam(m_oFrame, m_oSmooth, cnAreaWidth);
  m_oSubtract.ApplyParam(m_oFrame, m_oSmooth, m_oFrame, ClImage::cnTypeDefault);
  StSight oSight;
  oSight.eKind = eFirstFrame;
  if (m_oPrevious.Data() != nullptr) oSight = LookForPen();
  m_oPrevious.Swap(m_oFrame);
  return oSight;
}

void ClPenDetector::RemoveBackground() {
  ClImage& oOldest = m_aHistory[m_nHistory++ & 7];
  for (int y = 0; y < m_nHeight; ++y) {
    MXKernels::RemoveBackgroundRow(m_oFrame.Row<uint8_t>(y), oOldest.Row<uint8_t>(y), m_oSum.Row<uint16_t>(y),
                                   static_cast<size_t>(m_nWidth));
  }
}

ClPenDetector::StSight ClPenDetector::LookForPen() {
  m_oSubtract.ApplyParam(m_oFrame, m_oPrevious, m_oChange, ClImage::cnTypeDefault);
  m_oMean.ApplyParam(m_oChange, m_oSmooth, cnTipWidth);
  const StPlace oTip = FindBrightest();
  if (oTip.nValue <= cnNoTouch) return {};
  StSpot oNear, oWide;
  const int nEndX = std::min(m_nEndX, oTip.nX + cnLargeSide + 1);
  const int nEndY = std::min(m_nEndY, oTip.nY + cnLargeSide + 1);
  for (int y = std::max(m_nFirstY, oTip.nY - cnLargeSide); y < nEndY; ++y) {
    const uint8_t* pRow = m_oSmooth.Row<uint8_t>(y);
    for (int x = std::max(m_nFirstX, oTip.nX - cnLargeSide); x < nEndX; ++x) {
      if (pRow[x] < cnLargeChange) continue;
      const int nSquare = (x - oTip.nX) * (x - oTip.nX) + (y - oTip.nY) * (y - oTip.nY);
      if (nSquare > cnLargeReach) continue;
      ++oWide.nCount;
      oWide.nX += x;
      if (nSquare > cnTipReach || pRow[x] < cnTipChange) continue;
      ++oNear.nCount;
      oNear.nX += x;
      oNear.nY += y;
      oNear.nXX += x * x;
      oNear.nYY += y * y;
    }
  }
  return Classify(oNear, oWide);
}

/// Among equally bright pixels the first in row order is taken.
ClPenDetector::StPlace ClPenDetector::FindBrightest() const {
  StPlace oBrightest;
  for (int y = m_nFirstY; y < m_nEndY; ++y) {
    const uint8_t* pRow = m_oChange.Row<uint8_t>(y);
    for (int x = m_nFirstX; x < m_nEndX; ++x) {
      if (pRow[x] > oBrightest.nValue) oBrightest = {x, y, pRow[x]};
    }
  }
  return oBrightest;
}

ClPenDetector::StSight ClPenDetector::Classify(const StSpot& oNear, const StSpot& oWide) const {
  StSight oSight;
  if (oWide.nCount > cnLargePixels) {
    oSight.eKind = eLargeObject;
    oSight.dWide = m_nFrameWidth - 2.0 * oWide.nX / oWide.nCount;
    return oSight;
  }
  if (oNear.nCount < cnTipPixels) return oSight;
  // The frames are halved: positions count twice, their squares four times.
  const double dCount = oNear.nCount;
  const double dMeanX = 2.0 * oNear.nX / dCount;
  const double dMeanY = 2.0 * oNear.nY / dCount;
  const double dVarX = (4.0 * oNear.nXX - dCount * dMeanX * dMeanX) / (dCount - 1.0);
  const double dVarY = (4.0 * oNear.nYY - dCount * dMeanY * dMeanY) / (dCount - 1.0);
  if (dVarX >= cdTipVariance || dVarY >= cdTipVariance) return oSight;
  oSight.eKind = ePen;
  oSight.dX = m_nFrameWidth - dMeanX;
  oSight.dMeanY = dMeanY;
  oSight.nWeight = oNear.nCount;
  return oSight;
}
