// The grid of found dots: built, sorted, cleaned of what is no dot of the pattern.
#include <algorithm>
#include <cmath>
#include <vector>

#include "MXCalibrate/IpCalibrateGeometricBuildRefPointsBase.h"
#include "MXCalibrate/RefPointsLog.h"
#include "MXTools/Exception.h"

namespace {

using ClBase = ClIpCalibrateGeometricBuildRefPointsBase;
using ClDot = ClBase::ClDot;

constexpr unsigned int cnFewestNeighbours = 2;
/// Beyond any frame: a dot farther off is no match.
constexpr double cdFarthestMatch = 10000.0;

/// Gives each target point to the valid dot nearest to it; a dot that gets several points keeps the last one.
void Match(const ClBase::Points& aTarget, ClBase::Grid& aGrid) {
  for (unsigned int nPoint = 0; nPoint < aTarget.Entries(); ++nPoint) {
    ClDot* pNearest = nullptr;
    double dNearest = cdFarthestMatch;
    for (unsigned int n = 0; n < aGrid.Entries(); ++n) {
      const double dDistance = (aGrid[n].vPosition - aTarget[nPoint]).Length();
      if (!aGrid[n].bValid || !(dDistance < dNearest)) continue;
      dNearest = dDistance;
      pNearest = &aGrid[n];
    }
    if (pNearest != nullptr) pNearest->vTarget = aTarget[nPoint];
  }
}

/// How far a distance is from 0, if it is within the tolerance, or else from one pitch.
double OffLattice(double dDistance, double dTolerance, double dPitch) {
  return dDistance > dTolerance ? std::fabs(dDistance - dPitch) : dDistance;
}

}  // namespace

void ClBase::BuildGrid(Grid& aGrid, ClIpConnectedComponent2::ComponentsArray_t& aComponents) {
  const ClRefPointsLog oLog("BuildGrid");
  aGrid.New(aComponents.Entries());
  for (unsigned int n = 0; n < aComponents.Entries(); ++n) aGrid[n].TakeFrom(aComponents[n]);
  SortXY(aGrid);
  JudgeDots(aGrid);
  LinkNeighbours(aGrid);
}

void ClBase::JudgeDots(Grid& aGrid) const {
  for (unsigned int n = 0; n < aGrid.Entries(); ++n) {
    ClDot& o = aGrid[n];
    if (o.dEccentricity < m_dMinEccentricity) o.nStatus = ClDot::eTooRound;
    if (o.dEccentricity > m_dMaxEccentricity) o.nStatus = ClDot::eTooLong;
    if (o.dArea < m_dMinArea) o.nStatus = ClDot::eTooSmall;
    if (o.dArea > m_dMaxArea) o.nStatus = ClDot::eTooLarge;
    if (o.nStatus != ClDot::eGood) o.bValid = false;
  }
}

void ClBase::LinkNeighbours(Grid& aGrid) const {
  const double dToleranceX = PitchX() * m_dNeighbourTolerance;
  const double dToleranceY = PitchY() * m_dNeighbourTolerance;
  for (unsigned int n = 0; n < aGrid.Entries(); ++n) {
    ClDot& oDot = aGrid[n];
    for (unsigned int nOther = 0; oDot.bValid && nOther < aGrid.Entries(); ++nOther) {
      ClDot& oOther = aGrid[nOther];
      if (nOther == n || !oOther.bValid) continue;
      const double dX = std::fabs(oDot.vPosition.x - oOther.vPosition.x);
      const double dY = std::fabs(oDot.vPosition.y - oOther.vPosition.y);
      const bool bOnLattice = OffLattice(dX, dToleranceX, PitchX()) < dToleranceX &&
                              OffLattice(dY, dToleranceY, PitchY()) < dToleranceY;
      if (!bOnLattice || (dX < dToleranceX && dY < dToleranceY)) continue;
      oDot.AddDot(oOther.nIndex);
      oOther.AddDot(oDot.nIndex);
    }
  }
}

void ClBase::SortX(Grid& aGrid) {
  const ClRefPointsLog oLog("SortX");
  aGrid.SortByX(0, aGrid.Entries());
}

void ClBase::SortY(Grid& aGrid, unsigned int nFirst, unsigned int nEnd) {
  const ClRefPointsLog oLog("SortY");
  aGrid.SortByY(nFirst, nEnd);
}

void ClBase::SortXY(Grid& aGrid) {
  const ClRefPointsLog oLog("SortXY");
  if (aGrid.Entries() == 0) return;
  const double dHalf = PitchX() * 0.5;
  SortX(aGrid);
  unsigned int nFirst = 0;
  while (nFirst < aGrid.Entries()) {
    // The column's position is the mean of its good dots.
    double dColumn = aGrid[nFirst].vPosition.x;
    double dSum = 0;
    unsigned int nCount = 0;
    for (unsigned int n = nFirst; n < aGrid.Entries(); ++n) {
      const ClDot& o = aGrid[n];
      if (!(std::fabs(o.vPosition.x - dColumn) < dHalf)) break;
      if (o.nStatus != ClDot::eGood) continue;
      if (nCount == 0) dColumn = o.vPosition.x;
      dSum += o.vPosition.x;
      ++nCount;
    }
    if (nCount > 0) dColumn = dSum / nCount;
    // A column has at least the dot that it began with.
    unsigned int nEnd = nFirst + 1;
    while (nEnd < aGrid.Entries() && aGrid[nEnd].vPosition.x - dColumn < dHalf) ++nEnd;
    SortY(aGrid, nFirst, nEnd);
    nFirst = nEnd;
  }
}

void ClBase::RemoveGridPoint(Grid& aGrid, unsigned int nPlace) {
  const ClRefPointsLog oLog("RemoveGridPoint");
  for (unsigned int n = 0; n < aGrid.Entries(); ++n) aGrid[n].Remove(aGrid[nPlace].nIndex);
  aGrid[nPlace].bValid = false;
}

void ClBase::RemoveLessNeighbours(Grid& aGrid) {
  const ClRefPointsLog oLog("RemoveLessNeighbours");
  bool bChanged = true;
  while (bChanged) {
    bChanged = false;
    for (unsigned int n = 0; n < aGrid.Entries(); ++n) {
      if (!aGrid[n].bValid || aGrid[n].aNeighbours.Entries() >= cnFewestNeighbours) continue;
      RemoveGridPoint(aGrid, n);
      aGrid[n].nStatus = ClDot::eFewNeighbours;
      bChanged = true;
    }
  }
}

void ClBase::ReduceToFittingNeighbours(Grid& aGrid) {
  const ClRefPointsLog oLog("ReduceToFittingNeighbours");
  const double dX = PitchX();
  const double dY = PitchY();
  const ClVector aExpected[8] = {{dX, 0},  {dX, dY},   {0, dY},  {-dX, dY},
                                 {-dX, 0}, {-dX, -dY}, {0, -dY}, {dX, -dY}};
  for (unsigned int nDot = 0; nDot < aGrid.Entries(); ++nDot) {
    ClDot& oDot = aGrid[nDot];
    const ClDot* apHolders[8] = {};
    double aDistances[8] = {};
    // The loop goes over a copy, since a removal shifts the list.
    TpArrayDynamic<unsigned int, 10u> aBefore;
    aBefore.CopyFrom(oDot.aNeighbours);
    for (unsigned int n = 0; n < aBefore.Entries(); ++n) {
      const ClDot& oNeighbour = aGrid.OfIndex(aBefore[n]);
      const long nDirection = oDot.DirectionOf(oNeighbour);
      const ClVector vWay = oNeighbour.vPosition - oDot.vPosition;
      const double dDistance = (vWay - aExpected[nDirection]).Length();
      const ClDot*& rpHolder = apHolders[nDirection];
      if (rpHolder != nullptr && !(dDistance < aDistances[nDirection])) {
        oDot.Remove(oNeighbour.nIndex);
        continue;
      }
      if (rpHolder != nullptr) oDot.Remove(rpHolder->nIndex);
      rpHolder = &oNeighbour;
      aDistances[nDirection] = dDistance;
    }
  }
}

void ClBase::RemoveWrongAngleNeighbours(Grid& aGrid) {
  const ClRefPointsLog oLog("RemoveWrongAngleNeighbours");
  for (unsigned int nDot = 0; nDot < aGrid.Entries(); ++nDot) {
    ClDot& oDot = aGrid[nDot];
    TpArrayDynamic<unsigned int, 10u> aNeighbours;
    aNeighbours.CopyFrom(oDot.aNeighbours);
    std::vector<double> aAngles;
    std::vector<double> aTurns;
    for (unsigned int n = 0; n < aNeighbours.Entries(); ++n) {
      aAngles.push_back(ClDot::AngleOf(aGrid.OfIndex(aNeighbours[n]).vPosition, oDot.vPosition));
      const double dTurn = std::fmod(aAngles.back(), ClDot::cdEighthTurn);
      aTurns.push_back(dTurn > ClDot::cdEighthTurn / 2 ? dTurn - ClDot::cdEighthTurn : dTurn);
    }
    const double dTurn = GetMedian(aTurns.data(), static_cast<long>(aTurns.size()));
    for (unsigned int n = 0; n < aNeighbours.Entries(); ++n) {
      const double dNearest =
          ClDot::cdEighthTurn * std::trunc((aAngles[n] - dTurn) / ClDot::cdEighthTurn) + dTurn;
      if (std::fabs(dNearest - aAngles[n]) > m_dAngleTolerance) oDot.Remove(aNeighbours[n]);
    }
  }
}

void ClBase::GridRemoveBadPoints(Grid& aGrid) {
  const ClRefPointsLog oLog("GridRemoveBadPoints");
  if (aGrid.Entries() == 0) return;
  Points aTarget;
  BuildTarget(aTarget, m_dSourceDpiX, m_dSourceDpiY, 0, 0);
  MoveArray(aTarget, GetCentreOfGrid(aGrid) - GetCentreOfVectorArray(aTarget));
  Match(aTarget, aGrid);
  for (unsigned int n = 0; n < aGrid.Entries(); ++n) {
    if (aGrid[n].bValid && aGrid[n].vTarget.x < 0) aGrid[n].nStatus = ClDot::eUnmatched;
  }
  // The match is repeated without the strays, which had moved the centre.
  MoveArray(aTarget, GetCentreOfGrid(aGrid) - GetCentreOfVectorArray(aTarget));
  for (unsigned int n = 0; n < aGrid.Entries(); ++n) {
    if (aGrid[n].nStatus == ClDot::eUnmatched) aGrid[n].nStatus = ClDot::eGood;
    aGrid[n].vTarget = ClVector(-1, -1);
  }
  Match(aTarget, aGrid);
  for (unsigned int n = 0; n < aGrid.Entries(); ++n) {
    if (!aGrid[n].bValid || !(aGrid[n].vTarget.x < 0)) continue;
    RemoveGridPoint(aGrid, n);
    aGrid[n].nStatus = ClDot::eUnmatched;
  }
}

ClVector ClBase::GetCentreOfGrid(const Grid& aGrid) const {
  const ClRefPointsLog oLog("GetCentreOfGrid");
  ClVector vSum;
  unsigned int nCount = 0;
  for (unsigned int n = 0; n < aGrid.Entries(); ++n) {
    if (!aGrid[n].bValid || aGrid[n].nStatus != ClDot::eGood) continue;
    vSum = vSum + aGrid[n].vPosition;
    ++nCount;
  }
  return nCount == 0 ? vSum : Divided(vSum, nCount);
}

const ClDot* ClBase::GetBottumLeftDot(const Grid& aGrid) const {
  const ClRefPointsLog oLog("GetBottumLeftDot");
  const ClDot* pNearest = nullptr;
  for (unsigned int n = 0; n < aGrid.Entries(); ++n) {
    const ClDot& o = aGrid[n];
    if (!o.bValid) continue;
    if (pNearest == nullptr || o.vPosition.SquaredLength() < pNearest->vPosition.SquaredLength())
      pNearest = &o;
  }
  return pNearest;
}

double ClBase::GetMedian(double* pValues, long nCount) {
  const ClRefPointsLog oLog("GetMedian");
  if (nCount <= 0) return 0;
  std::sort(pValues, pValues + nCount);
  return pValues[nCount / 2];
}
