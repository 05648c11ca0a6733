// What a pen has written on the platen, gathered from frame to frame.
#pragma once

#include "MXLiveScannerAPI/PenDetector.h"
#include "MXLiveScannerAPI/SignatureStrokes.h"
#include "MXLiveScannerAPI/SignatureTiming.h"
#include "MXLiveScannerAPI/SwipeDetector.h"
#include "MXTools/Mutex.h"

/// The strokes, the pause that completes them, and the hand that swipes over them. It outlives the capture
/// mode: the picture of a signature is still there when the mode comes back.
///
/// Threads  thread-safe: one thread follows the pen, others draw and clear.
class ClSignaturePad {
 public:
  using Ticks = ClSignatureTiming::Ticks;
  struct StOutcome {
    ClVTLiveCaptureBase::ECaptureState eState;
    bool bJustDone;  ///< the first frame of a completion
  };

  /// Begins a signature on a pad of that many preview rows. When the height stays the same, the preview keeps
  /// its strokes.
  void Start(int nPreviewHeight, Ticks nNow);
  /// Forgets the strokes.
  void Clear();
  /// Forgets the positions of a hand.
  void ResetSwipe();
  /// To be called for each frame. dDetectTime is the pause, in seconds, that completes a signature; 0 for
  /// never.
  StOutcome Follow(const ClPenDetector::StSight& oSight, Ticks nNow, double dDetectTime);

  /// Strokes of 255 on 0, at the preview's size or drawn into oImage at full size.
  void CopyPreview(ClImage& oImage);
  void Draw(ClImage& oImage);

 private:
  ClMutex m_oMutex;  // nothing is taken below it
  ClSignatureStrokes m_oStrokes KLV_GUARDED_BY(m_oMutex);
  ClSwipeDetector m_oSwipe KLV_GUARDED_BY(m_oMutex);
  ClSignatureTiming m_oTiming KLV_GUARDED_BY(m_oMutex){0};
};
