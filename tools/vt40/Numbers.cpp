// The format.
#include "Numbers.h"

#include <cstdio>

std::string OneDecimal(double d) {
  char szText[32];
  std::snprintf(szText, sizeof(szText), "%.1f", d);
  return szText;
}
