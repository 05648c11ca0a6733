// One scanner on the bus: what the host sets and reads.
#include "KelvarinVTScanAPI/Scanner.h"

#include <algorithm>

#include "scene/SimError.h"

namespace Simulator {
namespace {

constexpr size_t cnMostMasks = 16;
// The register of the status LEDs ends with the bus of the character display.
constexpr int cnDisplayBit = 40;
constexpr uint64_t cnLedBits = (uint64_t{1} << cnDisplayBit) - 1;
// Where the state of each LED stands, three bits wide.
constexpr int canLedBit[] = {0, 9, 12, 15, 18, 21, 36, 33, 30, 27, 24, 3};

}  // namespace

ClScanner::ClScanner(const ClScannerDescription& oDescription, const ClSceneDescription& oScene, Note fnNote)
    : m_sSerial(oDescription.sSerial),
      m_nProduct(oDescription.nProduct),
      m_bLegacyEprom(oDescription.bLegacyEprom),
      m_fnNote(std::move(fnNote)),
      m_oSensor(oDescription, oScene.nSeed) {
  m_aFrames.resize(cnFramesKept);
  TakeDescription(oDescription, oScene);
}

double ClScanner::Time() const {
  if (!m_bRealTime || !m_bStarted) return m_dTime;
  return m_dTime + std::chrono::duration<double>(Clock::now() - m_oStart).count();
}

/// Drops sequences that have been begun, and wakes waiting threads. The first new one comes after the time
/// that it takes.
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
  if (bPlugged) {
    m_oDisplay = ClCharacterDisplay();
  } else {
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
      return;  // the scanner was replugged and serves another session
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
  AddLight(VTSIM_LIGHT_PLATEN, nPattern);
}

void ClScanner::SetStatusLed(Session nSession, uint64_t nPattern) {
  Guard oGuard(m_oState);
  CheckLocked(nSession);
  // A write to the bus of the display does not concern the LEDs.
  const bool bBus = (nPattern & ~cnLedBits) != 0 || (m_nStatusLed & ~cnLedBits) != 0;
  if (!bBus || ((nPattern ^ m_nStatusLed) & cnLedBits) != 0) AddLight(VTSIM_LIGHT_STATUS, nPattern);
  m_nStatusLed = nPattern;
  ++m_nStatusWrites;
  const auto oNow = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now().time_since_epoch());
  m_oDisplay.Write(static_cast<uint8_t>(nPattern >> cnDisplayBit), oNow.count());
}

void ClScanner::AddLight(int nKind, uint64_t nWord) {
  VTSimLight oLight{Time(), nKind, nWord, {}};
  if (nKind == VTSIM_LIGHT_STATUS)
    for (size_t n = 0; n < std::size(canLedBit); ++n)
      oLight.anLed[n] = static_cast<unsigned char>(nWord >> canLedBit[n] & 7);
  m_oLights.Add(oLight);
}

void ClScanner::Beep(Session nSession, unsigned nArg1, unsigned nArg2) {
  Guard oGuard(m_oState);
  CheckLocked(nSession);
  m_oBeeps.Add({Time(), nArg1, nArg2});
  ++m_nBeeps;
}

void ClScanner::SetCaptureMode(Session nSession, int nMode, const std::vector<uint64_t>& aMasks) {
  Guard oGuard(m_oState);
  CheckLocked(nSession);
  m_oSettings.pMode = nullptr;
  Restart();
  const ClSensorMode* pMode = FindSensorMode(nMode);
  if (!pMode) throw ClSimError(eBadValue, "the sensor has no mode " + std::to_string(nMode));
  if (aMasks.empty() || aMasks.size() > cnMostMasks)
    throw ClSimError(eBadValue, "a sequence has 1 to 16 frames, not " + std::to_string(aMasks.size()));
  m_oSettings.pMode = pMode;
  m_oSettings.aMasks = aMasks;
  for (const uint64_t nMask : aMasks) AddLight(VTSIM_LIGHT_SEQUENCE, nMask);
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
  if (aMasks.size() > cnMostMasks)
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
    nNumber = ~m_nFrames++;  // counts down, so that it never meets the number of a sequence
  }
  if (!oSettings.pMode) throw ClSimError(eBadState, "no sensor mode is set");
  if (nWidth != oSettings.pMode->nWidth || nHeight != oSettings.pMode->nHeight)
    throw ClSimError(eBadValue, "a frame has " + std::to_string(oSettings.pMode->nWidth) + " x " +
                                    std::to_string(oSettings.pMode->nHeight) + " pixels in this mode");
  aFrame.resize(oSettings.PlaneBytes());
  m_oSensor.RenderFrame(oSettings, nMask, dTime, dTime, nNumber, aFrame.data());
}

}  // namespace Simulator
