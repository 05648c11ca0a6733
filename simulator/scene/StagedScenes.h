// The built-in scenes in which something happens: hands that settle, slide and leave, dirt, imitations.
#pragma once

#include <string>

#include "scene/SceneDescription.h"

namespace Simulator {

/// Sets the stage of that name; false when there is none. The seed varies positions, ways and times.
bool StageScene(const std::string& sName, uint64_t nSeed, ClScannerDescription& oScanner);

/// The names, separated by commas.
std::string StagedSceneNames();

}  // namespace Simulator
