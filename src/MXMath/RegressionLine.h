// A straight line through points that arrive one at a time.
#pragma once

#include <cstdint>

#include "MXTools/Vector.h"

/// Least squares over running sums: of the fits of y on x and of x on y it takes the one with the smaller
/// slope, so that steep lines are well conditioned.
///
/// Units    those of the points; angles in radians.
/// Threads  thread-bound.
/// Cost     a fixed number of operations a call, whatever the number of points.
class ClRegressionLine {
 public:
  ClRegressionLine() = default;
  ClRegressionLine(const ClRegressionLine&) = default;
  ClRegressionLine& operator=(const ClRegressionLine&) = default;
  virtual ~ClRegressionLine() = default;

  void Clear();
  void AddToLine(const ClVector& oPoint);
  /// Adds the other line's points. The line itself may be given.
  void JoinLine(const ClRegressionLine& oOther);

  /// True for y = a * x + b, false for x = a * y + b. Without two different points a and b are 0 and the
  /// result is false.
  bool GetLineCoeffizienten(double& a, double& b) const;
  /// The part of the line inside the points' bounding box, along the axis of the fit. With fewer than two
  /// points it joins two corners of the box.
  void GetLine(ClVector& oStart, ClVector& oEnd) const;
  /// With fewer than two points it is the distance to the first.
  double DistFromLine(const ClVector& oPoint) const;

  /// Whether the segment spans more in x than in y, or more in y than in x; neither with fewer than two
  /// points.
  bool Horizontal() const;
  bool Vertical() const;
  double Len() const;
  /// Where the lines cross, and at which multiples of the two segments. Parallel lines give (0, 0), 0 and 0.
  ClVector Intersection(const ClRegressionLine& oOther, double& dS, double& dT) const;
  ClVector CrossPoint(const ClRegressionLine& oOther, double& dS, double& dT) const;
  /// The angle between the segments, of [0, pi]; a right angle where one has no length.
  double CrossPhi(const ClRegressionLine& oOther) const;

 private:
  ClVector Direction() const;

  uint32_t m_nCount = 0;
  double m_dMinX = 0;
  double m_dMinY = 0;
  double m_dMaxX = 0;
  double m_dMaxY = 0;
  double m_dSumXY = 0;
  double m_dSumX = 0;
  double m_dSumY = 0;
  double m_dSumXX = 0;
  double m_dSumYY = 0;
};
