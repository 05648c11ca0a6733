// The life of a worker.
#include "MXLiveScannerAPI/FrameWorker.h"

#include <pthread.h>

#include <cstdio>

#include "MXTools/Failure.h"

namespace {

/// The interval at which a worker that is to end is woken until it has ended.
constexpr long cnWakeIntervalMs = 20;

/// No exception may leave a thread: the reason of a failure is printed, and the worker ends.
void Run(const ClFrameWorker::StWork& oWork) noexcept {
  // An interruption is noticed only between passes, so that a frame in progress is always finished.
  boost::this_thread::disable_interruption oNoInterruption;
  try {
    if (oWork.fnBegin) oWork.fnBegin();
    while (!boost::this_thread::interruption_requested()) oWork.fnPass();
  } catch (...) {
    std::puts(Klv::FailureText());
    oWork.fnFailed();
  }
}

}  // namespace

void ClFrameWorker::Start(const char* szName, StWork oWork) {
  m_oThread = boost::thread([szName, oWork = std::move(oWork)] {
    pthread_setname_np(pthread_self(), szName);
    Run(oWork);
  });
}

void ClFrameWorker::Join(const std::function<void()>& fnWake) {
  boost::this_thread::disable_interruption oNoInterruption;
  if (!m_oThread.joinable()) return;
  do {
    fnWake();
  } while (!m_oThread.timed_join(boost::posix_time::milliseconds(cnWakeIntervalMs)));
}
