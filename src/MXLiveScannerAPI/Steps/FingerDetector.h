// Decides for each frame of a stream whether a finger lies still.
#pragma once

#include "MXImageProcessing/Histogram.h"
#include "MXTools/FpImage.h"

/// Counts the finger pixels of the masked frame and compares the frame with the one before.
///
/// Domain   a rectified frame and its mask, eUint8, one plane, of one size; finger pixels of the mask are
///          below 255.
/// Threads  thread-bound.
/// Cost     two passes; keeps one frame, and allocates with the first one only.
class ClFingerDetector {
 public:
  enum EDecision {
    eNoFinger,  ///< too few pixels, or too much motion
    eUnsteady,  ///< a finger whose size changes
    eSteady     ///< a finger that can be captured
  };

  /// Forgets the frame before; the next one is compared with black.
  void Reset();
  EDecision Add(const ClImage& oFrame, const ClImage& oMask);

 private:
  ClImage m_oPrevious;
  bool m_bPrevious = false;
  int m_nPreviousCount = 0;
  ClHistogram m_oHistogram;
};
