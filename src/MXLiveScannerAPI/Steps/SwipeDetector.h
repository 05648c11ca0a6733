// Recognises a hand that is wiped over the signature pad to one side or the other.
#pragma once

#include <cstdint>

#include "MXLiveScannerAPI/VTLiveCaptureBase.h"

/// Threads  thread-bound.
class ClSwipeDetector {
 public:
  void Reset() { m_nSwipeSamples = 0; }
  /// Takes the position of the large object in the newest frame, in sensor pixels, and judges the last ten.
  ClVTLiveCaptureBase::ECaptureState Add(int nX);

 private:
  static constexpr unsigned int cnRing = 20;

  int m_aSwipeX[cnRing] = {};
  uint64_t m_nSwipeSamples = 0;
};
