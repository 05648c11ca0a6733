// The worker's loop.
#include "Worker.h"

#include <utility>

namespace Serve {

ClWorker::ClWorker() : m_oThread([this] { Work(); }) {}

ClWorker::~ClWorker() {
  {
    const std::lock_guard<std::mutex> oLock(m_oMutex);
    m_bEnd = true;
  }
  m_oChanged.notify_all();
  m_oThread.join();
}

void ClWorker::Post(std::function<void()> fnTask) {
  {
    const std::lock_guard<std::mutex> oLock(m_oMutex);
    m_aTasks.push_back(std::move(fnTask));
  }
  m_oChanged.notify_all();
}

void ClWorker::Work() {
  std::unique_lock<std::mutex> oLock(m_oMutex);
  while (true) {
    m_oChanged.wait(oLock, [this] { return m_bEnd || !m_aTasks.empty(); });
    if (m_bEnd) return;
    const std::function<void()> fnTask = std::move(m_aTasks.front());
    m_aTasks.pop_front();
    oLock.unlock();
    fnTask();
    oLock.lock();
  }
}

}  // namespace Serve
