// The time since an object was made.
#pragma once

#include <sys/time.h>

namespace Klv {

/// Units    the wall clock's seconds and microseconds; a change of the clock shows in the result.
/// Threads  reentrant.
class CXStopWatch {
 public:
  CXStopWatch();
  virtual ~CXStopWatch() = default;

  timeval Elapsed() const;
  double ElapsedSeconds() const;

 private:
  timeval m_oStart;
};

}  // namespace Klv
