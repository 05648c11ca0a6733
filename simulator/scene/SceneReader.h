// Reads scenes from JSON.
#pragma once

#include <string>

#include "scene/SceneDescription.h"

namespace Simulator {

/// A scene from JSON text; docs/simulator.md describes the form. The schema is strict: an unknown key is an
/// error that names the key and where it stands; a value out of range is an error that names the value and
/// the range.
///
/// sFolder    where relative print files are looked for.
/// Errors     -44 with the reason in words.
ClSceneDescription ReadScene(const std::string& sText, const std::string& sFolder);

/// What lies on one platen, from JSON text with those keys of a scanner that say so: "fingers", "pen",
/// "dirt", "target", "ambient" and "noise". What is left out is as in a scene that leaves it out.
///
/// Errors     those of ReadScene.
ClScannerDescription ReadPlaten(const std::string& sText);

/// A scene by the name of a built-in one, by the path of a file, or from JSON text that begins with '{'.
///
/// Errors     -200 no such name or file; -203 it can't be read; those of ReadScene.
ClSceneDescription FindScene(const std::string& sScene);

}  // namespace Simulator
