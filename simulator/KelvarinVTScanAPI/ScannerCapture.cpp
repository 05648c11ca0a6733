// One scanner on the bus: its capture, from the wait for a sequence to its return.
#include <algorithm>

#include "KelvarinVTScanAPI/Scanner.h"
#include "scene/SimError.h"

namespace Simulator {
namespace {

// A host may rely on an answer within two seconds even when no sequence comes.
constexpr std::chrono::milliseconds coLongestWait(1900);
// Sequences that a host may hold at once.
constexpr size_t cnMostBlocks = 4;

/// Sets a flag for a scope.
class ClWhile {
 public:
  explicit ClWhile(bool& bFlag) : m_bFlag(bFlag) { m_bFlag = true; }
  ~ClWhile() { m_bFlag = false; }
  ClWhile(const ClWhile&) = delete;
  ClWhile& operator=(const ClWhile&) = delete;

 private:
  bool& m_bFlag;
};

}  // namespace

/// Without a clock, a scanner that is to be unplugged while the next sequence is exposed is unplugged now.
void ClScanner::CheckCanDeliver(Session nSession) {
  if (!m_bRealTime)
    for (const ClPlan& oPlan : m_aPlans)
      if (!oPlan.bPlug && oPlan.dTime < m_dTime + m_oSettings.Seconds())
        m_dTime = std::max(m_dTime, oPlan.dTime);
  CheckLocked(nSession);
  if (!m_bCapture) throw ClSimError(eBadState, "capture is off");
  if (!m_oSettings.pMode || m_oSettings.aMasks.empty()) throw ClSimError(eBadState, "no capture mode is set");
}

/// The moment of the next planned plugging that the clock will reach; at most oLimit.
ClScanner::Clock::time_point ClScanner::NextPlan(Clock::time_point oLimit) const {
  if (!m_bRealTime || !m_bStarted) return oLimit;
  const double dNow = Time();
  Clock::time_point oNext = oLimit;
  for (const ClPlan& oPlan : m_aPlans) {
    const double dAway = std::min(std::max(0.0, oPlan.dTime - dNow), 10.0);
    oNext = std::min(oNext, Clock::now() + std::chrono::duration_cast<Clock::duration>(
                                               std::chrono::duration<double>(dAway)));
  }
  return oNext;
}

/// True when a sequence may be made now; false after a wait, when everything has to be checked again.
bool ClScanner::WaitForSequence(Guard& oGuard, Session nSession, Clock::time_point oDeadline) {
  CheckCanDeliver(nSession);
  const Clock::time_point oNow = Clock::now();
  const bool bHeld = m_bHold && m_nPasses == 0;
  if (m_oDelay.count() != 0) {
    m_oDue = std::max(m_oDue, oNow) + m_oDelay;
    m_oDelay = Clock::duration(0);
  }
  if (!bHeld && oNow >= m_oDue) return true;
  if (oNow >= oDeadline) throw ClSimError(eDisconnected, "no sequence came in time");
  m_oChanged.wait_until(oGuard, NextPlan(bHeld ? oDeadline : std::min(m_oDue, oDeadline)));
  return false;
}

std::shared_ptr<ClScanner::ClBlock> ClScanner::FreeBlock() {
  for (const auto& pBlock : m_aBlocks)
    if (!pBlock->bOut) return pBlock;
  if (m_aBlocks.size() >= cnMostBlocks) throw ClSimError(eBadState, "all sequences are locked");
  m_aBlocks.push_back(std::make_shared<ClBlock>());
  return m_aBlocks.back();
}

/// Moves time on by what the sequence took.
void ClScanner::Delivered(const ClSensorSettings& oSettings) {
  ++m_nSequences;
  if (m_bHold && m_nPasses > 0) --m_nPasses;
  const double dSeconds = oSettings.Seconds();
  if (m_bRealTime) {
    // The sensor does not wait: sequences that a slow host misses are lost.
    const auto oStep = std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(dSeconds));
    m_oDue = std::max(m_oDue + oStep, Clock::now());
  } else {
    m_dTime += dSeconds;
  }
  m_oChanged.notify_all();
}

/// Keeps what the sequence that is about to be delivered shows.
void ClScanner::Record(const ClSensorSettings& oSettings, const ClSight& oSight) {
  if (m_nSequences == 0 || oSight.nState != m_nLastState) m_nSteadySince = m_nSequences;
  m_nLastState = oSight.nState;
  VTSimFrame& oFrame = m_aFrames[static_cast<size_t>(m_nSequences % cnFramesKept)];
  oFrame = VTSimFrame();
  oFrame.nNumber = m_nSequences;
  oFrame.nSteadySince = m_nSteadySince;
  oFrame.dTime = oSight.dTime;
  oFrame.nSensorMode = oSettings.pMode->nMode;
  oFrame.nPlanes = static_cast<unsigned>(oSettings.aMasks.size());
  oFrame.nFingers = oSight.oFacts.nFingers;
  oFrame.nMoving = oSight.oFacts.nMoving;
}

/// Makes the sequence of m_oRendered. The block is kept for the next sequence, unless it is much larger, from
/// another mode.
uint8_t* ClScanner::RenderInto(ClBlock& oBlock, double dTime, uint64_t nSequence) {
  const size_t nBytes = m_oRendered.PlaneBytes() * m_oRendered.aMasks.size();
  if (oBlock.aBytes.capacity() > 2 * nBytes) std::vector<uint8_t>().swap(oBlock.aBytes);
  oBlock.aBytes.resize(nBytes);
  m_oSensor.Render(m_oRendered, dTime, nSequence, oBlock.aBytes.data());
  return oBlock.aBytes.data();
}

void* ClScanner::LockSequence(Session nSession, size_t* pnBytes) {
  std::lock_guard<std::mutex> oLockers(m_oLockers);
  const Clock::time_point oDeadline = Clock::now() + coLongestWait;
  for (;;) {
    {
      Guard oGuard(m_oState);
      const ClWhile oWaiting(m_bWaiting);
      while (!WaitForSequence(oGuard, nSession, oDeadline)) {
      }
    }
    std::lock_guard<std::mutex> oRender(m_oRender);
    Guard oGuard(m_oState);
    CheckCanDeliver(nSession);
    const std::shared_ptr<ClBlock> pBlock = FreeBlock();
    const uint64_t nSettings = m_nSettingsCount, nSequence = m_nSequences;
    const double dTime = Time();
    m_oRendered = m_oSettings;
    pBlock->bOut = true;
    oGuard.unlock();
    uint8_t* pBytes = nullptr;
    ClSight oSight;
    try {
      oSight = {dTime, m_oSensor.StateAt(dTime), m_oSensor.Facts(dTime)};
      pBytes = RenderInto(*pBlock, dTime, nSequence);
    } catch (...) {
      oGuard.lock();
      pBlock->bOut = false;
      throw;
    }
    oGuard.lock();
    const bool bCurrent = nSettings == m_nSettingsCount && nSession == m_nSession;
    pBlock->bOut = bCurrent;
    if (!bCurrent) continue;
    m_dShownTime = dTime;
    Record(m_oRendered, oSight);
    Delivered(m_oRendered);
    if (pnBytes) *pnBytes = pBlock->aBytes.size();
    return pBytes;
  }
}

void ClScanner::ReleaseSequence(Session nSession, void* pSequence) {
  Guard oGuard(m_oState);
  bool bFound = false;
  for (const auto& pBlock : m_aBlocks) {
    if (!pBlock->bOut || pBlock->aBytes.data() != pSequence) continue;
    pBlock->bOut = false;
    bFound = true;
  }
  CheckLocked(nSession);
  if (!bFound) throw ClSimError(eBadValue, "the pointer is no locked sequence");
}

}  // namespace Simulator
