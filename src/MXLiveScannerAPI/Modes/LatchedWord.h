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
  /// Holds the value until Release.
  uint32_t Hold() { return static_cast<uint32_t>(m_nWord |= cnHeld); }
  void Release() { m_nWord &= ~cnHeld; }

 private:
  static constexpr uint64_t cnHeld = uint64_t{1} << 32;
  std::atomic<uint64_t> m_nWord{0};
};
