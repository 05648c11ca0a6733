// Whether the scanner is a simulated one, and what it is to show.
#pragma once

struct StCommonOptions;

/// Asks for the simulated scanner when an option does, before the library is initialised: for what the
/// environment says, for a built-in scene or a scene file, or for a print from a picture file on an otherwise
/// empty platen. Without such an option nothing is changed. A finger that rolls does so once, from side to
/// side.
///
/// Errors  ClToolError eExitUsage for a scene and a print at once, eExitFile when the picture cannot be read.
void ChooseScene(const StCommonOptions& oCommon, bool bRolls = false);

/// Lets scenes that don't say otherwise run with the clock, since a finger rolls at its own speed.
void PaceScenes();
