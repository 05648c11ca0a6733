// Keeps the prints that a process has made, so that scenes that share them pay once.
#pragma once

#include "scene/Print.h"
#include "scene/PrintDescription.h"

namespace Simulator {

/// The print of a description, generated or read on first use and shared while anybody holds it. The ten
/// generated ones that were asked for last stay beyond that, so that fingers that are lifted and laid down
/// again cost nothing.
///
/// Threads    thread-safe.
/// Errors     those of ReadPrintFile.
PrintPointer GetPrint(const ClPrintDescription& oDescription);

}  // namespace Simulator
