// A recording that answers in a scanner's place.
#pragma once

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "play/Session.h"

namespace Recording {

/// Numbers that the player answers itself.
enum EPlayError : long {
  ePlayBadHandle = -43,
  ePlayBadValue = -44,
  ePlayBadState = -50,
  ePlayNoFrames = -60,
  ePlayInternal = -101,
  ePlayOutOfMemory = -102,
  ePlayNotRecorded = -103,
  ePlayNoFile = -200,
  ePlayBadPointer = -701,
  ePlayTooSmall = -702
};

/// What the environment asks for.
struct StPlayerSettings {
  std::string sFile;    ///< KELVARIN_VT40_REPLAY_FILE
  double dSpeed = 1.0;  ///< KELVARIN_VT40_REPLAY_SPEED: times the recorded speed; 0 ("max"): no pace
  bool bSteady =
      true;  ///< KELVARIN_VT40_REPLAY_STEADY: a sequence waits until the process has dealt with the one before

  static StPlayerSettings OfEnvironment();
};

/// An answer that is no recorded one: a number for the application, and a text for people.
class ClPlayError : public std::runtime_error {
 public:
  ClPlayError(long nNumber, const std::string& sText) : std::runtime_error(sText), m_nNumber(nNumber) {}
  long Number() const noexcept { return m_nNumber; }

 private:
  long m_nNumber;
};

/// Holds the recording, and what of it has been given.
///
/// Threads  thread-safe. LockSequence may wait, while others call.
/// Errors   ClRecordingError from the constructor; ClPlayError.
class ClPlayer {
 public:
  explicit ClPlayer(const StPlayerSettings& oSettings);
  ClPlayer(const ClPlayer&) = delete;
  ClPlayer& operator=(const ClPlayer&) = delete;

  const ClRecording& Recording() const { return m_oRecording; }
  /// True when an application has asked for more sequences than there are.
  bool IsAtEnd() const { return m_bEnd; }

  /// The recorded answer to a call, on a device or on none. bTake: it counts as given, unless its output did
  /// not fit.
  const StCall& Answer(void* hDevice, const StCall& oAsked, bool bTake);
  void Take(void* hDevice, const StCall& oAsked);
  long TooSmall(void* hDevice, const StCall& oAsked);

  /// Opens what was recorded as the next opening of the kind, by the call that asks for it.
  long Open(const StCall& oAsked, void** phDevice);
  void Close(void* hDevice);
  /// Follows a call on a device that changes the sensor's setting.
  void Change(void* hDevice, const StCall& oAsked, long nResult);
  long EnableCapture(void* hDevice, bool bEnable);
  void Resolution(void* hDevice, unsigned int& nWidth, unsigned int& nHeight);
  /// Waits for the next sequence. The bytes stay until they are given back.
  long LockSequence(void* hDevice, void** ppSequence, size_t* pnBytes);
  void ReleaseSequence(void* hDevice, void* pSequence);
  /// The bytes of a field, wherever they are.
  std::vector<uint8_t> Content(const StField& oField) const;

 private:
  using SessionPointer = std::shared_ptr<StSession>;
  using Lock = std::unique_lock<std::mutex>;

  SessionPointer Session(void* hDevice);
  const StCall* Find(void* hDevice, const StCall& oAsked);
  StStream* WaitForTurn(StSession& oSession, Lock& oLock, StSession::Clock::time_point oDeadline);
  long Give(StSession& oSession, StStream& oStream, void** ppSequence, size_t* pnBytes);
  void Reach(size_t nOrder);

  const StPlayerSettings m_oSettings;
  const ClRecording m_oRecording;
  std::map<uint32_t, std::vector<StRecorded>> m_mapDevices;  // calls by the recorded number of their device
  std::map<std::string, std::vector<StRecorded>> m_mapOpenings;
  std::atomic<bool> m_bEnd{false};
  std::mutex m_oMutex;  // guards all that follows; taken after a session's
  std::map<std::string, size_t> m_mapOpened;
  std::map<void*, SessionPointer> m_mapSessions;
  ClAnswers m_oAnswers;  // to calls without a device
  size_t m_nPosition = 0;
};

}  // namespace Recording
