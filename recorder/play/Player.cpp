// The order of openings, and the moment of each sequence.
#include "play/Player.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "format/Functions.h"
#include "play/Rest.h"

namespace Recording {
namespace {

using Clock = StSession::Clock;

/// An application may rely on an answer within two seconds even when no sequence comes.
constexpr std::chrono::milliseconds coLongestWait(1900);
/// An application whose own threads never rest is not waited for.
constexpr std::chrono::milliseconds coLongestRest(1000);

/// Bytes that applications read of a plane in the scanner's modes. A recording with fewer would be read past
/// its end.
uint64_t LeastPlane(int64_t nMode) {
  static const struct {
    int64_t nMode;
    uint64_t nBytes;
  } caModes[] = {{1, 1920 * 1360},  {2, 3840 * 2720}, {3, 320 * 240},   {4, 640 * 480}, {5, 1280 * 1024},
                 {6, 960 * 680},    {7, 3840 * 2720}, {8, 1920 * 1362}, {9, 960 * 176}, {32, 1920 * 1360},
                 {34, 1920 * 2720}, {35, 960 * 1360}, {36, 960 * 1362}, {38, 960 * 340}};
  for (const auto& oMode : caModes)
    if (oMode.nMode == nMode) return oMode.nBytes;
  return 0;
}

bool IsOpening(uint16_t nFunction) {
  return nFunction == eVTScanAPICreateHandle || nFunction == eFD_VT40CreateFakeDetectionVT40Handle;
}

}  // namespace

StPlayerSettings StPlayerSettings::OfEnvironment() {
  StPlayerSettings oSettings;
  const char* szFile = std::getenv("KELVARIN_VT40_REPLAY_FILE");
  if (szFile != nullptr) oSettings.sFile = szFile;
  const char* szSpeed = std::getenv("KELVARIN_VT40_REPLAY_SPEED");
  if (szSpeed != nullptr && szSpeed[0] != '\0') {
    char* pEnd = nullptr;
    oSettings.dSpeed = std::strcmp(szSpeed, "max") == 0 ? 0.0 : std::strtod(szSpeed, &pEnd);
    if (pEnd != nullptr && (*pEnd != '\0' || !(oSettings.dSpeed >= 0.01 && oSettings.dSpeed <= 1000.0)))
      throw ClRecordingError("KELVARIN_VT40_REPLAY_SPEED is \"" + std::string(szSpeed) +
                             "\"; it is a number from 0.01 to 1000, or max");
  }
  const char* szSteady = std::getenv("KELVARIN_VT40_REPLAY_STEADY");
  oSettings.bSteady = szSteady == nullptr || std::strcmp(szSteady, "0") != 0;
  return oSettings;
}

ClPlayer::ClPlayer(const StPlayerSettings& oSettings)
    : m_oSettings(oSettings), m_oRecording(oSettings.sFile) {
  size_t nAfter = 0;
  size_t nOrder = 0;
  for (const StCall& oCall : m_oRecording.Calls()) {
    const StRecorded oRecorded{&oCall, ++nOrder, nAfter};
    if (IsOpening(oCall.nFunction)) {
      m_mapOpenings[QuestionOf(oCall)].push_back(oRecorded);
      nAfter = nOrder;
    } else if (oCall.nDevice == 0) {
      m_oAnswers.Add(oRecorded);
    } else {
      m_mapDevices[oCall.nDevice + (IsLiveness(oCall.nFunction) ? 1U << 31 : 0)].push_back(oRecorded);
    }
    if (oCall.nFunction == eVTScanAPILockRawSequence) nAfter = nOrder;
  }
}

ClPlayer::SessionPointer ClPlayer::Session(void* hDevice) {
  const std::lock_guard<std::mutex> oLock(m_oMutex);
  const auto pFound = m_mapSessions.find(hDevice);
  if (pFound == m_mapSessions.end()) throw ClPlayError(ePlayBadHandle, "the handle is no open device");
  return pFound->second;
}

void ClPlayer::Reach(size_t nOrder) {
  const std::lock_guard<std::mutex> oLock(m_oMutex);
  m_nPosition = std::max(m_nPosition, nOrder);
}

const StCall& ClPlayer::Answer(void* hDevice, const StCall& oAsked, bool bTake) {
  const SessionPointer pSession = hDevice != nullptr ? Session(hDevice) : nullptr;
  const Lock oSessionLock = pSession != nullptr ? Lock(pSession->oMutex) : Lock();
  const std::lock_guard<std::mutex> oLock(m_oMutex);
  ClAnswers& oAnswers = pSession != nullptr ? pSession->oAnswers : m_oAnswers;
  const StCall* pAnswer = oAnswers.Find(oAsked, m_nPosition);
  if (pAnswer == nullptr)
    throw ClPlayError(ePlayNotRecorded, std::string("the recording has no call of ") +
                                            FunctionName(oAsked.nFunction) + " with these arguments");
  if (bTake) oAnswers.Take(oAsked);
  return *pAnswer;
}

void ClPlayer::Take(void* hDevice, const StCall& oAsked) {
  const SessionPointer pSession = hDevice != nullptr ? Session(hDevice) : nullptr;
  const Lock oSessionLock = pSession != nullptr ? Lock(pSession->oMutex) : Lock();
  const std::lock_guard<std::mutex> oLock(m_oMutex);
  (pSession != nullptr ? pSession->oAnswers : m_oAnswers).Take(oAsked);
}

long ClPlayer::TooSmall(void* hDevice, const StCall& oAsked) {
  const SessionPointer pSession = hDevice != nullptr ? Session(hDevice) : nullptr;
  const Lock oSessionLock = pSession != nullptr ? Lock(pSession->oMutex) : Lock();
  const std::lock_guard<std::mutex> oLock(m_oMutex);
  return (pSession != nullptr ? pSession->oAnswers : m_oAnswers).TooSmall(oAsked, ePlayTooSmall);
}

long ClPlayer::Open(const StCall& oAsked, void** phDevice) {
  const std::string sQuestion = QuestionOf(oAsked);
  const auto pFound = m_mapOpenings.find(sQuestion);
  if (pFound == m_mapOpenings.end())
    throw ClPlayError(ePlayBadValue, "the recording has no opening of this device");
  const std::vector<StRecorded>& aOpenings = pFound->second;
  const std::lock_guard<std::mutex> oLock(m_oMutex);
  size_t& nOpened = m_mapOpened[sQuestion];
  // Who opens once more gets what was recorded last, from its beginning.
  const StRecorded& oOpening = aOpenings[std::min(nOpened, aOpenings.size() - 1)];
  ++nOpened;
  m_nPosition = std::max(m_nPosition, oOpening.nOrder);
  if (oOpening.pCall->nResult != 0) return static_cast<long>(oOpening.pCall->nResult);
  const uint32_t nKind = IsLiveness(oAsked.nFunction) ? 1U << 31 : 0;
  SessionPointer pSession = MakeSession(m_mapDevices[oOpening.pCall->nDevice + nKind]);
  *phDevice = pSession.get();
  m_mapSessions[*phDevice] = std::move(pSession);
  return 0;
}

void ClPlayer::Close(void* hDevice) {
  const SessionPointer pSession = Session(hDevice);
  {
    const Lock oLock(pSession->oMutex);
    pSession->bClosed = true;
    ++pSession->nChanges;
  }
  pSession->oChanged.notify_all();
  const std::lock_guard<std::mutex> oLock(m_oMutex);
  m_mapSessions.erase(hDevice);
}

void ClPlayer::Change(void* hDevice, const StCall& oAsked, long nResult) {
  const SessionPointer pSession = Session(hDevice);
  {
    const Lock oLock(pSession->oMutex);
    pSession->oSetting.Apply(oAsked, nResult);
    ++pSession->nChanges;
  }
  pSession->oChanged.notify_all();
}

long ClPlayer::EnableCapture(void* hDevice, bool bEnable) {
  const SessionPointer pSession = Session(hDevice);
  {
    const Lock oLock(pSession->oMutex);
    pSession->bCapture = bEnable;
    ++pSession->nChanges;
  }
  pSession->oChanged.notify_all();
  return 0;
}

void ClPlayer::Resolution(void* hDevice, unsigned int& nWidth, unsigned int& nHeight) {
  const SessionPointer pSession = Session(hDevice);
  const Lock oLock(pSession->oMutex);
  const auto pSize = pSession->mapSizes.find(pSession->oSetting.nMode);
  if (pSize == pSession->mapSizes.end()) throw ClPlayError(ePlayBadState, "no recorded sensor mode is set");
  nWidth = pSize->second.first;
  nHeight = pSize->second.second;
}

/// The stream whose next sequence is due now; NULL after a change, when everything has to be looked at again.
StStream* ClPlayer::WaitForTurn(StSession& oSession, Lock& oLock, Clock::time_point oDeadline) {
  if (oSession.bClosed) throw ClPlayError(ePlayBadHandle, "the device was closed");
  if (!oSession.bCapture) throw ClPlayError(ePlayBadState, "capture is off");
  const auto pFound = oSession.mapStreams.find(oSession.oSetting.Name());
  const bool bAny = pFound != oSession.mapStreams.end();
  Clock::time_point oDue = oDeadline;
  if (bAny) {
    const auto dRecorded = static_cast<double>(pFound->second.Next().nGap);
    const double dGap = m_oSettings.dSpeed == 0.0 ? 0.0 : dRecorded / m_oSettings.dSpeed;
    oDue = std::min(oDeadline,
                    oSession.oLast + std::chrono::nanoseconds(static_cast<int64_t>(std::min(dGap, 1.9e9))));
  }
  const uint64_t nChanges = oSession.nChanges;
  if (oSession.oChanged.wait_until(oLock, oDue, [&] { return oSession.nChanges != nChanges; }))
    return nullptr;
  if (!bAny)
    throw ClPlayError(ePlayNoFrames, "the recording has no sequence of sensor mode " +
                                         std::to_string(oSession.oSetting.nMode) + " under these lights");
  if (m_oSettings.bSteady) {
    oLock.unlock();
    WaitForRest(coLongestRest);
    oLock.lock();
    if (oSession.nChanges != nChanges) return nullptr;
  }
  return &pFound->second;
}

long ClPlayer::LockSequence(void* hDevice, void** ppSequence, size_t* pnBytes) {
  const SessionPointer pSession = Session(hDevice);
  Lock oLock(pSession->oMutex);
  const Clock::time_point oDeadline = Clock::now() + coLongestWait;
  StStream* pStream = nullptr;
  while (pStream == nullptr) pStream = WaitForTurn(*pSession, oLock, oDeadline);
  return Give(*pSession, *pStream, ppSequence, pnBytes);
}

long ClPlayer::Give(StSession& oSession, StStream& oStream, void** ppSequence, size_t* pnBytes) {
  const StStream::StEvent& oEvent = oStream.Next();
  oSession.oLast = Clock::now();
  Reach(oEvent.nOrder);
  if (oStream.nNext < oStream.aEvents.size()) {
    ++oStream.nNext;
  } else if (!m_bEnd.exchange(true)) {
    std::fputs("vt40 player: the recording has no more sequences; the last one stays\n", stderr);
  }
  if (oEvent.pCall->nResult != 0) return static_cast<long>(oEvent.pCall->nResult);
  std::vector<uint8_t> aBytes;
  try {
    aBytes = m_oRecording.Data(oEvent.pCall->Find(1, eGot)->nBlock);
  } catch (const ClRecordingError& oError) {
    throw ClPlayError(ePlayNoFrames, std::string("the recording ends here: ") + oError.what());
  }
  if (aBytes.size() < LeastPlane(oSession.oSetting.nMode) * oSession.oSetting.nPlanes)
    throw ClPlayError(ePlayNoFrames, "the recording has a sequence of " + std::to_string(aBytes.size()) +
                                         " bytes, too few for sensor mode " +
                                         std::to_string(oSession.oSetting.nMode));
  void* pBytes = aBytes.data();
  if (pnBytes != nullptr) *pnBytes = aBytes.size();
  oSession.mapLent[pBytes] = std::move(aBytes);
  *ppSequence = pBytes;
  return 0;
}

void ClPlayer::ReleaseSequence(void* hDevice, void* pSequence) {
  const SessionPointer pSession = Session(hDevice);
  const Lock oLock(pSession->oMutex);
  if (pSession->mapLent.erase(pSequence) == 0)
    throw ClPlayError(ePlayBadValue, "the pointer is no locked sequence");
}

std::vector<uint8_t> ClPlayer::Content(const StField& oField) const {
  if (oField.eType != eFieldData) return {oField.sBytes.begin(), oField.sBytes.end()};
  try {
    return m_oRecording.Data(oField.nBlock);
  } catch (const ClRecordingError& oError) {
    throw ClPlayError(ePlayNotRecorded, oError.what());
  }
}

}  // namespace Recording
