// The scenes that need no file.
#pragma once

#include <string>

#include "scene/SceneDescription.h"

namespace Simulator {

/// Stores the built-in scene of that name; false when there is none.
bool FindBuiltInScene(const std::string& sName, ClSceneDescription& oScene);

/// The names, separated by commas.
std::string BuiltInSceneNames();

}  // namespace Simulator
