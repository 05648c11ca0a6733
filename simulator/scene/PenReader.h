// Reads the pen of a scene file.
#pragma once

#include "scene/SceneDescription.h"
#include "scene/SceneObject.h"

namespace Simulator {

/// Errors     -44 an unknown key, a value out of its range, a stroke without a point.
ClPenDescription ReadPen(ClObject o);

}  // namespace Simulator
