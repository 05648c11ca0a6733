// When a call that waits for a frame gives up before its time.
#pragma once

#include <atomic>

/// A worker that has failed brings no frame until the next mode begins, and the calls that wait for one wait
/// out their time. They do not while another call is held back by them.
///
/// Threads  thread-safe.
class ClFrameWaits {
 public:
  /// The workers of a mode begin.
  void Begin() { m_bFailed = false; }
  void Fail() { m_bFailed = true; }
  bool AreInVain() const { return m_bFailed && m_nHeldBack != 0; }

  /// A call that is held back, for a scope.
  class ClHeldBack {
   public:
    explicit ClHeldBack(ClFrameWaits& oWaits) : m_oWaits(oWaits) { ++m_oWaits.m_nHeldBack; }
    ClHeldBack(const ClHeldBack&) = delete;
    ClHeldBack& operator=(const ClHeldBack&) = delete;
    ~ClHeldBack() { --m_oWaits.m_nHeldBack; }

   private:
    ClFrameWaits& m_oWaits;
  };

 private:
  std::atomic<bool> m_bFailed{false};
  std::atomic<unsigned int> m_nHeldBack{0};
};
