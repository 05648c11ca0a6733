// Stored grids: whether they can be a scanner's.
#include <algorithm>
#include <cmath>
#include <vector>

#include "MXCalibrate/IpCalibrateGeometricBuildRefPointsBase.h"
#include "MXCalibrate/RefPointsLog.h"
#include "MXTools/Exception.h"

namespace {

using ClBase = ClIpCalibrateGeometricBuildRefPointsBase;
using ClDot = ClBase::ClDot;

constexpr double cdMostOffTarget = 10.0;
/// The share of the mean distance by which a distance may differ.
constexpr double cdMostOffMean = 0.3;

[[noreturn]] void RaiseTarget() {
  ClLogging::LogF(eLogError, "calibration data (target) corrupt");
  KLV_RAISE(ClException, "Target data is corrupt", -39);
}

[[noreturn]] void RaiseSource() {
  ClLogging::LogF(eLogError, "calibration data (source) corrupt");
  KLV_RAISE(ClException, "Source data is corrupt", -39);
}

/// True when each distance differs from the mean of all by at most that share of it. The sign counts, so that
/// a grid that runs the other way is none. False for NaN.
bool AreEven(const std::vector<double>& aDistances) {
  double dSum = 0;
  for (const double d : aDistances) dSum += std::fabs(d);
  const double dMean = dSum / static_cast<double>(aDistances.size());
  return std::all_of(aDistances.begin(), aDistances.end(), [dMean](double d) {
    return d >= dMean - cdMostOffMean * dMean && d <= dMean + cdMostOffMean * dMean;
  });
}

}  // namespace

void ClBase::ArrayToGrid(Points& aActual, Points& aTarget, Grid& aGrid) {
  const ClRefPointsLog oLog("ArrayToGrid");
  TpArrayStatic<int> aLengths;
  GetGridColumnLengths(aLengths);
  unsigned int nPoints = 0;
  for (unsigned int n = 0; n < aLengths.Entries(); ++n) nPoints += static_cast<unsigned int>(aLengths[n]);
  if (aActual.Entries() != aTarget.Entries() || aActual.Entries() != nPoints) {
    KLV_RAISE(ClException, "Target and Source arrays must have same size!", -39);
  }
  aGrid.New(nPoints);
  unsigned int nPoint = 0;
  for (unsigned int nColumn = 0; nColumn < aLengths.Entries(); ++nColumn) {
    for (int nRow = 0; nRow < aLengths[nColumn]; ++nRow, ++nPoint) {
      ClDot& oDot = aGrid[nPoint];
      oDot.vPosition = aActual[nPoint];
      oDot.vTarget = aTarget[nPoint];
      oDot.vGrid = ClVector(nColumn, nRow);
    }
  }
}

const ClDot* ClBase::RetrieveDot(const Grid& aGrid, int nColumn, int nRow) const {
  const ClRefPointsLog oLog("RetrieveDot");
  for (unsigned int n = 0; n < aGrid.Entries(); ++n) {
    if (aGrid[n].vGrid.x == nColumn && aGrid[n].vGrid.y == nRow) return &aGrid[n];
  }
  return nullptr;
}

void ClBase::ValidateTargetPoints(ClCalibrateGeometricData& oData) {
  const ClRefPointsLog oLog("ValidateTargetPoints");
  Points aIdeal;
  BuildTargetPoints(aIdeal, oData.m_nTargetPelsX / cdInchesPerMetre, oData.m_nTargetPelsY / cdInchesPerMetre,
                    0, 0);
  if (oData.m_aTarget.Entries() < aIdeal.Entries()) RaiseTarget();
  for (unsigned int n = 0; n < aIdeal.Entries(); ++n) {
    const ClVector vOff = (aIdeal[n] - oData.m_aTarget[n]) - (aIdeal[0] - oData.m_aTarget[0]);
    // NaN must fail as well.
    if (!(std::fabs(vOff.x) <= cdMostOffTarget) || !(std::fabs(vOff.y) <= cdMostOffTarget)) RaiseTarget();
  }
}

void ClBase::ValidateCalibrationData(ClCalibrateGeometricData& oData) {
  const ClRefPointsLog oLog("ValidateCalibrationData");
  ValidateTargetPoints(oData);
  Grid aGrid;
  ArrayToGrid(oData.m_aActual[0], oData.m_aTarget, aGrid);
  std::vector<double> aDown;
  std::vector<double> aRight;
  for (unsigned int n = 0; n < aGrid.Entries(); ++n) {
    const int nColumn = static_cast<int>(aGrid[n].vGrid.x);
    const int nRow = static_cast<int>(aGrid[n].vGrid.y);
    const ClDot* pBelow = RetrieveDot(aGrid, nColumn, nRow + 1);
    if (pBelow != nullptr) aDown.push_back(pBelow->vPosition.y - aGrid[n].vPosition.y);
    const ClDot* pRight = RetrieveDot(aGrid, nColumn + 1, nRow);
    if (pRight != nullptr) aRight.push_back(pRight->vPosition.x - aGrid[n].vPosition.x);
  }
  if (!AreEven(aDown) || !AreEven(aRight)) RaiseSource();
}
