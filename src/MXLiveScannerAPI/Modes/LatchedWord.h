// A setting that cannot change while it is in use.
#pragma once

#include <atomic>
#include <cstdint>

/// Threads  thread-safe.
class ClLatchedWord {
 public:
  uint32_t Get() const { return static_cast<uint32_t>(m_nWord); }
  /// False, and nothing stored, while it is held.
  bool Set(uint32_t nValue) {
    uint64_t nBefore = m_nWord;
    do {
      if ((nBefore & cnHeld) != 0) return false;
    } while (!m_nWord.compare_exchange_weak(nBefore, nValue));
    return true;
  }

 private:
  friend class ClLatch;

  static constexpr uint64_t cnHeld = uint64_t{1} << 32;
  std::atomic<uint64_t> m_nWord{0};
};

/// Holds a word, of one user at a time, for as long as it stands.
class ClLatch {
 public:
  explicit ClLatch(ClLatchedWord& rWord)
      : m_rWord(rWord), m_nValue(static_cast<uint32_t>(rWord.m_nWord |= ClLatchedWord::cnHeld)) {}
  ClLatch(const ClLatch&) = delete;
  ClLatch& operator=(const ClLatch&) = delete;
  ~ClLatch() { m_rWord.m_nWord &= ~ClLatchedWord::cnHeld; }

  uint32_t Value() const { return m_nValue; }

 private:
  ClLatchedWord& m_rWord;
  const uint32_t m_nValue;
};
