// What the simulated scanner is to show.
#pragma once

#include <string>

/// Chooses the scene for the simulated scan library, before the library is initialised: a built-in scene or a
/// scene file, or a print from a picture file on an otherwise empty platen. Both empty: whatever the
/// environment says. A real scan library ignores all this. A finger that rolls does so once, from side to
/// side.
///
/// Errors  ClToolError eExitUsage for both at once, eExitFile when the picture cannot be read.
void ChooseScene(const std::string& sScene, const std::string& sPrintFile, bool bRolls = false);

/// Lets scenes that don't say otherwise run with the clock, since a finger rolls at its own speed.
void PaceScenes();

/// Takes back the scene that was chosen, by whomever, and returns it; empty when there was none.
std::string WithdrawScene();
