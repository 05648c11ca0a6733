// A box under one lock.
#include "Outbox.h"

#include <utility>

namespace Serve {

template <typename TChange>
void ClOutbox::Change(TChange fnChange) {
  {
    const std::lock_guard<std::mutex> oLock(m_oMutex);
    fnChange();
    if (std::exchange(m_bAwake, true)) return;
  }
  m_fnWake();
}

void ClOutbox::Put(std::shared_ptr<ClFrame> pFrame) {
  // The frame that is replaced goes back to its pool, under another lock than this one.
  Change([&] { std::swap(m_oContent.pFrame, pFrame); });
}

void ClOutbox::PutFacts(std::string sFacts) {
  Change([&] {
    if (m_oContent.aFacts.size() == cnMostFacts) m_oContent.aFacts.erase(m_oContent.aFacts.begin());
    m_oContent.aFacts.push_back(std::move(sFacts));
  });
}

void ClOutbox::PutAction(std::function<void()> fnAction) {
  Change([&] { m_oContent.aActions.push_back(std::move(fnAction)); });
}

void ClOutbox::Take(StContent& oContent) {
  oContent.aActions.clear();
  oContent.aFacts.clear();
  oContent.pFrame.reset();
  const std::lock_guard<std::mutex> oLock(m_oMutex);
  m_bAwake = false;
  std::swap(m_oContent, oContent);
}

}  // namespace Serve
