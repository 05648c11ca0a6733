// Makes fingerprints that never belonged to anybody.
#pragma once

#include "scene/Print.h"
#include "scene/PrintDescription.h"

namespace Simulator {

/// Grows a ridge pattern: noise is filtered again and again with Gabor kernels that follow the ridge flow
/// until there are ridges, with the endings and bifurcations that the flow forces. The same description gives
/// the same print.
///
/// R. Cappelli, D. Maio, D. Maltoni, "Synthetic fingerprint-database generation", ICPR 2002, describe the
/// method.
///
/// Cost       some 50 milliseconds for a finger of 16 by 23 mm.
/// Threads    reentrant.
ClPrint GeneratePrint(const ClPrintDescription& oDescription);

}  // namespace Simulator
