// Takes the library's clock, its one wait with a time-out, and the C library's pause, whose names the linker
// finds here first.
#include "QuickClock.h"

#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <chrono>

#include "MXTools/MonotonicClock.h"

namespace {

std::atomic<int> s_nScale{1};

}  // namespace

void Reliability::SetClockScale(int nScale) {
  s_nScale = nScale;
}

namespace Klv {

boost::posix_time::time_duration MonotonicNow() {
  const auto oSinceStart = std::chrono::steady_clock::now().time_since_epoch();
  return boost::posix_time::microseconds(
      s_nScale * std::chrono::duration_cast<std::chrono::microseconds>(oSinceStart).count());
}

bool WaitOnce(boost::condition_variable_any& oCondition, TpLock<ClMutex>& oLock,
              const boost::posix_time::time_duration& oDuration) {
  return oCondition.timed_wait(oLock, oDuration / s_nScale.load());
}

}  // namespace Klv

extern "C" int nanosleep(const timespec* pDuration, timespec* pLeft) {
  constexpr long cnSecond = 1000000000;
  const long long nWanted = (pDuration->tv_sec * 1LL * cnSecond + pDuration->tv_nsec) / s_nScale;
  const timespec oDuration = {static_cast<time_t>(nWanted / cnSecond), static_cast<long>(nWanted % cnSecond)};
  return static_cast<int>(syscall(SYS_nanosleep, &oDuration, pLeft));
}
