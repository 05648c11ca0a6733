// A dot, its neighbours, and the order of all dots.
#include "MXCalibrate/RefPointsGrid.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

/// How far the angles of [0, 2 pi) are apart, the shorter way round.
double Between(double dA, double dB) {
  const double dApart = std::fabs(dA - dB);
  return dApart > Portable::cdPi ? 2 * Portable::cdPi - dApart : dApart;
}

}  // namespace

void ClRefPointsDot::TakeFrom(const ClIpConnectedComponent2::ClComponent& oComponent) {
  vPosition = oComponent.vCentre;
  dEccentricity = oComponent.dEccentricity;
  dArea = oComponent.dArea;
  dGrey = oComponent.dGrey;
  vBoxCentre = (oComponent.vMin + oComponent.vMax) * 0.5;
}

void ClRefPointsDot::AddDot(unsigned int nOther) {
  const unsigned int* const pBegin = aNeighbours.Data();
  const unsigned int* const pEnd = pBegin + aNeighbours.Entries();
  if (std::find(pBegin, pEnd, nOther) == pEnd) aNeighbours.Add(nOther);
}

void ClRefPointsDot::Remove(unsigned int nOther) {
  for (unsigned int n = aNeighbours.Entries(); n-- > 0;) {
    if (aNeighbours[n] == nOther) aNeighbours.RemoveAt(n);
  }
}

double ClRefPointsDot::AngleOf(const ClVector& vFrom, const ClVector& vTo) {
  const ClVector vWay = vTo - vFrom;
  // Directions along the axes are given exactly.
  if (vWay.x == 0) return vWay.y < 0 ? 3 * Portable::cdPi / 2 : Portable::cdPi / 2;
  if (vWay.y == 0) return vWay.x < 0 ? Portable::cdPi : 0;
  const double dAngle = Portable::Atan2(vWay.y, vWay.x);
  return dAngle < 0 ? dAngle + 2 * Portable::cdPi : dAngle;
}

long ClRefPointsDot::DirectionOf(const ClRefPointsDot& oOther) const {
  const double dAngle = AngleOf(vPosition, oOther.vPosition);
  // A dot on a boundary belongs to the lower number; rounding must not leave it to neither side.
  constexpr double cdRounding = 1e-12;
  for (long nDirection = 0; nDirection < 8; ++nDirection) {
    const double dCentre = static_cast<double>(nDirection) * cdEighthTurn;
    if (Between(dAngle, dCentre) <= cdEighthTurn / 2 + cdRounding) return nDirection;
  }
  return 0;
}

void ClRefPointsGrid::New(unsigned int nDots) {
  m_aOrder.New(nDots);
  m_aDots.New(nDots);
  std::iota(m_aOrder.Data(), m_aOrder.Data() + nDots, 0U);
  for (unsigned int n = 0; n < nDots; ++n) m_aDots[n].nIndex = n;
}

void ClRefPointsGrid::SortByX(unsigned int nFirst, unsigned int nEnd) {
  std::sort(m_aOrder.Data() + nFirst, m_aOrder.Data() + nEnd, [this](unsigned int nA, unsigned int nB) {
    return m_aDots[nA].vPosition.x < m_aDots[nB].vPosition.x;
  });
}

void ClRefPointsGrid::SortByY(unsigned int nFirst, unsigned int nEnd) {
  std::sort(m_aOrder.Data() + nFirst, m_aOrder.Data() + nEnd, [this](unsigned int nA, unsigned int nB) {
    return m_aDots[nA].vPosition.y < m_aDots[nB].vPosition.y;
  });
}

const ClRefPointsDot* ClRefPointsGrid::GetNeighbourInDirection(const ClDot& oDot, long nDirection,
                                                               double dMaxAngle) const {
  const ClDot* pBest = nullptr;
  double dBest = dMaxAngle;
  for (unsigned int n = 0; n < oDot.aNeighbours.Entries(); ++n) {
    const ClDot& oNeighbour = OfIndex(oDot.aNeighbours[n]);
    const double dApart = Between(ClDot::AngleOf(oDot.vPosition, oNeighbour.vPosition),
                                  static_cast<double>(nDirection) * ClDot::cdEighthTurn);
    if (dApart < dBest) {
      dBest = dApart;
      pBest = &oNeighbour;
    }
  }
  return pBest;
}
