// The one question that the optics put to a scene: what lies on the platen at a time?
#pragma once

#include <cstdint>
#include <vector>

#include "scene/Platen.h"
#include "scene/PrintTruth.h"

namespace Simulator {

/// What a scene knows of its fingers at one moment.
struct ClPlatenFacts {
  unsigned nFingers = 0;  ///< that touch the glass
  unsigned nMoving = 0;   ///< of these, that come down, come off, slide or change their pressure
};

/// A point of a print as it lies on the platen, in pixels of the picture; the direction is in radians,
/// counter-clockwise from the right.
struct ClMinutia {
  unsigned nFinger;  ///< of the scene, from 0
  EPrintPoint ePoint;
  bool bDown;  ///< the skin there touches the glass
  double dX, dY;
  double dDirection;
};

/// The ridges at a position of the platen; a period of 0 pixels where there are none.
struct ClRidgeHere {
  float fDirection = 0.0f;
  float fPeriod = 0.0f;
};

constexpr int cnRidgeBlock = 8;

/// Something that can lie on the platen: fingers, and whatever else a scene may know.
///
/// Threads    const operations are thread-safe.
class ClPlatenContent {
 public:
  virtual ~ClPlatenContent() = default;

  /// Two times with the same number show the same picture, so that it needn't be drawn again.
  virtual uint64_t StateAt(double dSeconds) const = 0;

  /// Adds what lies there at that time to the map.
  virtual void Draw(double dSeconds, ClPlatenMap& oMap) const = 0;

  /// Adds the skin that rolled over the glass between two times, as it lies in the unrolled print.
  virtual void DrawUnrolled(double /*dFrom*/, double /*dUntil*/, ClPlatenMap& /*oMap*/) const {}

  /// Adds the points of its prints.
  virtual void AddMinutiae(double /*dSeconds*/, std::vector<ClMinutia>& /*aMinutiae*/) const {}

  /// Puts the ridges of skin that touches the glass into a map of the whole platen, one value for each
  /// square of cnRidgeBlock pixels.
  virtual void AddRidges(double /*dSeconds*/, TpPlane<ClRidgeHere>& /*oRidges*/) const {}

  /// Adds its fingers.
  virtual void Count(double dSeconds, ClPlatenFacts& oFacts) const = 0;
};

}  // namespace Simulator
