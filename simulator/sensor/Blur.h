// Blurs a picture of light by a small point spread.
#pragma once

#include <cstdint>

#include "scene/Plane.h"

namespace Simulator {

/// Repeats a mean over three neighbours until its variance along rows and columns is the given one, in
/// pixels. What lies on the edge extends beyond it. An even area stays as it is.
///
/// Cost       two passes over the picture for every 0.4 of the larger variance.
void Blur(TpPlane<uint8_t>& oPicture, double dVarianceX, double dVarianceY);

}  // namespace Simulator
