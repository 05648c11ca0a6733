// What one frame of a roll shows of the finger.
#pragma once

#include "MXImageProcessing/BitPlane.h"
#include "MXLiveScannerAPI/RollMeans.h"
#include "MXTools/FpImage.h"

/// Where the finger lies in a frame, and its ridges.
///
/// Domain   frames of ClIpAutoRoll.
/// Threads  thread-bound.
class ClRollFrame {
 public:
  /// How much the ridges of two frames differ.
  struct StDifference {
    uint64_t nSum = 0;    ///< of the squared differences
    uint64_t nCount = 0;  ///< of the pixels that the finger covers in both frames
  };

  /// Becomes a frame without a finger.
  void Clear(int nWidth, int nHeight);
  /// Finds where the finger lies.
  void Take(const ClImage& oFrame);
  /// Finds the area and the ridges of the frame that was taken last.
  void MeasureRidges(const ClImage& oFrame, ClRollMeans& oMeans, ClImage& oScratch);
  /// Domain: a frame of the same size; the ridges of both are measured.
  StDifference DifferenceFrom(const ClRollFrame& oOther) const;

  /// The pixels that are not white, and those that are below middle grey.
  const ClBitPlane& Covered() const { return m_oCovered; }
  const ClBitPlane& Dark() const { return m_oDark; }

 private:
  ClBitPlane m_oCovered;
  ClBitPlane m_oDark;
  /// Where the mean over a window of some ridges is not white.
  ClBitPlane m_oArea;
  /// Softened: 255 where everything is below its surroundings. Of meaning inside of the box alone, which
  /// holds the area.
  ClImage m_oRidges;
  ClBitPlane::StBox m_oBox;
};
