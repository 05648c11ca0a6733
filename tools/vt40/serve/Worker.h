// A thread for what takes too long for the network's: pictures as files, and the simulator's drawing.
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace Serve {

/// Does tasks one after the other. Tasks raise nothing.
///
/// Threads  thread-safe.
class ClWorker {
 public:
  ClWorker();
  ClWorker(const ClWorker&) = delete;
  ClWorker& operator=(const ClWorker&) = delete;
  /// Ends after the task that is being done; the others are dropped.
  ~ClWorker();

  void Post(std::function<void()> fnTask);

 private:
  void Work();

  std::mutex m_oMutex;
  std::condition_variable m_oChanged;
  std::deque<std::function<void()>> m_aTasks;  ///< m_oMutex
  bool m_bEnd = false;                         ///< m_oMutex
  std::thread m_oThread;
};

}  // namespace Serve
