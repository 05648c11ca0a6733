// Whether a capture on demand shows the fingers of the last automatic one, or enough of any.
#pragma once

#include "MXImageProcessing/Histogram.h"
#include "MXImageProcessing/IpFilterMin.h"
#include "MXImageProcessing/IpSubsample.h"
#include "MXTools/FpImage.h"

/// Compares where fingers lie, not their ridges.
///
/// Domain   masks, eUint8, one plane: 255 where no finger lies. The capture has twice the preview's scale.
/// Threads  thread-bound.
class ClMaskChange {
 public:
  /// With bSkipTop the upper fifth, which the first scanners see badly, does not count.
  explicit ClMaskChange(bool bSkipTop) : m_bSkipTop(bSkipTop) {}

  /// True for a capture with enough finger pixels that has lost few of the preview's.
  bool IsComplete(ClImage& oPreviewMask, ClImage& oCaptureMask);

 private:
  /// The pixels of the first mask that the second no longer has, less those that it has in addition.
  int NetLoss(ClImage& oFirst, ClImage& oSecond);
  int FingerPixels(const ClImage& oMask);

  const bool m_bSkipTop;
  ClImage m_oHalfMask;
  ClImage m_oErodedFirst;
  ClImage m_oErodedSecond;
  ClIpSubsample m_oHalve;
  ClIpFilterMin m_oErode;
  ClHistogram m_oHistogram;
};
