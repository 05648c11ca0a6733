// Sequences of calls, made of bytes: functions, arguments, what happens to the scanner meanwhile, and memory
// that runs out once.
#pragma once

#include <vector>

#include "SequenceSteps.h"

namespace Reliability {

using Sequence_t = std::vector<uint8_t>;

/// A sequence begins with four bytes: whether the rest is halved between two threads (lowest bit) and the
/// mode in which it begins (the other bits, 0: "off"); the scene; and, as 16 bits with the low byte first,
/// which allocation of the library fails (the low ten bits, 0: none) and whether frames flow (the six others,
/// 0) or are held back but for that number less one, and for what events let through. Each step after them is
/// a byte that chooses a function or an event, and the bytes of its arguments; where the bytes end, zeros
/// follow.
///
/// Every number that comes back must be one that the function is documented to return, and after the sequence
/// the scanner must be usable, or can be opened anew. Whatever breaks that ends the process.
///
/// Threads  thread-bound; one player in a process.
class ClSequencePlayer {
 public:
  /// Initialises the library on a simulated scanner, and opens that.
  ClSequencePlayer();
  /// Ends what is open.
  ~ClSequencePlayer();
  ClSequencePlayer(const ClSequencePlayer&) = delete;
  ClSequencePlayer& operator=(const ClSequencePlayer&) = delete;

  void Play(const Sequence_t& aSequence);
  /// For each function and each mode, and the state without a scanner, a sequence that calls it there.
  static std::vector<Sequence_t> Pairs();
  const ClCensus& Census() const { return m_oPlay.oCensus; }
  /// The longest call so far, in seconds, and its name.
  double Longest() const { return m_oPlay.dLongest; }
  const std::string& LongestName() const { return m_oPlay.sLongest; }

 private:
  void Begin();
  void End();
  void Restore();
  void CheckUsable();
  void Close(void* h);
  void Select(int nMode);

  StPlay m_oPlay;
  unsigned m_nPlayed = 0;
};

}  // namespace Reliability
