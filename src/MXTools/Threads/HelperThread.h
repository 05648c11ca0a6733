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
    if (m_pFailure != nullptr) std::rethrow_exception(std::exchange(m_pFailure, nullptr));
  }

 private:
  void Wait() {
    // The work uses members of its owner, so that an interruption of the caller must not end the wait early.
    boost::this_thread::disable_interruption oNoInterruption;
    if (m_oThread.joinable()) m_oThread.join();
  }

  std::exception_ptr m_pFailure;
  boost::thread m_oThread;
};
