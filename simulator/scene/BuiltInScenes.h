// The scenes that need no file.
#pragma once

#include <string>

#include "scene/SceneDescription.h"

namespace Simulator {

/// Stores the built-in scene of that name; false when there is none. A name may go on with a colon and a seed
/// ("settling-slap:17"): other noise, and in scenes that move, other places, ways and times.
bool FindBuiltInScene(const std::string& sName, ClSceneDescription& oScene);

/// The names, separated by commas.
std::string BuiltInSceneNames();

/// The fingers of a still scene; none for another name.
std::vector<ClFingerDescription> StillFingers(const std::string& sScene);

}  // namespace Simulator
