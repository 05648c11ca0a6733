// What waits to be written: whole calls with their data, in a ring of a size that never changes.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>

namespace Recording {

/// Threads enter what they have in the order in which they ask for room, and fill it side by side. One thread
/// takes it out.
///
/// Ownership  the ring is taken from the system at once, so that later nothing is allocated.
/// Threads    Reserve and Commit thread-safe; Front and Pop for one thread. The lock is held for a few
///            instructions.
/// Errors     std::bad_alloc from the constructor; Reserve gives NULL.
class ClCallQueue {
 public:
  /// An entry in the ring; its bytes follow.
  struct StEntry {
    size_t nBytes;
    bool bReady;
    bool bSkipped;  ///< the rest of the ring, too short for the entry that came next
    uint8_t* Bytes() { return reinterpret_cast<uint8_t*>(this) + cnHeader; }
  };

  explicit ClCallQueue(size_t nBytes);
  ClCallQueue(const ClCallQueue&) = delete;
  ClCallQueue& operator=(const ClCallQueue&) = delete;
  ~ClCallQueue();

  /// Room for nBytes. Without enough of it: waits when bWait, unless there will never be enough, else NULL.
  StEntry* Reserve(size_t nBytes, bool bWait);
  void Commit(StEntry* pEntry);

  /// The oldest entry, when it is filled; waits for it. NULL after End, when there is no more.
  StEntry* Front();
  void Pop(StEntry* pEntry);
  /// Waits until all that was entered has been taken out, as long as nobody enters more.
  void Drain();
  void End();

 private:
  static constexpr size_t cnHeader = 32;

  static size_t Room(size_t nBytes) { return cnHeader + (nBytes + 31) / 32 * 32; }
  StEntry* At(uint64_t nPosition) const { return reinterpret_cast<StEntry*>(m_pRing + nPosition % m_nRing); }
  bool Skip(size_t nRoom);

  const size_t m_nRing;
  uint8_t* const m_pRing;
  std::mutex m_oMutex;  // guards all that follows
  std::condition_variable m_oFilled;
  std::condition_variable m_oEmptied;
  uint64_t m_nHead = 0;  // positions count on, over all rounds
  uint64_t m_nTail = 0;
  bool m_bEnd = false;
};

}  // namespace Recording
