// What runs long: threads that do everything at once, and scanners and libraries that come and go.
#pragma once

#include "Result.h"

namespace Reliability {

/// Four threads switch modes, capture, read and set properties, close and open two scanners at random until
/// the modes were switched so often, or so many seconds have passed. No fault is injected: each switch,
/// closing and opening must succeed, images may miss their mode or their time, and threads and open files are
/// as before.
StResult Storm(uint64_t nSwitches, uint64_t nSeed, double dMostSeconds);

/// Opens a scanner, takes three previews and closes it, so often. Between a tenth of the rounds and the end
/// memory grows by at most 256 kB.
StResult OpenAndClose(uint64_t nRounds);

/// Initialises the library and ends it, so often.
StResult InitializeAndEnd(uint64_t nRounds);

}  // namespace Reliability
