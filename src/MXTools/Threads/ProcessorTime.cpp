// Processor time by the C library.
#include "MXTools/ProcessorTime.h"

#include <ctime>

namespace Klv {

static_assert(CLOCKS_PER_SEC == 1000000, "clock() counts microseconds on every POSIX system");

unsigned long ProcessorTime() noexcept {
  return static_cast<unsigned long>(std::clock());
}

}  // namespace Klv
