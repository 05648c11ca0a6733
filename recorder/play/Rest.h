// Whether the rest of the process has anything left to do.
#pragma once

#include <chrono>

namespace Recording {

/// Waits until all other threads of the process sleep, at most so long. An engine that has dealt with a
/// sequence waits for the next one, and so does its application for the picture: whatever machine it is, the
/// next sequence comes after that.
///
/// Threads  reentrant.
void WaitForRest(std::chrono::milliseconds oLongest);

}  // namespace Recording
