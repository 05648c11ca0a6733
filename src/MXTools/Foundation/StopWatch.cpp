// Differences of the wall clock.
#include "MXTools/StopWatch.h"

namespace Klv {

CXStopWatch::CXStopWatch() {
  gettimeofday(&m_oStart, nullptr);
}

timeval CXStopWatch::Elapsed() const {
  timeval oNow;
  gettimeofday(&oNow, nullptr);
  timeval oElapsed;
  timersub(&oNow, &m_oStart, &oElapsed);
  return oElapsed;
}

double CXStopWatch::ElapsedSeconds() const {
  const timeval oElapsed = Elapsed();
  return static_cast<double>(oElapsed.tv_sec) + static_cast<double>(oElapsed.tv_usec) / 1000000.0;
}

}  // namespace Klv
