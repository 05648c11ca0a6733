// Holds a raw sequence of the scanner for a scope.
#pragma once

#include "MXVTScanAPI/MXVTScanAPIHandleBase.h"

/// Ownership  the sequence is the scan library's; it is lent from construction to Release or destruction.
/// Threads    thread-bound. Construction waits until the scanner has a sequence.
/// Errors     the scanner's numbers, -103 when the scan library cannot lend sequences. The destructor raises
///            nothing.
class ClRawSequenceLock {
 public:
  explicit ClRawSequenceLock(ClMXVTScanAPIHandleBase& oScanner) : m_oScanner(oScanner) {
    m_oScanner.LockRawSequence(&m_pSequence);
  }
  ClRawSequenceLock(const ClRawSequenceLock&) = delete;
  ClRawSequenceLock& operator=(const ClRawSequenceLock&) = delete;
  ~ClRawSequenceLock() {
    try {
      if (!m_bReleased) m_oScanner.ReleaseRawSequence(&m_pSequence);
    } catch (...) {
      // Another failure is already being reported.
    }
  }

  const void* Data() const { return m_pSequence; }
  void Release() {
    m_bReleased = true;
    m_oScanner.ReleaseRawSequence(&m_pSequence);
  }

 private:
  ClMXVTScanAPIHandleBase& m_oScanner;
  void* m_pSequence = nullptr;
  bool m_bReleased = false;
};
