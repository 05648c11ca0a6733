// How ridges that have grown stand out of the skin.
#pragma once

#include "scene/Print.h"
#include "scene/PrintDescription.h"
#include "scene/PrintOutline.h"
#include "scene/RidgeGrowth.h"

namespace Simulator {

/// The skin at 500 dots per inch, before pores and marks. Ridges have no even width: wherever they widen
/// the height is raised, where little pressure is it is lowered, and old skin has worn off in patches.
///
/// Threads    reentrant.
ClPrint RaiseRidges(const ClPrintDescription& oDescription, const ClPrintOutline& oOutline,
                    const ClRidgeGrowth& oGrowth);

}  // namespace Simulator
