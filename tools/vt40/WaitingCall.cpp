// The thread, and what is looked at beside it.
#include "WaitingCall.h"

#include <atomic>
#include <chrono>
#include <utility>

#include "Interruption.h"
#include "Scanner.h"
#include "ToolError.h"

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds coTick(50);
/// Between two looks at the list; a scanner that is missing twice is lost.
constexpr milliseconds coLookPeriod(500);
constexpr int cnLostAfter = 2;
/// What a call may take after a signal before it is given up: most return within a frame.
constexpr milliseconds coGrace(400);

std::atomic<bool> s_bLeft{false};

/// Counts how often in a row the scanner is missing from the list.
class ClLookout {
 public:
  explicit ClLookout(const std::string& sSerial) : m_sSerial(sSerial) {}

  void Look() {
    if (Clock::now() < m_tNext) return;
    m_tNext = Clock::now() + coLookPeriod;
    m_nMissing = IsConnected(m_sSerial) ? 0 : m_nMissing + 1;
    if (m_nMissing < cnLostAfter) return;
    throw ClToolError(eExitLost, "scanner " + m_sSerial + " was unplugged");
  }

 private:
  const std::string& m_sSerial;
  Clock::time_point m_tNext = Clock::now() + coLookPeriod;
  int m_nMissing = 0;
};

}  // namespace

ClWaitingCall::ClWaitingCall(std::string sSerial)
    : m_sSerial(std::move(sSerial)), m_pState(std::make_shared<StState>()), m_oThread(Work, m_pState) {}

ClWaitingCall::~ClWaitingCall() {
  bool bBusy;
  {
    const std::lock_guard<std::mutex> oLock(m_pState->oMutex);
    m_pState->bEnd = true;
    bBusy = m_pState->fnCall != nullptr;
  }
  m_pState->oChanged.notify_all();
  if (bBusy) {
    m_oThread.detach();
    s_bLeft = true;
  } else {
    m_oThread.join();
  }
}

bool ClWaitingCall::IsAnyLeft() {
  return s_bLeft;
}

bool ClWaitingCall::IsStuck() const {
  const std::lock_guard<std::mutex> oLock(m_pState->oMutex);
  return m_pState->fnCall != nullptr;
}

void ClWaitingCall::Work(const std::shared_ptr<StState>& pState) {
  std::unique_lock<std::mutex> oLock(pState->oMutex);
  while (true) {
    pState->oChanged.wait(oLock, [&] { return pState->bEnd || pState->fnCall != nullptr; });
    if (pState->fnCall == nullptr) return;
    // The function stays where it is, which says that the thread is busy.
    oLock.unlock();
    const long nResult = pState->fnCall();
    oLock.lock();
    pState->nResult = nResult;
    pState->fnCall = nullptr;
    pState->oChanged.notify_all();
    if (pState->bEnd) return;
  }
}

long ClWaitingCall::Make(std::function<long()> fnCall) {
  Interruption::Check();
  std::unique_lock<std::mutex> oLock(m_pState->oMutex);
  m_pState->fnCall = std::move(fnCall);
  m_pState->oChanged.notify_all();
  ClLookout oLookout(m_sSerial);
  const auto Returned = [this] { return m_pState->fnCall == nullptr; };
  while (!m_pState->oChanged.wait_for(oLock, coTick, Returned)) {
    if (Interruption::Pending() && !m_pState->oChanged.wait_for(oLock, coGrace, Returned)) {
      Interruption::Check();
    }
    if (Returned()) break;
    // The list may take its time, and the call returns meanwhile.
    oLock.unlock();
    oLookout.Look();
    oLock.lock();
  }
  return m_pState->nResult;
}
