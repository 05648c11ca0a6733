// The built-in scenes of the signature pad: signatures, swipes, a hand that rests.
#pragma once

#include <string>

#include "scene/SceneDescription.h"

namespace Simulator {

/// Lays what the scene of that name has on the platen; false when there is none.
bool StagePen(const std::string& sName, uint64_t nSeed, ClScannerDescription& oScanner);

/// The names, separated by commas.
std::string PenSceneNames();

}  // namespace Simulator
