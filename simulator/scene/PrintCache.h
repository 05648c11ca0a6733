// Keeps the prints that a process has made, so that scenes that share them pay once.
#pragma once

#include "scene/Print.h"
#include "scene/PrintDescription.h"

namespace Simulator {

/// The print of a description, generated or read on first use and shared while anybody holds it.
///
/// Threads    thread-safe.
/// Errors     those of ReadPrintFile.
PrintPointer GetPrint(const ClPrintDescription& oDescription);

}  // namespace Simulator
