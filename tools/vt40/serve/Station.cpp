// The station's loop: a task, a frame, or a look for the scanner.
#include "Station.h"

#include <algorithm>

#include "KelvarinLiveScannerVT40.h"

namespace Serve {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

/// Between two looks for a scanner that does not stream, or is not there.
constexpr milliseconds coLookPeriod(400);
/// Half of the second in which the service ends, and what a task may have to wait for.
constexpr milliseconds coEnd(700);

nlohmann::ordered_json FormJson(const ClPicture& oForm) {
  return {{"width", oForm.nWidth}, {"height", oForm.nHeight}, {"pelsPerMetre", oForm.nPelsX}};
}

bool IsSignal(const ClToolError& oError) {
  return oError.Code() == eExitInterrupted || oError.Code() == eExitTerminated;
}

}  // namespace

ClStation::ClStation(const ClLibrary& oLibrary, std::string sSerial, ClStationListener& oListener)
    : m_oLibrary(oLibrary), m_oListener(oListener) {
  m_oState.sSerial = std::move(sSerial);
  m_oThread = std::thread([this] { Run(); });
}

ClStation::~ClStation() {
  End();
  if (m_oThread.joinable()) m_oThread.join();
}

bool ClStation::End() {
  std::unique_lock<std::mutex> oLock(m_oMutex);
  m_bEnd = true;
  m_oChanged.notify_all();
  return m_oChanged.wait_for(oLock, coEnd, [this] { return m_bEnded; });
}

void ClStation::Ask(FnWork fnWork, FnAnswer fnAnswer) {
  {
    const std::lock_guard<std::mutex> oLock(m_oMutex);
    m_aTasks.push_back({std::move(fnWork), std::move(fnAnswer)});
  }
  m_oChanged.notify_all();
}

void ClStation::Run() {
  Open();
  while (true) {
    {
      const std::lock_guard<std::mutex> oLock(m_oMutex);
      if (m_bEnd) break;
    }
    try {
      RunOnce();
    } catch (const ClToolError& oError) {
      if (IsSignal(oError)) break;
      Lose();
    } catch (const std::exception&) {
      Lose();
    }
  }
  Darken();
  Retire();
  m_aStuck.clear();
  const std::lock_guard<std::mutex> oLock(m_oMutex);
  m_bEnded = true;
  m_oChanged.notify_all();
}

void ClStation::RunOnce() {
  const bool bStreams = m_pRun != nullptr && m_pRun->Streams();
  StTask oTask;
  if (TakeTask(oTask, bStreams ? milliseconds(0) : coLookPeriod)) return RunTask(oTask);
  if (bStreams) return m_pRun->Step();
  LookForScanner();
}

bool ClStation::TakeTask(StTask& oTask, milliseconds tWait) {
  std::unique_lock<std::mutex> oLock(m_oMutex);
  if (!m_oChanged.wait_for(oLock, tWait, [this] { return m_bEnd || !m_aTasks.empty(); }) || m_bEnd)
    return false;
  oTask = std::move(m_aTasks.front());
  m_aTasks.pop_front();
  return true;
}

void ClStation::RunTask(const StTask& oTask) {
  StAnswer oAnswer;
  bool bLost = false;
  try {
    oAnswer = AnswerOf(oTask.fnWork(*this));
  } catch (const ClToolError& oError) {
    oAnswer = CurrentErrorAnswer();
    bLost =
        oError.Code() == eExitLost || IsSignal(oError) || (m_pScanner != nullptr && m_pScanner->IsStuck());
    if (bLost) Lose();
  } catch (const std::exception&) {
    oAnswer = CurrentErrorAnswer();
  }
  m_oListener.Answer([fnAnswer = oTask.fnAnswer, oAnswer = std::move(oAnswer)] { fnAnswer(oAnswer); });
}

void ClStation::LookForScanner() {
  m_aStuck.erase(
      std::remove_if(m_aStuck.begin(), m_aStuck.end(), [](const auto& p) { return !p->IsStuck(); }),
      m_aStuck.end());
  if (m_pScanner == nullptr) return Open();
  if (!IsConnected(m_oState.sSerial))
    throw ClToolError(eExitLost, "scanner " + m_oState.sSerial + " was unplugged", KLV_ERROR_DISCONNECTED);
}

void ClStation::Open() {
  const nlohmann::ordered_json oBefore = m_oState.oError;
  try {
    if (m_oState.sSerial.empty()) {
      const std::vector<std::string> aSerials = m_oLibrary.Serials();
      if (aSerials.empty()) throw ClToolError(eExitNoScanner, "no scanner is connected");
      m_oState.sSerial = aSerials.front();
    }
    m_pScanner = std::make_unique<ClScanner>(m_oLibrary, m_oState.sSerial);
    m_oState.sScanLibraryVersion = ScanLibraryVersionIn(m_pScanner->Versions());
    m_oState.oForms = {{"image", FormJson(m_pScanner->ImageForm())},
                       {"preview", FormJson(m_pScanner->PreviewForm())},
                       {"roll", FormJson(m_pScanner->RollForm())},
                       {"signature", FormJson(m_pScanner->SignatureForm())}};
    // As the command line has it: prints are centred, and the pen's rest is measured here.
    m_pScanner->SetProperty("nRolledPostProcess", "1");
    m_pScanner->SetProperty("dSignatureDetectTime", "0");
    m_pScanner->SetProperty("dSignatureFilterSigma", "2");
    for (const auto& [sName, sValue] : m_oSettings) m_pScanner->SetProperty(sName, sValue);
    m_pRun = std::make_unique<ClModeRun>(*m_pScanner, m_sWanted, m_oListener, m_oPool, m_nFrame);
    m_oState.bConnected = true;
    m_oState.sMode = m_sWanted;
    m_oState.nCondition = m_pScanner->Condition();
    m_oState.oError = nullptr;
    Publish();
  } catch (const std::exception&) {
    Retire();
    m_oState.oError = CurrentError();
    if (m_oState.oError != oBefore) Publish();
  }
}

void ClStation::Lose() {
  m_oState.oError = CurrentError();
  m_oListener.Failed(m_oState.oError);
  Retire();
  Publish();
}

void ClStation::Retire() {
  m_pRun.reset();
  m_oState.bConnected = false;
  if (m_pScanner != nullptr && m_pScanner->IsStuck()) m_aStuck.push_back(std::move(m_pScanner));
  m_pScanner.reset();
}

void ClStation::Darken() {
  if (m_pScanner == nullptr || m_pScanner->IsStuck()) return;
  try {
    for (unsigned int n = 0; n < m_anLed.size(); ++n)
      if (m_anLed[n] != 0 || n == 0) m_pScanner->SetLed(n, 0);
  } catch (const std::exception&) {
    // Nobody is left who could be told.
  }
}

ClScanner& ClStation::Scanner() {
  if (m_pScanner == nullptr) {
    const std::string sWhy = m_oState.oError.is_object() ? m_oState.oError["text"] : "it is being opened";
    throw ClServiceError(503, "NOT_CONNECTED", "the scanner is not open: " + sWhy,
                         "Connect the scanner; it is opened by itself.");
  }
  return *m_pScanner;
}

void ClStation::SetMode(const std::string& sMode) {
  Scanner();
  m_pRun.reset();
  m_sWanted = m_oState.sMode = "off";
  try {
    m_pRun = std::make_unique<ClModeRun>(*m_pScanner, sMode, m_oListener, m_oPool, m_nFrame);
    m_sWanted = m_oState.sMode = sMode;
  } catch (const ClToolError&) {
    // The library has switched the stream off.
    Publish();
    throw;
  }
  m_oState.nCondition = m_pScanner->Condition();
  Publish();
}

void ClStation::Renew() {
  if (!IsConnected(m_oState.sSerial)) {
    // The new scene has other scanners.
    m_oState.sSerial.clear();
    Retire();
    return Open();
  }
  if (m_pScanner != nullptr) SetMode(std::string(m_sWanted));
}

void ClStation::SetProperty(const std::string& sName, const std::string& sValue) {
  Scanner().SetProperty(sName, sValue);
  m_oSettings[sName] = sValue;
}

void ClStation::SetLed(unsigned int nIndex, unsigned int nState) {
  Scanner().SetLed(nIndex, nState);
  m_anLed.at(nIndex) = nState;
}

void ClStation::Choose(const std::string& sSerial) {
  if (!IsConnected(sSerial))
    throw ClToolError(eExitNoScanner, "no scanner " + sSerial + " is connected; see GET /api/scanners");
  if (sSerial == m_oState.sSerial && m_pScanner != nullptr) return;
  Retire();
  m_oState.sSerial = sSerial;
  Open();
  Scanner();
}

StTaken ClStation::Capture() {
  Scanner();
  return m_pRun->Capture();
}

}  // namespace Serve
