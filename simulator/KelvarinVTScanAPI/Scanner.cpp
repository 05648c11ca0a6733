// One scanner on the bus: what the host sets and reads, and what the control side does to it.
#include "KelvarinVTScanAPI/Scanner.h"

#include <algorithm>

#include "scene/SimError.h"

namespace Simulator {
namespace {

constexpr size_t g_cnBeepsKept = 256;
constexpr size_t g_cnMostMasks = 16;

}  // namespace

ClScanner::ClScanner(const ClScannerDescription& oDescription, const ClSceneDescription& oScene, Note fnNote)
    : m_sSerial(oDescription.sSerial),
      m_nProduct(oDescription.nProduct),
      m_bLegacyEprom(oDescription.bLegacyEprom),
      m_fnNote(std::move(fnNote)),
      m_oSensor(oDescription, oScene.nSeed) {
  TakeDescription(oDescription, oScene);
}

void ClScanner::TakeDescription(const ClScannerDescription& oDescription, const ClSceneDescription& oScene) {
  m_bRealTime = oScene.bRealTime;
  m_bUsbPowered = oDescription.bUsbPowered;
  m_sVersion = oDescription.sVersion;
  m_mapEprom.clear();
  for (const auto& oEntry : oDescription.mapEprom) {
    ClChange oChange{oEntry.second.bMissing, *m_oSensor.EpromFile(oEntry.first)};
    for (const unsigned nOffset : oEntry.second.aFlips)
      if (nOffset < oChange.aData.size())
        oChange.aData[nOffset] = static_cast<uint8_t>(~oChange.aData[nOffset]);
    if (oEntry.second.nCut >= 0)
      oChange.aData.resize(std::min(oChange.aData.size(), static_cast<size_t>(oEntry.second.nCut)));
    m_mapEprom[oEntry.first] = oChange;
  }
  m_aPlans.clear();
  for (const ClFaultDescription& oFault : oScene.aFaults) {
    const bool bPlug = oFault.eKind == ClFaultDescription::ePlug;
    if ((bPlug || oFault.eKind == ClFaultDescription::eUnplug) && oFault.sName == m_sSerial)
      m_aPlans.push_back({oFault.dAt, bPlug});
  }
  m_aBeeps.clear();
  m_nBeeps = m_nStatusWrites = 0;
  m_nSequences = m_nFrames = 0;
  m_bHold = false;
  m_nPasses = 0;
  m_oDelay = Clock::duration(0);
  m_dTime = m_dShownTime = 0.0;
  m_oStart = m_oDue = Clock::now();
  m_bStarted = m_bCapture;
}

void ClScanner::SetScene(const ClScannerDescription& oDescription, const ClSceneDescription& oScene) {
  std::lock_guard<std::mutex> oRender(m_oRender);
  m_oSensor.SetScene(oDescription, oScene.nSeed);
  Guard oGuard(m_oState);
  TakeDescription(oDescription, oScene);
  if (!m_bPlugged) Plug(true);
  Restart();
}

double ClScanner::Time() const {
  if (!m_bRealTime || !m_bStarted) return m_dTime;
  return m_dTime + std::chrono::duration<double>(Clock::now() - m_oStart).count();
}

/// Sequences that have been begun are dropped, and who waits looks again. The first new one takes its time.
void ClScanner::Restart() {
  ++m_nSettingsCount;
  m_oDue = Clock::now();
  if (m_bRealTime)
    m_oDue +=
        std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(m_oSettings.Seconds()));
  m_oChanged.notify_all();
}

void ClScanner::Plug(bool bPlugged) {
  if (m_bPlugged == bPlugged) return;
  m_bPlugged = bPlugged;
  m_fnNote((bPlugged ? "plugged " : "unplugged ") + m_sSerial + " at " + std::to_string(Time()));
  if (!bPlugged) {
    m_nSession = 0;
    m_bCapture = false;
  }
  m_oChanged.notify_all();
}

void ClScanner::FollowPlans() {
  const double dNow = Time();
  for (;;) {
    auto itNext = m_aPlans.end();
    for (auto it = m_aPlans.begin(); it != m_aPlans.end(); ++it)
      if (it->dTime <= dNow && (itNext == m_aPlans.end() || it->dTime < itNext->dTime)) itNext = it;
    if (itNext == m_aPlans.end()) return;
    const bool bPlug = itNext->bPlug;
    m_aPlans.erase(itNext);
    Plug(bPlug);
  }
}

void ClScanner::CheckLocked(Session nSession) {
  FollowPlans();
  if (!m_bPlugged || nSession != m_nSession || nSession == 0)
    throw ClSimError(eDisconnected, "scanner " + m_sSerial + " is not connected");
}

void ClScanner::Check(Session nSession) {
  Guard oGuard(m_oState);
  CheckLocked(nSession);
}

bool ClScanner::Plugged() {
  Guard oGuard(m_oState);
  FollowPlans();
  return m_bPlugged;
}

bool ClScanner::Plugged(Session nSession) {
  Guard oGuard(m_oState);
  FollowPlans();
  return m_bPlugged && nSession == m_nSession;
}

ClScanner::Session ClScanner::Open() {
  std::lock_guard<std::mutex> oRender(m_oRender);
  Guard oGuard(m_oState);
  FollowPlans();
  if (!m_bPlugged) throw ClSimError(eDisconnected, "scanner " + m_sSerial + " is not connected");
  if (m_nSession != 0) throw ClSimError(eOpenFail, "scanner " + m_sSerial + " is open already");
  // Power-on state: gains and exposure at their nominal values, no mode.
  m_oSettings = ClSensorSettings();
  m_oSettings.nExposure = m_oSensor.NominalExposure();
  m_oSettings.anGain = m_oSensor.NominalGain();
  m_bCapture = false;
  m_nIllumination = 0;
  m_nStatusLed = 0;
  m_nSession = ++m_nLastSession;
  return m_nSession;
}

void ClScanner::Close(Session nSession) {
  {
    Guard oGuard(m_oState);
    if (nSession == m_nSession) {
      m_nSession = 0;
      m_bCapture = false;
      Restart();
    } else if (m_nSession != 0) {
      return;  // the scanner was replugged and serves somebody else
    }
  }
  std::lock_guard<std::mutex> oRender(m_oRender);
  Guard oGuard(m_oState);
  if (m_nSession == 0) FreeFrames();
}

void ClScanner::FreeFrames() {
  m_oSensor.Free();
  m_aBlocks.clear();
}

std::string ClScanner::Version(Session nSession) {
  Guard oGuard(m_oState);
  CheckLocked(nSession);
  return m_sVersion;
}

bool ClScanner::UsbPowered(Session nSession) {
  Guard oGuard(m_oState);
  CheckLocked(nSession);
  return m_bUsbPowered;
}

double ClScanner::FrameRate(Session nSession) {
  Guard oGuard(m_oState);
  CheckLocked(nSession);
  const double dSeconds = m_oSettings.Seconds();
  return dSeconds > 0.0 ? 1.0 / dSeconds : 0.0;
}

std::string ClScanner::EpromList(Session nSession) {
  Guard oGuard(m_oState);
  CheckLocked(nSession);
  std::string sList;
  const auto Add = [&sList](const std::string& sName) { sList += (sList.empty() ? "" : ";") + sName; };
  for (const char* szName : ClSensor::EpromNames()) {
    const auto it = m_mapEprom.find(szName);
    if (it == m_mapEprom.end() || !it->second.bMissing) Add(szName);
  }
  for (const auto& oEntry : m_mapEprom)
    if (!oEntry.second.bMissing && !m_oSensor.EpromFile(oEntry.first)) Add(oEntry.first);
  return sList;
}

ByteBlock ClScanner::ReadEprom(Session nSession, const std::string& sName) {
  Guard oGuard(m_oState);
  CheckLocked(nSession);
  const auto it = m_mapEprom.find(sName);
  if (it != m_mapEprom.end() && !it->second.bMissing) return it->second.aData;
  const ByteBlock* pFile = it == m_mapEprom.end() ? m_oSensor.EpromFile(sName) : nullptr;
  if (!pFile) throw ClSimError(eFileOpen, "scanner " + m_sSerial + " has no file \"" + sName + "\"");
  return *pFile;
}

void ClScanner::SetExposure(Session nSession, unsigned nExposure) {
  Guard oGuard(m_oState);
  CheckLocked(nSession);
  m_oSettings.nExposure = nExposure;
}

void ClScanner::SetGain(Session nSession, const std::array<unsigned, 3>& anGain) {
  Guard oGuard(m_oState);
  CheckLocked(nSession);
  m_oSettings.anGain = anGain;
}

void ClScanner::SetIllumination(Session nSession, unsigned nPattern) {
  Guard oGuard(m_oState);
  CheckLocked(nSession);
  m_nIllumination = nPattern;
}

void ClScanner::SetStatusLed(Session nSession, uint64_t nPattern) {
  Guard oGuard(m_oState);
  CheckLocked(nSession);
  m_nStatusLed = nPattern;
  ++m_nStatusWrites;
}

void ClScanner::Beep(Session nSession, unsigned nArg1, unsigned nArg2) {
  Guard oGuard(m_oState);
  CheckLocked(nSession);
  if (m_aBeeps.size() == g_cnBeepsKept) m_aBeeps.pop_front();
  m_aBeeps.push_back({Time(), nArg1, nArg2});
  ++m_nBeeps;
}

void ClScanner::SetCaptureMode(Session nSession, int nMode, const std::vector<uint64_t>& aMasks) {
  Guard oGuard(m_oState);
  CheckLocked(nSession);
  m_oSettings.pMode = nullptr;
  Restart();
  const ClSensorMode* pMode = FindSensorMode(nMode);
  if (!pMode) throw ClSimError(eBadValue, "the sensor has no mode " + std::to_string(nMode));
  if (aMasks.empty() || aMasks.size() > g_cnMostMasks)
    throw ClSimError(eBadValue, "a sequence has 1 to 16 frames, not " + std::to_string(aMasks.size()));
  m_oSettings.pMode = pMode;
  m_oSettings.aMasks = aMasks;
  Restart();
}

void ClScanner::SetMode(Session nSession, int nMode) {
  Guard oGuard(m_oState);
  CheckLocked(nSession);
  m_oSettings.pMode = FindSensorMode(nMode);
  Restart();
  if (!m_oSettings.pMode) throw ClSimError(eBadValue, "the sensor has no mode " + std::to_string(nMode));
}

void ClScanner::SetMasks(Session nSession, const std::vector<uint64_t>& aMasks) {
  Guard oGuard(m_oState);
  CheckLocked(nSession);
  if (aMasks.size() > g_cnMostMasks)
    throw ClSimError(eBadValue, "a sequence has at most 16 frames, not " + std::to_string(aMasks.size()));
  m_oSettings.aMasks = aMasks;
  Restart();
}

void ClScanner::ForgetMode() noexcept {
  Guard oGuard(m_oState);
  m_oSettings.pMode = nullptr;
  Restart();
}

void ClScanner::Resolution(Session nSession, unsigned& nWidth, unsigned& nHeight) {
  Guard oGuard(m_oState);
  CheckLocked(nSession);
  if (!m_oSettings.pMode) throw ClSimError(eBadState, "no sensor mode is set");
  nWidth = static_cast<unsigned>(m_oSettings.pMode->nWidth);
  nHeight = static_cast<unsigned>(m_oSettings.pMode->nHeight);
}

void ClScanner::EnableCapture(Session nSession, bool bEnable) {
  Guard oGuard(m_oState);
  CheckLocked(nSession);
  if (bEnable && !m_bStarted) {
    m_bStarted = true;
    m_oStart = Clock::now();
  }
  m_bCapture = bEnable;
  Restart();
}

void ClScanner::TakeFrame(Session nSession, uint64_t nMask, int nWidth, int nHeight,
                          std::vector<uint8_t>& aFrame) {
  std::lock_guard<std::mutex> oRender(m_oRender);
  ClSensorSettings oSettings;
  double dTime;
  uint64_t nNumber;
  {
    Guard oGuard(m_oState);
    CheckLocked(nSession);
    oSettings = m_oSettings;
    dTime = m_dShownTime = Time();
    nNumber = ~m_nFrames++;  // apart from the numbers of sequences
  }
  if (!oSettings.pMode) throw ClSimError(eBadState, "no sensor mode is set");
  if (nWidth != oSettings.pMode->nWidth || nHeight != oSettings.pMode->nHeight)
    throw ClSimError(eBadValue, "a frame has " + std::to_string(oSettings.pMode->nWidth) + " x " +
                                    std::to_string(oSettings.pMode->nHeight) + " pixels in this mode");
  aFrame.resize(oSettings.PlaneBytes());
  m_oSensor.RenderFrame(oSettings, nMask, dTime, nNumber, aFrame.data());
}

void ClScanner::GroundTruth(uint8_t* pPicture, uint8_t* pCover) {
  std::lock_guard<std::mutex> oRender(m_oRender);
  double dTime;
  {
    Guard oGuard(m_oState);
    dTime = m_dShownTime;
  }
  m_oSensor.GroundTruth(dTime, pPicture, pCover);
}

void ClScanner::State(VTSimState& oState) {
  Guard oGuard(m_oState);
  FollowPlans();
  oState.bPlugged = m_bPlugged;
  oState.bOpen = m_nSession != 0;
  oState.bCaptureEnabled = m_bCapture;
  oState.nSensorMode = m_oSettings.pMode ? m_oSettings.pMode->nMode : 0;
  oState.nPlanes = static_cast<unsigned>(m_oSettings.aMasks.size());
  oState.nExposure = m_oSettings.nExposure;
  std::copy(m_oSettings.anGain.begin(), m_oSettings.anGain.end(), oState.anGain);
  oState.nIllumination = m_nIllumination;
  oState.nStatusLed = m_nStatusLed;
  oState.nStatusWrites = m_nStatusWrites;
  oState.nSequences = m_nSequences;
  oState.nLockedSequences = static_cast<unsigned>(
      std::count_if(m_aBlocks.begin(), m_aBlocks.end(), [](const auto& pBlock) { return pBlock->bOut; }));
  oState.nBeeps = m_nBeeps;
  oState.dTime = Time();
}

std::vector<VTSimBeep> ClScanner::Beeps() {
  Guard oGuard(m_oState);
  return {m_aBeeps.begin(), m_aBeeps.end()};
}

void ClScanner::Advance(double dSeconds) {
  Guard oGuard(m_oState);
  m_dTime += dSeconds;
  m_dShownTime = Time();
  FollowPlans();
  m_oChanged.notify_all();
}

void ClScanner::SetPlugged(bool bPlugged) {
  Guard oGuard(m_oState);
  Plug(bPlugged);
}

void ClScanner::PlanPlug(double dTime, bool bPlugged) {
  Guard oGuard(m_oState);
  m_aPlans.push_back({dTime, bPlugged});
  m_oChanged.notify_all();
}

void ClScanner::SetEprom(const std::string& sName, const ByteBlock* pData) {
  Guard oGuard(m_oState);
  m_mapEprom[sName] = pData ? ClChange{false, *pData} : ClChange{true, {}};
  m_fnNote("file " + sName + " of " + m_sSerial +
           (pData ? " replaced by " + std::to_string(pData->size()) + " bytes" : " taken away"));
}

void ClScanner::RestoreEprom(const std::string& sName) {
  Guard oGuard(m_oState);
  m_mapEprom.erase(sName);
}

void ClScanner::SetVersion(const std::string& sVersion) {
  Guard oGuard(m_oState);
  m_sVersion = sVersion;
}

void ClScanner::Hold(bool bHold) {
  Guard oGuard(m_oState);
  m_bHold = bHold;
  m_nPasses = 0;
  m_oChanged.notify_all();
}

void ClScanner::Pass(unsigned nCount) {
  Guard oGuard(m_oState);
  m_nPasses += nCount;
  m_oChanged.notify_all();
}

void ClScanner::Delay(unsigned nMilliseconds) {
  Guard oGuard(m_oState);
  m_oDelay = std::chrono::milliseconds(nMilliseconds);
  m_fnNote("a sequence of " + m_sSerial + " delayed by " + std::to_string(nMilliseconds) + " ms");
}

void ClScanner::ClearFaults() {
  Guard oGuard(m_oState);
  m_aPlans.clear();
  m_bHold = false;
  m_nPasses = 0;
  m_oDelay = Clock::duration(0);
  m_oChanged.notify_all();
}

}  // namespace Simulator
