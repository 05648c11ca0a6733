// The ideal grid of the ten-finger target, and what a found grid must look like.
#include "MXCalibrate/IpCalibrateGeometricBuildRefPointsVT40Donut.h"

#include <algorithm>
#include <cmath>

#include "MXCalibrate/RefPointsLog.h"
#include "MXImageProcessing/MakeProcessor.h"
#include "MXMath/RegressionLine.h"
#include "MXTools/Exception.h"
#include "portable/Math.h"

namespace {

using ClDonut = ClIpCalibrateGeometricBuildRefPointsVT40Donut;

constexpr double cdDegreesPerRadian = 57.29577951308232;
constexpr int cnRows = 8;

/// The largest deviations of several lines through dots.
struct StStraightness {
  double dAngle = 0;
  double dDistance = 0;

  /// Points nFirst, nFirst + nStep and so on.
  void Judge(const ClDonut::Points& aPoints, unsigned int nFirst, unsigned int nStep, unsigned int nCount) {
    ClRegressionLine oLine;
    for (unsigned int n = 0; n < nCount; ++n) oLine.AddToLine(aPoints[nFirst + n * nStep]);
    // The flatter of the two fits counts: the slope is the tilt against the line's own axis.
    double dA;
    double dB;
    oLine.GetLineCoeffizienten(dA, dB);
    dAngle = std::max(dAngle, std::fabs(Portable::Atan(dA) * cdDegreesPerRadian));
    for (unsigned int n = 0; n < nCount; ++n)
      dDistance = std::max(dDistance, oLine.DistFromLine(aPoints[nFirst + n * nStep]));
  }
};

}  // namespace

const int32_t ClDonut::m_nYDots[cnColumns] = {8, 8, 8, 8, 8, 8, 8, 8};

ClDonut::ClIpCalibrateGeometricBuildRefPointsVT40Donut() {
  m_dThresholdOffset = 10.0;
  m_bCentreByBorder = false;
  m_dDotRadius = 0.8;
  m_dGridPitch = 10.0;
  m_dNeighbourTolerance = 0.66;
  m_dAngleTolerance = 0.08726646259971647;
  m_dMaxEccentricity = 0.2;
  m_dMinArea = 6000.0;
  m_dMaxArea = 20000.0;
  m_dSourceDpiX = 1052.0;
  m_dSourceDpiY = 768.0;
  m_dTargetDpiX = m_dTargetDpiY = 500.0;
  m_nTargetWidth = m_nTargetHeight = 1600;
}

ClProcessorBase* ClDonut::Create() const {
  return MakeProcessor<ClDonut>();
}

void ClDonut::GetGridColumnLengths(TpArrayStatic<int>& aLengths) {
  aLengths.New(cnColumns);
  std::copy(m_nYDots, m_nYDots + cnColumns, aLengths.Data());
}

void ClDonut::BuildTargetPoints(Points& aOut, double dDpiX, double dDpiY, double dOffsetX, double dOffsetY) {
  aOut.Clear();
  for (int nColumn = 0; nColumn < cnColumns; ++nColumn) {
    for (int nRow = 0; nRow < m_nYDots[nColumn]; ++nRow) {
      aOut.Add(ClVector((dOffsetX + nColumn * m_dGridPitch) * dDpiX / cdMillimetresPerInch,
                        (nRow * m_dGridPitch + dOffsetY) * dDpiY / cdMillimetresPerInch));
    }
  }
}

void ClDonut::MoveTarget(Points& aTarget, Points& /*aOther*/) {
  MoveArray(aTarget, ClVector(m_dTargetDpiX / cdMillimetresPerInch * m_dGridPitch,
                              m_dTargetDpiY / cdMillimetresPerInch * m_dGridPitch));
}

void ClDonut::GridToArray(Grid& aGrid, Points& aActual) {
  const ClRefPointsLog oLog("GridToArray");
  const unsigned int nFound = PickDots(aGrid, aActual);
  LogGrid(aGrid);
  if (nFound != cnColumns * cnRows) KLV_RAISE(ClException, "Not the expected dot count found.", -600);
  aActual.SetEntries(nFound);
  m_aDotIndex.SetEntries(nFound);
  CheckLines(aActual);
}

unsigned int ClDonut::PickDots(Grid& aGrid, Points& aActual) {
  Points aIdeal;
  BuildTargetPoints(aIdeal, m_dSourceDpiX, m_dSourceDpiY, 0.5 * m_dGridPitch, 0.5 * m_dGridPitch);
  const ClVector vShift = GetCentreOfGrid(aGrid) - GetCentreOfVectorArray(aIdeal);
  const double dToleranceX = PitchX() * m_dNeighbourTolerance;
  const double dToleranceY = PitchY() * m_dNeighbourTolerance;
  SortXY(aGrid);
  aActual.SetEntries(aGrid.Entries());
  m_aDotIndex.SetEntries(aGrid.Entries());
  m_nDotCount = static_cast<int32_t>(aGrid.Entries());
  unsigned int nFound = 0;
  // When all points of the pattern are found, no point is left to compare a dot with.
  for (unsigned int n = 0; n < aGrid.Entries() && nFound < aIdeal.Entries(); ++n) {
    ClDot& oDot = aGrid[n];
    if (!oDot.bValid) continue;
    const ClVector vOff = vShift + aIdeal[nFound] - oDot.vPosition;
    if (!(std::fabs(vOff.x) < dToleranceX) || !(std::fabs(vOff.y) < dToleranceY)) {
      oDot.nStatus = ClDot::eOffPattern;
      continue;
    }
    aActual[nFound] = oDot.vPosition;
    m_aDotIndex[nFound] = oDot.nIndex;
    ++nFound;
  }
  return nFound;
}

void ClDonut::CheckLines(const Points& aActual) const {
  StStraightness oColumns;
  unsigned int nFirst = 0;
  for (const int32_t nDots : m_nYDots) {
    oColumns.Judge(aActual, nFirst, 1, static_cast<unsigned int>(nDots));
    nFirst += static_cast<unsigned int>(nDots);
  }
  StStraightness oRows;
  for (unsigned int nRow = 0; nRow < cnRows; ++nRow) oRows.Judge(aActual, nRow, cnRows, cnColumns);
  if (oRows.dAngle > m_dMaxAngleX) {
    KLV_RAISE(ClException, "The Angle(x) of the Dot Grid is too big.", -600);
  }
  if (oRows.dDistance > m_dMaxDistanceX) {
    KLV_RAISE(ClException, "There are Dots are too far a way from a Grid(x) line.", -600);
  }
  if (oColumns.dAngle > m_dMaxAngleY) {
    KLV_RAISE(ClException, "The Angle(y) of the Dot Grid is too big.", -600);
  }
  if (oColumns.dDistance > m_dMaxDistanceY) {
    KLV_RAISE(ClException, "There are Dots are too far a way from a Grid(y) line.", -600);
  }
}
