// Which recorded call answers what an application asks.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "format/RecordingReader.h"

namespace Recording {

/// A recorded call and its place in the recording.
struct StRecorded {
  const StCall* pCall = nullptr;
  size_t nOrder = 0;  ///< among all calls
  size_t nAfter = 0;  ///< order of the last sequence or opening before it
};

/// The calls that ask the same: same function, same device, same arguments but for the rooms.
///
/// Threads  thread-bound.
class ClAnswers {
 public:
  void Add(const StRecorded& oRecorded);
  /// The call that answers, NULL when nothing of the kind was recorded.
  ///
  /// What changes something is answered in the order of the recording, and with the last answer when that is
  /// used up. What asks for something is answered by what was so when nPosition had been reached, the order
  /// of the sequence that was given last.
  const StCall* Find(const StCall& oAsked, size_t nPosition);
  /// Counts the answer as given.
  void Take(const StCall& oAsked);
  /// The recorded answer to a room that is too small; nOtherwise when there is none.
  long TooSmall(const StCall& oAsked, long nOtherwise) const;

 private:
  struct StQueue {
    std::vector<StRecorded> aCalls;
    const StCall* pTooSmall = nullptr;
    size_t nGiven = 0;  // of all, the first that was not given yet
    size_t nChosen = 0;
  };

  std::map<std::string, StQueue> m_mapQueues;
};

/// What a call asks, as text to compare.
std::string QuestionOf(const StCall& oCall);

/// True for functions that ask and change nothing.
bool IsQuestion(uint16_t nFunction);

}  // namespace Recording
