// The skin of one finger, or of several in one picture, flattened out at 500 dots per inch.
#pragma once

#include <cstdint>
#include <memory>

#include "scene/Plane.h"

namespace Simulator {

/// oRidge     height of the skin: 255 on the crest of a ridge, 128 on its flank, 0 in the valley.
/// oDepth     how firmly the skin is pressed on: 255 in the middle, falling to 0 where skin never touches.
/// dSlope     steepness of the flanks: how much of the height range one step of contact takes up.
struct ClPrint {
  TpPlane<uint8_t> oRidge;
  TpPlane<uint8_t> oDepth;
  double dSlope = 1.0;
};

using PrintPointer = std::shared_ptr<const ClPrint>;

}  // namespace Simulator
