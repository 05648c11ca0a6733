// The clock by which every time-out runs, and the one way to wait for a condition with a time-out.
#pragma once

#include <boost/date_time/posix_time/posix_time_duration.hpp>
#include <boost/thread/condition_variable.hpp>

#include "MXTools/Mutex.h"

namespace Klv {

/// Time since some fixed moment, unmoved by changes of the wall clock.
///
/// Threads  reentrant.
boost::posix_time::time_duration MonotonicNow();

/// Waits once on the condition, for at most oDuration by the monotonic clock. True when the wait ended before
/// that, by a notification or without a cause; oLock is held again in either case.
///
/// Threads  thread-safe. An interruption point where the calling thread allows interruption.
bool WaitOnce(boost::condition_variable_any& oCondition, TpLock<ClMutex>& oLock,
              const boost::posix_time::time_duration& oDuration);

}  // namespace Klv
