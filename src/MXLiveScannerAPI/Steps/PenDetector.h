// Finds what moves over the signature pad: the tip of a pen, or something large.
#pragma once

#include "MXImageProcessing/IpFilterMid.h"
#include "MXImageProcessing/IpScale.h"
#include "MXImageProcessing/IpSubsample.h"
#include "MXImageProcessing/IpSubtract.h"
#include "MXTools/FpImage.h"

/// Compares each frame with the mean of the last eight and with the one before.
///
/// Domain     lit frames of one size, flattened to the signature's target grey.
/// Units      positions in pixels of the whole frame; x is mirrored and counts from its right edge.
/// Ownership  keeps copies at half the size; no frame beyond a call.
/// Threads    thread-bound.
/// Cost       some passes over a quarter of the pixels; allocates with the first two frames only.
class ClPenDetector {
 public:
  enum EKind {
    eFirstFrame,  ///< nothing to compare with yet
    eNothing,
    ePen,
    eLargeObject
  };

  struct StSight {
    EKind eKind = eNothing;
    // A pen's position, and the number of pixels that it is the mean of.
    double dX = 0.0;
    double dMeanY = 0.0;
    int nWeight = 0;
    double dWide = 0.0;  ///< x of a large object
  };

  /// With bHalfHeight frames show the upper half of the pad, and are searched down to their last row.
  ClPenDetector(int nWidth, int nHeight, bool bHalfHeight);

  /// Scales the frame in place.
  StSight Detect(ClImage& oFrame);

 private:
  struct StPlace {
    int nX = 0;
    int nY = 0;
    int nValue = 0;
  };
  /// The number of pixels of a spot, and sums over their positions.
  struct StSpot {
    int nCount = 0;
    int nX = 0, nY = 0;
    int nXX = 0, nYY = 0;
  };

  void RemoveBackground();
  StSight LookForPen();
  StPlace FindBrightest() const;
  StSight Classify(const StSpot& oNear, const StSpot& oWide) const;

  const int m_nFrameWidth;
  const int m_nWidth, m_nHeight;  ///< of the halved frames
  const int m_nFirstX, m_nEndX, m_nFirstY, m_nEndY;

  ClImage m_oFrame;     // what differs from the mean of the last ones, without its large areas
  ClImage m_oPrevious;  // that of the frame before
  ClImage m_oSmooth;
  ClImage m_oChange;
  ClImage m_aHistory[8];
  ClImage m_oSum;  // of the history, 16 bits
  unsigned int m_nHistory = 0;

  ClIpScale m_oScale;
  ClIpSubsample m_oHalve;
  ClIpFilterMid m_oMean;
  ClIpSubtract m_oSubtract;
};
