// Time-outs of the library that pass quickly, so that a scanner that is silent costs no quarter of a minute.
#pragma once

namespace Reliability {

/// The clock of time-outs, and the pauses between two calls, run so many times as fast as the true one; 1 at
/// the start. A scale is set while no thread waits.
void SetClockScale(int nScale);

}  // namespace Reliability
