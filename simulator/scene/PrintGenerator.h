// Makes fingerprints that never belonged to anybody.
#pragma once

#include "scene/Print.h"
#include "scene/PrintDescription.h"

namespace Simulator {

/// Makes the skin of a description: ridges that have grown (ClRidgeGrowth), as wide as they are from place to
/// place, with pores and marks, or an imitation of them. The same description gives the same print.
///
/// Cost       some 15 milliseconds for a finger of 16 by 23 mm.
/// Threads    reentrant.
ClPrint GeneratePrint(const ClPrintDescription& oDescription);

}  // namespace Simulator
