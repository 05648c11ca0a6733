// Finds out whether the platen is covered and, when it is empty, how dirty it is.
#pragma once

#include "MXImageProcessing/Histogram.h"
#include "MXImageProcessing/IpFilterMid.h"
#include "MXTools/FpImage.h"

class ClCalibrateGeometricData;

/// Takes the difference images of a stream. The brightest tenth of the platen decides whether something lies
/// on it; every second difference of an empty platen joins a ring of sixteen, whose sum shows specks that
/// single frames hide in noise.
///
/// Domain   eUint8, one plane, of the size of the calibration's source.
/// Range    levels from 0, clean, to 100.
/// Threads  thread-bound.
/// Cost     one histogram a frame; on an empty platen two filters and 49 histograms every second frame.
///          Allocates with the first sixteen empty frames only.
class ClDirtMeter {
 public:
  enum ESight {
    eCovered,  ///< something lies on the platen
    eEmpty,    ///< nothing lies on it; the level is what it was
    eMeasured  ///< nothing lies on it, and there is a new level
  };

  /// The bounds of the calibration points are the platen. oDifference has the shape of the frames to come.
  ClDirtMeter(const ClCalibrateGeometricData& oCalibration, const ClImage& oDifference);

  /// Begins with an empty ring.
  void Reset();
  ESight Add(const ClImage& oDifference);
  int Level() const { return m_nLevel; }

 private:
  static constexpr int cnRing = 16;
  /// Half-open, in pixels.
  struct StRectangle {
    int nX0, nY0, nX1, nY1;
  };

  static StRectangle PlatenOf(const ClCalibrateGeometricData& oCalibration);
  bool IsCovered(const ClImage& oDifference);
  bool AddEmpty(const ClImage& oDifference);
  int Measure();

  const StRectangle m_oPlaten;
  unsigned int m_nFrames = 0;
  int m_nEmptyFrames = 0;
  int m_nLevel = 0;
  ClImage m_aRing[cnRing];
  ClImage m_oSum;  // of the ring
  ClImage m_oSmooth;
  ClImage m_oGround;
  ClImage m_oSpecks;
  ClIpFilterMid m_oFilter;
  ClHistogram m_oHistogram;
};
