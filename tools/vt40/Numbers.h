// Numbers as people read them.
#pragma once

#include <string>

/// With one digit after the point.
std::string OneDecimal(double d);
