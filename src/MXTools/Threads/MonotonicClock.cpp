// Time-outs by the monotonic clock.
#include "MXTools/MonotonicClock.h"

#include <chrono>

namespace Klv {

boost::posix_time::time_duration MonotonicNow() {
  const auto oSinceStart = std::chrono::steady_clock::now().time_since_epoch();
  return boost::posix_time::microseconds(
      std::chrono::duration_cast<std::chrono::microseconds>(oSinceStart).count());
}

bool WaitOnce(boost::condition_variable_any& oCondition, TpLock<ClMutex>& oLock,
              const boost::posix_time::time_duration& oDuration) {
  // The wait takes a duration: an absolute time would be one of the wall clock.
  return oCondition.timed_wait(oLock, oDuration);
}

}  // namespace Klv
