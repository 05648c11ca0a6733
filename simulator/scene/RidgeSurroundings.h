// Tells endings of ridges from those of valleys by how ridges hang together.
#pragma once

#include <cstdint>

#include "scene/Plane.h"

namespace Simulator {

/// Looks at the skin within some 11 pixels of a position where a ridge or a valley ends: parallel ridges
/// and valleys reach the rim of these surroundings twice, what ends reaches it once.
///
/// Returns    1 when a ridge ends, -1 when a valley does, 0 when neither or both seem to.
/// Threads    reentrant.
int WhatEnds(const TpPlane<uint8_t>& oSkin, int nX, int nY);

}  // namespace Simulator
