// How a finger behaves over time: it touches, settles, slides, presses, rolls, lifts and comes back.
#pragma once

#include <cstdint>

#include "scene/SceneDescription.h"

namespace Simulator {

/// Where a finger lies and how firmly, at one moment.
struct ClFingerPose {
  int nDown = 0;  ///< how far it is down, from 0 to ClFingerMotion::nSteps
  double dXMm = 0.0;
  double dYMm = 0.0;
  double dAngle = 0.0;
  double dPressure = 0.0;
  double dStripMm = 0.0;  ///< of a finger that rolls
  bool bMoving = false;

  bool SameAs(const ClFingerPose& o) const noexcept {
    return nDown == o.nDown && dXMm == o.dXMm && dYMm == o.dYMm && dAngle == o.dAngle &&
           dPressure == o.dPressure && dStripMm == o.dStripMm;
  }
};

/// Poses follow from the time alone and change in fine steps, so that moments that look alike have equal
/// poses.
///
/// Threads    reentrant.
class ClFingerMotion {
 public:
  static constexpr int nSteps = 16;

  static ClFingerPose At(const ClFingerDescription& oFinger, double dSeconds);

  /// The pressure with which the pose lies, negative while little of the finger is down.
  static double PressureOf(const ClFingerPose& oPose);
};

}  // namespace Simulator
