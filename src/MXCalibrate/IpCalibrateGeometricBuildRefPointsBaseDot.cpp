// A dot and its neighbours.
#include <cmath>

#include "MXCalibrate/IpCalibrateGeometricBuildRefPointsBase.h"
#include "portable/Math.h"

namespace {

/// How far the angles of [0, 2 pi) are apart, the shorter way round.
double Between(double dA, double dB) {
  const double dApart = std::fabs(dA - dB);
  return dApart > Portable::cdPi ? 2 * Portable::cdPi - dApart : dApart;
}

}  // namespace

using ClDot = ClIpCalibrateGeometricBuildRefPointsBase::ClDot;

ClDot::ClDot(const ClIpConnectedComponent2::ClComponent& oComponent) {
  Initialize(oComponent.vCentre);
  dEccentricity = oComponent.dEccentricity;
  dArea = oComponent.dArea;
  dGrey = oComponent.dGrey;
  vBoxCentre = (oComponent.vMin + oComponent.vMax) * 0.5;
}

ClDot& ClDot::operator=(const ClDot& o) {
  vPosition = o.vPosition;
  vGrid = o.vGrid;
  vTarget = o.vTarget;
  vBoxCentre = o.vBoxCentre;
  nStatus = o.nStatus;
  bValid = o.bValid;
  dEccentricity = o.dEccentricity;
  dArea = o.dArea;
  dGrey = o.dGrey;
  nIndex = o.nIndex;
  aNeighbours.CopyFrom(o.aNeighbours);
  return *this;
}

void ClDot::Initialize(const ClVector& vCentre) {
  vPosition = vCentre;
  vGrid = vTarget = ClVector(-1, -1);
  vBoxCentre = ClVector();
  nStatus = eGood;
  bValid = true;
  dEccentricity = dArea = dGrey = -1;
  nIndex = -1;
  aNeighbours.Clear();
}

void ClDot::AddDot(ClDot* pDot, bool bMutual) {
  bool bThere = false;
  for (unsigned int n = 0; n < aNeighbours.Entries(); ++n) bThere = bThere || aNeighbours[n] == pDot;
  if (!bThere) aNeighbours.Add(pDot);
  if (bMutual) pDot->AddDot(this, false);
}

void ClDot::Remove(const ClDot* pDot) {
  for (unsigned int n = aNeighbours.Entries(); n-- > 0;) {
    if (aNeighbours[n] == pDot) aNeighbours.RemoveAt(n);
  }
}

double ClDot::AngleOf(const ClVector& vFrom, const ClVector& vTo) {
  const ClVector vWay = vTo - vFrom;
  // Directions along the axes are given exactly.
  if (vWay.x == 0) return vWay.y < 0 ? 3 * Portable::cdPi / 2 : Portable::cdPi / 2;
  if (vWay.y == 0) return vWay.x < 0 ? Portable::cdPi : 0;
  const double dAngle = Portable::Atan2(vWay.y, vWay.x);
  return dAngle < 0 ? dAngle + 2 * Portable::cdPi : dAngle;
}

long ClDot::GetNeighbourDirection(long nNeighbour) const {
  const double dAngle = AngleOf(vPosition, aNeighbours[static_cast<unsigned int>(nNeighbour)]->vPosition);
  // A neighbour on a boundary belongs to the lower number; rounding must not leave it to neither side.
  constexpr double cdRounding = 1e-12;
  for (long nDirection = 0; nDirection < 8; ++nDirection) {
    const double dCentre = static_cast<double>(nDirection) * cdEighthTurn;
    if (Between(dAngle, dCentre) <= cdEighthTurn / 2 + cdRounding) return nDirection;
  }
  return 0;
}

ClDot* ClDot::GetNeighbourInDirection(long nDirection, double dMaxAngle) const {
  ClDot* pBest = nullptr;
  double dBest = dMaxAngle;
  for (unsigned int n = 0; n < aNeighbours.Entries(); ++n) {
    const double dApart = Between(AngleOf(vPosition, aNeighbours[n]->vPosition),
                                  static_cast<double>(nDirection) * cdEighthTurn);
    if (dApart < dBest) {
      dBest = dApart;
      pBest = aNeighbours[n];
    }
  }
  return pBest;
}
