// Intersections of lines.
#include "MXTools/Vector.h"

#include <limits>

ClVector ClVector::IntersectionINF(const ClVector& p1, const ClVector& d1, const ClVector& p2,
                                   const ClVector& d2, double& t1, double& t2) {
  const double dDeterminant = d1.x * d2.y - d1.y * d2.x;
  if (!(std::fabs(dDeterminant) > m_cdEpsilon)) {
    t1 = t2 = std::numeric_limits<double>::infinity();
    return {t1, t2};
  }
  t1 = (d2.x * p1.y - p1.x * d2.y - d2.x * p2.y + d2.y * p2.x) / dDeterminant;
  t2 = (d1.x * p1.y - p1.x * d1.y - d1.x * p2.y + d1.y * p2.x) / dDeterminant;
  return p2 + d2 * t2;
}

ClVector ClVector::Intersection(const ClVector& p1, const ClVector& d1, const ClVector& p2,
                                const ClVector& d2, double& t1, double& t2) {
  const ClVector oPoint = IntersectionINF(p1, d1, p2, d2, t1, t2);
  if (std::isinf(t1)) {
    t1 = t2 = 0;
    return {0, 0};
  }
  return oPoint;
}

ClVector ClVector::CrossPoint(ClVector& p1, ClVector& d1, ClVector& p2, ClVector& d2, double& t1,
                              double& t2) {
  return Intersection(p1, d1, p2, d2, t1, t2);
}
