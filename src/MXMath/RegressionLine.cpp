// Sums over points, and the line that follows from them.
#include "MXMath/RegressionLine.h"
#include "portable/Math.h"

#include <algorithm>
#include <cmath>

namespace {

double AngleBetween(const ClVector& oA, const ClVector& oB) {
  const double dLengths = oA.Length() * oB.Length();
  if (dLengths == 0) return Portable::cdPi / 2;
  // Rounding may lead past the domain of the arc cosine.
  const double dCosine = oA.Scalar(oB) / dLengths;
  if (dCosine <= -1) return Portable::cdPi;
  if (dCosine >= 1) return 0;
  return Portable::Acos(dCosine);
}

}  // namespace

void ClRegressionLine::Clear() {
  *this = ClRegressionLine();
}

void ClRegressionLine::AddToLine(const ClVector& oPoint) {
  ++m_nCount;
  m_dSumX += oPoint.x;
  m_dSumY += oPoint.y;
  m_dSumXY += oPoint.x * oPoint.y;
  m_dSumXX += oPoint.x * oPoint.x;
  m_dSumYY += oPoint.y * oPoint.y;
  if (m_nCount == 1) {
    m_dMinX = m_dMaxX = oPoint.x;
    m_dMinY = m_dMaxY = oPoint.y;
    return;
  }
  m_dMinX = std::min(m_dMinX, oPoint.x);
  m_dMinY = std::min(m_dMinY, oPoint.y);
  m_dMaxX = std::max(m_dMaxX, oPoint.x);
  m_dMaxY = std::max(m_dMaxY, oPoint.y);
}

void ClRegressionLine::JoinLine(const ClRegressionLine& oOther) {
  if (oOther.m_nCount == 0) return;
  if (m_nCount == 0) {
    *this = oOther;
    return;
  }
  m_nCount += oOther.m_nCount;
  m_dSumX += oOther.m_dSumX;
  m_dSumY += oOther.m_dSumY;
  m_dSumXY += oOther.m_dSumXY;
  m_dSumXX += oOther.m_dSumXX;
  m_dSumYY += oOther.m_dSumYY;
  m_dMinX = std::min(m_dMinX, oOther.m_dMinX);
  m_dMinY = std::min(m_dMinY, oOther.m_dMinY);
  m_dMaxX = std::max(m_dMaxX, oOther.m_dMaxX);
  m_dMaxY = std::max(m_dMaxY, oOther.m_dMaxY);
}

bool ClRegressionLine::GetLineCoeffizienten(double& a, double& b) const {
  a = b = 0;
  if (m_nCount < 2) return false;
  const double dN = m_nCount;
  const double dDenX = dN * m_dSumXX - m_dSumX * m_dSumX;
  const double dDenY = dN * m_dSumYY - m_dSumY * m_dSumY;
  if (dDenX == 0 && dDenY == 0) return false;
  const double dCross = dN * m_dSumXY - m_dSumX * m_dSumY;
  const double dAx = dDenX != 0 ? dCross / dDenX : 0;
  const double dBx = dDenX != 0 ? (m_dSumXX * m_dSumY - m_dSumXY * m_dSumX) / dDenX : 0;
  const double dAy = dDenY != 0 ? dCross / dDenY : 0;
  const double dBy = dDenY != 0 ? (m_dSumX * m_dSumYY - m_dSumXY * m_dSumY) / dDenY : 0;
  const bool bWider = std::fabs(dDenX) > std::fabs(dDenY);
  if (dAx == 0 && dBx == 0 && dAy == 0 && dBy == 0) return bWider;
  const bool bFlatterInY = std::fabs(dAx) > std::fabs(dAy) && dAy != 0;
  const bool bLevelAndHigher = dAx == 0 && dAy == 0 && std::fabs(dDenY) > std::fabs(dDenX);
  if (bFlatterInY || bLevelAndHigher || (dDenX == 0 && dDenY != 0)) {
    a = dAy;
    b = dBy;
    return false;
  }
  a = dAx;
  b = dBx;
  return true;
}

void ClRegressionLine::GetLine(ClVector& oStart, ClVector& oEnd) const {
  oStart = ClVector(m_dMinX, m_dMinY);
  oEnd = ClVector(m_dMaxX, m_dMaxY);
  if (m_nCount < 2) return;
  double dA;
  double dB;
  if (GetLineCoeffizienten(dA, dB)) {
    oStart.y = dA * m_dMinX + dB;
    oEnd.y = dA * m_dMaxX + dB;
  } else {
    oStart.x = dA * m_dMinY + dB;
    oEnd.x = dA * m_dMaxY + dB;
  }
}

ClVector ClRegressionLine::Direction() const {
  ClVector oStart;
  ClVector oEnd;
  GetLine(oStart, oEnd);
  return oEnd - oStart;
}

double ClRegressionLine::DistFromLine(const ClVector& oPoint) const {
  if (m_nCount < 2) return (oPoint - ClVector(m_dMinX, m_dMinY)).Length();
  ClVector oStart;
  ClVector oEnd;
  GetLine(oStart, oEnd);
  const ClVector oTo = oPoint - oStart;
  return oTo.Length() * Portable::Sin(AngleBetween(oTo, oStart - oEnd));
}

bool ClRegressionLine::Horizontal() const {
  if (m_nCount < 2) return false;
  const ClVector oSpan = Direction();
  return std::fabs(oSpan.x) > std::fabs(oSpan.y);
}

bool ClRegressionLine::Vertical() const {
  if (m_nCount < 2) return false;
  const ClVector oSpan = Direction();
  return std::fabs(oSpan.y) > std::fabs(oSpan.x);
}

double ClRegressionLine::Len() const {
  return Direction().Length();
}

ClVector ClRegressionLine::Intersection(const ClRegressionLine& oOther, double& dS, double& dT) const {
  ClVector oStart;
  ClVector oEnd;
  ClVector oOtherStart;
  ClVector oOtherEnd;
  GetLine(oStart, oEnd);
  oOther.GetLine(oOtherStart, oOtherEnd);
  return ClVector::Intersection(oStart, oEnd - oStart, oOtherStart, oOtherEnd - oOtherStart, dS, dT);
}

ClVector ClRegressionLine::CrossPoint(const ClRegressionLine& oOther, double& dS, double& dT) const {
  return Intersection(oOther, dS, dT);
}

double ClRegressionLine::CrossPhi(const ClRegressionLine& oOther) const {
  return AngleBetween(Direction(), oOther.Direction());
}
