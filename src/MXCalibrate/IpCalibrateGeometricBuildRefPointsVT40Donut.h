// The dot target of the ten-finger scanner.
#pragma once

#include <cstdint>

#include "MXCalibrate/IpCalibrateGeometricBuildRefPointsBase.h"

/// Eight columns of eight round dots, 10 mm apart, seen by a sensor of 1052 by 768 dots per inch and
/// corrected to 500 dots per inch in a 1600 by 1600 image. Point i lies in column i / 8, row i % 8.
///
/// Threads  thread-bound.
/// Errors   ClException -600 for a grid of another number of dots, and for one that is tilted or bent.
class ClIpCalibrateGeometricBuildRefPointsVT40Donut : public ClIpCalibrateGeometricBuildRefPointsBase {
 public:
  ClIpCalibrateGeometricBuildRefPointsVT40Donut();

  ClProcessorBase* Create() const override;
  const char* Name() const override { return "ClIpCalibrateGeometricBuildRefPointsVT40Donut"; }
  void BuildTargetPoints(Points& aOut, double dDpiX, double dDpiY, double dOffsetX, double dOffsetY) override;
  /// Takes the dots that lie where the pattern expects them and judges how straight their rows and columns
  /// are.
  void GridToArray(Grid& aGrid, Points& aActual) override;
  void GetGridColumnLengths(TpArrayStatic<int>& aLengths) override;
  /// One pitch along both axes.
  void MoveTarget(Points& aTarget, Points& aOther) override;

  /// Dots in each column.
  static constexpr int cnColumns = 8;
  static const int32_t m_nYDots[cnColumns];

  /// The most that the line of a column, or row, may be turned, in degrees.
  double m_dMaxAngleY = 15.0;
  /// The most that a dot may lie off the line of its column, or row, in pixels.
  double m_dMaxDistanceY = 50.0;
  double m_dMaxAngleX = 15.0;
  double m_dMaxDistanceX = 50.0;
  /// Dots of the grid that was judged last.
  int32_t m_nDotCount = 0;
  /// For each point of the last result the component that it came from.
  TpArrayDynamic<unsigned int, 10u> m_aDotIndex;

 private:
  unsigned int PickDots(Grid& aGrid, Points& aActual);
  void CheckLines(const Points& aActual) const;
};
