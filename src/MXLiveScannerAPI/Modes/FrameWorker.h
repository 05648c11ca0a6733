// A thread that repeats one step for frame after frame.
#pragma once

#include <boost/thread/thread.hpp>
#include <functional>

/// Threads  the owner's calls are thread-bound.
/// Errors   what a pass raises ends the worker; its reason is printed on standard output, and callers notice
///          it, like a lost scanner, by a time-out.
class ClFrameWorker {
 public:
  ClFrameWorker() = default;
  ClFrameWorker(const ClFrameWorker&) = delete;
  ClFrameWorker& operator=(const ClFrameWorker&) = delete;

  struct StWork {
    std::function<void()> fnPass;             ///< again and again until Interrupt
    std::function<void()> fnFailed;           ///< once after a failure; raises nothing
    std::function<void()> fnBegin = nullptr;  ///< once before the first pass
  };

  /// szName, of up to 15 characters, is the thread's for debuggers.
  void Start(const char* szName, StWork oWork);
  /// A pass in progress finishes; no other follows.
  void Interrupt() { m_oThread.interrupt(); }
  /// Waits for the end of an interrupted worker, and repeatedly wakes it from whatever it may wait for.
  void Join(const std::function<void()>& fnWake);

 private:
  boost::thread m_oThread;
};
