// The direction in which ridges run, place by place.
#pragma once

#include "scene/PrintDescription.h"

namespace Simulator {

/// The zero-pole model of ridge flow: each core turns the direction by half the angle under which it is seen,
/// each delta turns it back.
///
/// B. G. Sherlock and D. M. Monro, "A model for interpreting fingerprint topology", Pattern Recognition 26
/// (1993).
///
/// Units      millimetres from the middle of the print, x to the right, y up; angles in radians.
/// Threads    const operations are thread-safe.
class ClRidgeFlow {
 public:
  explicit ClRidgeFlow(const ClPrintDescription& oDescription);

  /// Direction of the ridge through a position, 0 to the right, counter-clockwise, modulo pi.
  double Direction(double dX, double dY) const;

 private:
  struct ClPoint {
    double dX, dY;
  };

  EPattern m_ePattern;
  double m_dHalfWidth;
  double m_dHalfHeight;
  double m_dSteepness;
  ClPoint m_aCore[2];
  ClPoint m_aDelta[2];
  int m_nSingularities = 0;
};

}  // namespace Simulator
