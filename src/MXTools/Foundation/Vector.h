// A point or direction of the plane.
#pragma once

#include <cmath>

/// Two co-ordinates as 64-bit floats; the unit is the user's.
///
/// Threads  reentrant.
class ClVector {
 public:
  /// Tolerance of every comparison of co-ordinates.
  static constexpr double m_cdEpsilon = 1e-7;

  ClVector() = default;
  ClVector(double dX, double dY) : x(dX), y(dY) {}
  ClVector(const ClVector&) = default;
  ClVector& operator=(const ClVector&) = default;
  virtual ~ClVector() = default;

  ClVector operator+(const ClVector& o) const { return {x + o.x, y + o.y}; }
  ClVector operator-(const ClVector& o) const { return {x - o.x, y - o.y}; }
  ClVector operator*(double d) const { return {x * d, y * d}; }
  double Scalar(const ClVector& o) const { return x * o.x + y * o.y; }
  double SquaredLength() const { return x * x + y * y; }
  double Length() const { return std::sqrt(SquaredLength()); }
  /// True when both co-ordinates agree to better than m_cdEpsilon; false for NaN.
  bool IsNear(const ClVector& o) const {
    return std::fabs(x - o.x) < m_cdEpsilon && std::fabs(y - o.y) < m_cdEpsilon;
  }

  /// Where the lines p1 + t1 * d1 and p2 + t2 * d2 meet. Parallel lines give infinity for t1, t2 and both
  /// co-ordinates.
  static ClVector IntersectionINF(const ClVector& p1, const ClVector& d1, const ClVector& p2,
                                  const ClVector& d2, double& t1, double& t2);
  /// The same, but parallel lines give t1 = t2 = 0 and the point (0, 0).
  static ClVector Intersection(const ClVector& p1, const ClVector& d1, const ClVector& p2, const ClVector& d2,
                               double& t1, double& t2);
  static ClVector CrossPoint(ClVector& p1, ClVector& d1, ClVector& p2, ClVector& d2, double& t1, double& t2);

  double x = 0;
  double y = 0;
};
