// Reads a print from a PNG file.
#pragma once

#include <string>

#include "scene/Print.h"

namespace Simulator {

/// Reads dark ridges on a light ground. Colour becomes grey, transparency white.
///
/// Domain     at most 4096 by 4096 pixels; taken as 500 dots per inch unless the file has a resolution.
/// Errors     -200 the file can't be opened; -203 it is no PNG, is damaged or is too large. The text names
/// the file.
ClPrint ReadPrintFile(const std::string& sPath);

}  // namespace Simulator
