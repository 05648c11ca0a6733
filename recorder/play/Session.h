// One opening of a device in a recording: what was answered, and its sequences of frames.
#pragma once

#include <chrono>
#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "play/Answers.h"

namespace Recording {

/// The sensor's setting, as far as sequences depend on it.
struct StSetting {
  int64_t nMode = -1;
  uint64_t nPlanes = 0;
  std::string sLights;  ///< the words of the lights

  /// Follows a call that changes it.
  void Apply(const StCall& oCall, long nResult);
  std::string Name() const { return std::to_string(nMode) + '|' + std::to_string(nPlanes) + '|' + sLights; }
};

/// The sequences of one setting, in order.
struct StStream {
  struct StEvent {
    const StCall* pCall;
    size_t nOrder;
    int64_t nGap;  ///< nanoseconds since the sequence before, of whatever setting
  };
  std::vector<StEvent> aEvents;
  size_t nNext = 0;

  /// The next one; the last one once more when there is none left. There must be one.
  const StEvent& Next() const { return aEvents[nNext < aEvents.size() ? nNext : aEvents.size() - 1]; }
};

/// Threads  m_oMutex guards all members.
struct StSession {
  using Clock = std::chrono::steady_clock;

  std::mutex oMutex;
  std::condition_variable oChanged;
  bool bClosed = false;
  bool bCapture = false;
  uint64_t nChanges = 0;  // of setting, capture and closing
  StSetting oSetting;
  std::map<std::string, StStream> mapStreams;
  std::map<int64_t, std::pair<uint32_t, uint32_t>> mapSizes;  // of the sensor modes
  ClAnswers oAnswers;
  Clock::time_point oLast{};  // when the last sequence was given
  std::map<void*, std::vector<uint8_t>> mapLent;
};

/// Collects what was recorded of a device.
std::unique_ptr<StSession> MakeSession(const std::vector<StRecorded>& aCalls);

}  // namespace Recording
