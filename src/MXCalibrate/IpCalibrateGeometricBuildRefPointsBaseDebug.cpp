// Small aids of the dot search and its pictures.
#include <algorithm>
#include <cmath>

#include "MXCalibrate/IpCalibrateBase.h"
#include "MXCalibrate/IpCalibrateGeometricBuildRefPointsBase.h"
#include "MXCalibrate/RefPointsLog.h"
#include "MXTools/NumberLimits.h"
#include "portable/Math.h"

namespace {

using ClBase = ClIpCalibrateGeometricBuildRefPointsBase;

/// Points nearer than this are one.
constexpr double cdSamePoint = 1.5;
/// By how much a dot's radius may differ, in millimetres.
constexpr double cdRadiusTolerance = 0.2;
constexpr unsigned char cnGoodGrey = 255;
constexpr unsigned char cnRemovedGrey = 128;
constexpr unsigned char cnLinkGrey = 64;
constexpr int cnCrossArm = 12;

/// Sets all planes of a pixel, if it lies inside the image.
void DrawPixel(ClImage& oImage, double dX, double dY, unsigned char nGrey) {
  if (!(dX >= 0 && dY >= 0 && dX < oImage.Width() && dY < oImage.Height())) return;
  uint8_t* pPixel = oImage.Row<uint8_t>(static_cast<int>(dY)) + static_cast<int>(dX) * oImage.Planes();
  std::fill_n(pPixel, oImage.Planes(), nGrey);
}

void DrawLine(ClImage& oImage, const ClVector& vFrom, const ClVector& vTo, unsigned char nGrey) {
  const ClVector vWay = vTo - vFrom;
  const int nSteps = static_cast<int>(std::max(std::fabs(vWay.x), std::fabs(vWay.y))) + 1;
  for (int n = 0; n <= nSteps; ++n) {
    const ClVector v = vFrom + vWay * (static_cast<double>(n) / nSteps);
    DrawPixel(oImage, v.x, v.y, nGrey);
  }
}

/// Gives access to the function by which calibrating processors write their pictures.
struct StDebugStore : ClIpCalibrateBase {
  using ClIpCalibrateBase::StoreDebug;
};

}  // namespace

void ClBase::RemoveSmallPoints(Points& aIn, Points& aOut) const {
  const ClRefPointsLog oLog("RemoveSmallPoints");
  const double dPerMmX = m_dSourceDpiX / cdMillimetresPerInch;
  const double dPerMmY = m_dSourceDpiY / cdMillimetresPerInch;
  const double dX = dPerMmX * m_dDotRadius;
  const double dY = dPerMmY * m_dDotRadius;
  const double dArea = Portable::cdPi * 0.25 * std::trunc(dX) * std::trunc(dY);
  const double dTolerance =
      dArea - Portable::cdPi * 0.25 * (dX - dPerMmX * cdRadiusTolerance) * (dY - dPerMmY * cdRadiusTolerance);
  for (unsigned int nFirst = 0; nFirst < aIn.Entries(); ++nFirst) {
    if (aIn[nFirst].x < 0) continue;
    ClVector vSum = aIn[nFirst];
    unsigned int nCount = 1;
    for (unsigned int n = nFirst + 1; n < aIn.Entries(); ++n) {
      if (aIn[n].x < 0 || !((aIn[n] - aIn[nFirst]).Length() < cdSamePoint)) continue;
      vSum = vSum + aIn[n];
      ++nCount;
      aIn[n].x = -1;
    }
    if (nCount > dArea - dTolerance && nCount < dArea + dTolerance) aOut.Add(Divided(vSum, nCount));
  }
}

void ClBase::CheckDot(const ClImage& oImage, long nX, long nY, long nThreshold, ClVector& vOut) const {
  const ClRefPointsLog oLog("CheckDot");
  const long nReachX = Klv::ClampNumber<long>(m_dSourceDpiX / cdMillimetresPerInch * m_dDotRadius);
  const long nReachY = Klv::ClampNumber<long>(m_dSourceDpiY / cdMillimetresPerInch * m_dDotRadius);
  const long nLastX = std::min<long>(nX + nReachX, oImage.Width() - 1);
  const long nLastY = std::min<long>(nY + nReachY, oImage.Height() - 1);
  ClVector vSum;
  double dWeights = 0;
  for (long y = std::max<long>(nY - nReachY, 0); y <= nLastY; ++y) {
    const uint8_t* pRow = oImage.Row<uint8_t>(static_cast<int>(y));
    for (long x = std::max<long>(nX - nReachX, 0); x <= nLastX; ++x) {
      const double dWeight = static_cast<double>(std::max<long>(nThreshold - pRow[x], 0));
      vSum = vSum + ClVector(static_cast<double>(x), static_cast<double>(y)) * dWeight;
      dWeights += dWeight;
    }
  }
  vOut = dWeights > 0 ? Divided(vSum, dWeights) : ClVector(static_cast<double>(nX), static_cast<double>(nY));
}

void ClBase::GridToDebugImage(const Grid& aGrid, ClImage& oImage) const {
  const ClRefPointsLog oLog("GridToDebugImage");
  if (oImage.Data() == nullptr) return;
  oImage = static_cast<unsigned char>(0);
  if (oImage.ElementSize() != 1) return;
  for (unsigned int n = 0; n < aGrid.Entries(); ++n) {
    const ClDot& o = aGrid[n];
    for (unsigned int i = 0; i < o.aNeighbours.Entries(); ++i)
      DrawLine(oImage, o.vPosition, aGrid.OfIndex(o.aNeighbours[i]).vPosition, cnLinkGrey);
  }
  for (unsigned int n = 0; n < aGrid.Entries(); ++n) {
    const ClVector& v = aGrid[n].vPosition;
    const unsigned char nGrey = aGrid[n].bValid ? cnGoodGrey : cnRemovedGrey;
    DrawLine(oImage, {v.x - cnCrossArm, v.y}, {v.x + cnCrossArm, v.y}, nGrey);
    DrawLine(oImage, {v.x, v.y - cnCrossArm}, {v.x, v.y + cnCrossArm}, nGrey);
  }
}

void ClBase::StoreDebug(ClImage* pImage, const char* szTag, const char* szDirectory) const {
  const ClRefPointsLog oLog("StoreDebug");
  StDebugStore::StoreDebug(pImage, szTag, szDirectory);
}
