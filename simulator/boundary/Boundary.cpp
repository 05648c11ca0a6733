// What the exported functions of the simulated libraries share: nothing but numbers leaves a library.
#include "boundary/Boundary.h"

#include <cstdio>

namespace Simulator {
namespace {

// Plain bytes: a thread-local object with a destructor would keep the library from being unloaded.
thread_local char t_szLastError[512];

}  // namespace

void SetLastError(const char* szText) noexcept {
  std::snprintf(t_szLastError, sizeof t_szLastError, "%s", szText);
}
const char* GetLastErrorText() noexcept {
  return t_szLastError;
}

}  // namespace Simulator
