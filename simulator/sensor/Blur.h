// Blurs a picture of light by a small point spread.
#pragma once

#include <cstdint>
#include <vector>

#include "scene/Plane.h"

namespace Simulator {

/// Repeats a mean over three neighbours until its variance along rows and columns is the given one, in
/// pixels. What lies on the edge extends beyond it. An even area stays as it is.
///
/// Ownership  keeps the memory of a row or two, so that the next picture of the size allocates nothing.
/// Threads    thread-bound.
/// Cost       two passes over the picture for every 0.4 of the larger variance.
class ClBlur {
 public:
  void Process(TpPlane<uint8_t>& oPicture, double dVarianceX, double dVarianceY);

 private:
  std::vector<uint8_t> m_aRow, m_aOther;
};

}  // namespace Simulator
