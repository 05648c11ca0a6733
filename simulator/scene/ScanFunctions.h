// The names of the scan library's functions, as faults name them.
#pragma once

#include <string>

namespace Simulator {

/// Whether the scan library has a function of that name.
bool IsScanFunction(const std::string& sName);

}  // namespace Simulator
