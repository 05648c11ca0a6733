// From masked frames to a rolled print and its verdict.
#pragma once

#include <atomic>

#include "MXLiveScannerAPI/IpAutoRoll.h"

/// A step with ClIpAutoRoll, of which other threads may request things between frames.
///
/// Threads  thread-bound, but for RequestReset and SetAutoRotate, which are thread-safe: they take effect
///          with the next frame.
/// Errors   the processor's. A verdict is none.
class ClRollAssembly {
 public:
  struct StOutcome {
    ClIpAutoRoll::EProcessorState eState;
    long nVerdict;  ///< 0 or -801 to -805
  };

  /// Drops the roll: the next frame begins on a white print.
  void RequestReset() { m_bReset = true; }
  /// Whether finished rolls are centred and turned upright.
  void SetAutoRotate(bool bAutoRotate) { m_bAutoRotate = bAutoRotate; }
  /// oPrint becomes the print as it now is.
  StOutcome Add(ClImage& oMask, ClImage& oPrint);

 private:
  ClIpAutoRoll m_oAutoRoll;
  std::atomic<bool> m_bReset{false};
  std::atomic<bool> m_bAutoRotate{false};
};
