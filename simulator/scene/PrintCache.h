// Keeps the prints that a process has made, so that scenes that share them pay once.
#pragma once

#include "scene/Print.h"
#include "scene/PrintSpecification.h"

namespace Simulator {

/// The print of a specification, generated or read on first use and shared while anybody holds it.
///
/// Threads    thread-safe.
/// Errors     those of ReadPrintFile.
PrintPointer GetPrint(const ClPrintSpecification& oSpecification);

}  // namespace Simulator
