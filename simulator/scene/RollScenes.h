// The built-in scenes of fingers that roll: well, and badly in each of five ways.
#pragma once

#include <string>

#include "scene/SceneDescription.h"

namespace Simulator {

/// Sets the rolled finger of that name; false when there is none. The seed varies finger, place, ways and
/// speeds.
bool StageRoll(const std::string& sName, uint64_t nSeed, ClScannerDescription& oScanner);

/// The names, separated by commas.
std::string RollSceneNames();

}  // namespace Simulator
