// A piece of work beside the calling thread, joined before its scope ends.
#pragma once

#include <boost/thread/thread.hpp>
#include <exception>
#include <utility>

/// Threads  thread-bound; the work runs on a thread of its own from construction until Join or destruction.
/// Errors   what the work raises is raised again by Join; the destructor joins and drops it.
class ClHelperThread {
 public:
  template <typename TWork>
  explicit ClHelperThread(TWork&& oWork)
      : m_oThread([this, oTask = std::forward<TWork>(oWork)] {
          try {
            oTask();
          } catch (...) {
            m_pFailure = std::current_exception();
          }
        }) {}
  ClHelperThread(const ClHelperThread&) = delete;
  ClHelperThread& operator=(const ClHelperThread&) = delete;
  ~ClHelperThread() { Wait(); }

  void Join() {
    Wait();
    Raise();
  }

  /// Waits too, and calls fnWake before it does and now and then while it does; fnWake raises nothing.
  template <typename TWake>
  void Join(TWake&& fnWake) {
    boost::this_thread::disable_interruption oNoInterruption;
    do {
      fnWake();
    } while (!m_oThread.timed_join(boost::posix_time::milliseconds(cnWakeIntervalMs)));
    Raise();
  }

 private:
  static constexpr int cnWakeIntervalMs = 10;

  void Raise() {
    if (m_pFailure != nullptr) std::rethrow_exception(std::exchange(m_pFailure, nullptr));
  }

  void Wait() {
    // The work uses members of its owner, so that an interruption of the caller must not end the wait early.
    boost::this_thread::disable_interruption oNoInterruption;
    if (m_oThread.joinable()) m_oThread.join();
  }

  std::exception_ptr m_pFailure;
  boost::thread m_oThread;
};
