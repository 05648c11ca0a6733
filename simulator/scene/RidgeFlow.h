// Where ridges run and how far apart: the direction and the period of ridges, position by position.
#pragma once

#include <vector>

#include "scene/PrintDescription.h"
#include "scene/SmoothNoise.h"

namespace Simulator {

/// The zero-pole model of ridge flow: each core turns the direction by half the angle under which it is seen,
/// each delta turns it back. The angle is corrected by a curve of its own for each of them, so that loops are
/// narrow or wide, and deltas lean.
///
/// B. G. Sherlock and D. M. Monro, "A model for interpreting fingerprint topology", Pattern Recognition 26
/// (1993); P. R. Vizcaya and L. A. Gerhardt, "A nonlinear orientation model for global description of
/// fingerprints", Pattern Recognition 29 (1996), for the corrections.
///
/// Units      millimetres from the middle of the print, x to the right, y up; angles in radians.
/// Threads    const operations are thread-safe.
class ClRidgeFlow {
 public:
  /// A core or a delta.
  struct ClSingularity {
    double dX, dY;
    bool bCore;
    double adBend[8];  ///< corrections of the angle, an eighth of a turn apart
  };

  explicit ClRidgeFlow(const ClPrintDescription& oDescription);

  /// Direction of the ridge through a position, 0 to the right, counter-clockwise, modulo pi.
  double Direction(double dX, double dY) const;

  /// Ridge period at a position, relative to its mean over the finger.
  double Period(double dX, double dY) const;

  const std::vector<ClSingularity>& Singularities() const noexcept { return m_aSingularities; }

 private:
  void PlaceArch(ClRandom& oRandom);
  void PlaceLoop(ClRandom& oRandom, double dSide);
  void PlaceWhorl(ClRandom& oRandom, bool bDouble);
  void Add(ClRandom& oRandom, bool bCore, double dX, double dY);
  double ArchDirection(double dX, double dY) const;

  EPattern m_ePattern;
  double m_dHalfWidth;
  double m_dHalfHeight;
  double m_dScale;  ///< against a finger of ordinary size
  std::vector<ClSingularity> m_aSingularities;
  double m_dBowLeft = 0.2, m_dBowRight = 0.2;  ///< how far ridges bend down on the two sides of the tip
  double m_dCoreX = 0.0, m_dCoreY = 0.0;
  double m_dTwist = 0.0, m_dTwistReach = 1.0;  ///< of a spiral
  struct ClArch {
    double dSteep, dPeak, dNarrow, dMiddle, dLean, dWave;
  } m_oArch{};
  ClSmoothNoise m_oBroad, m_oFine, m_oSpacing, m_oFineSpacing;
  double m_dWiden, m_dTilt;  ///< of the period: towards the crease, and from left to right
};

}  // namespace Simulator
