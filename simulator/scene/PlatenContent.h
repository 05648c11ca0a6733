// The one question that the optics put to a scene: what lies on the platen at a time?
#pragma once

#include <cstdint>

#include "scene/Platen.h"

namespace Simulator {

/// What a scene knows of its fingers at one moment.
struct ClPlatenFacts {
  unsigned nFingers = 0;  ///< that touch the glass
  unsigned nMoving = 0;   ///< of these, that come down, come off, slide or change their pressure
};

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

  /// Adds its fingers.
  virtual void Count(double dSeconds, ClPlatenFacts& oFacts) const = 0;
};

}  // namespace Simulator
