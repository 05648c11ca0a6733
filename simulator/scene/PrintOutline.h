// The outline of the skin that a finger presses on the glass.
#pragma once

#include "scene/Plane.h"
#include "scene/PrintDescription.h"

namespace Simulator {

/// A rounded tip, full sides, and a lower end that the crease of the joint cuts off more or less straight;
/// its two sides differ, and bulges make each finger's outline its own.
///
/// Units      millimetres from the middle of the print, x to the right, y up.
/// Threads    const operations are thread-safe.
class ClPrintOutline {
 public:
  explicit ClPrintOutline(const ClPrintDescription& oDescription);

  /// Distance from the middle, 1 on the outline of a finger under ordinary pressure.
  double Distance(double dX, double dY) const;

  /// How firmly the skin is pressed on, as ClPrint::oDepth has it, for a picture of this size in pixels.
  TpPlane<uint8_t> Depth(int nWidth, int nHeight) const;

 private:
  static constexpr int cnBulges = 4;

  uint64_t m_nSeed;
  double m_dHalfHeight;
  double m_dHalfLeft, m_dHalfRight;
  double m_dTipPower, m_dLowPower;
  double m_dLean;
  double m_adBulge[cnBulges], m_adPhase[cnBulges];
};

}  // namespace Simulator
