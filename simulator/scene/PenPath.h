// The way of a pen over the platen: strokes, pauses and lifts, as a function of time.
#pragma once

#include <vector>

#include "scene/SceneDescription.h"

namespace Simulator {

/// Where the tip is at one moment. Off the glass it is where it was lifted last, or where it will touch
/// first.
struct ClPenTip {
  bool bDown = false;
  int nStroke = -1;  ///< which stroke it draws, from 0; -1 off the glass
  double dXMm = 0.0;
  double dYMm = 0.0;
};

struct ClPenStroke {
  double dBegin;  ///< seconds; the tip is down in [dBegin, dEnd)
  double dEnd;
};

/// Positions change in steps that nobody sees, so that a tip at rest has exactly the same position.
///
/// Domain     at least one stroke, each with at least one point, strokes in the order of time. A stroke that
///            would begin while the one before is drawn begins at its end.
/// Threads    const operations are thread-safe.
class ClPenPath {
 public:
  explicit ClPenPath(const std::vector<ClStrokeDescription>& aStrokes);

  ClPenTip At(double dSeconds) const;
  const std::vector<ClPenStroke>& Strokes() const noexcept { return m_aStrokes; }

 private:
  /// A moment of the way; between two the tip moves evenly.
  struct ClKnot {
    double dSeconds, dXMm, dYMm;
  };

  void Draw(const ClStrokeDescription& oStroke);
  void MoveTo(double dXMm, double dYMm, double dSpeed);
  void Rest(double dSeconds);

  std::vector<ClPenStroke> m_aStrokes;
  std::vector<ClKnot> m_aKnots;
};

}  // namespace Simulator
