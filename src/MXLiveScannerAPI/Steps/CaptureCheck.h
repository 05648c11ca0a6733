// Whether the fingers of a preview still lay there when the capture after it was exposed.
#pragma once

#include "MXImageProcessing/IpFilterMid.h"
#include "MXImageProcessing/IpSubsample.h"
#include "MXTools/FpImage.h"

class ClVT40SetupCalibrationData;

/// Compares the light of both, without ridges: fingers that left in between have taken their light with them.
///
/// Domain   raw differences of a full and of a preview frame.
/// Threads  thread-bound; nobody else adjusts small raw frames by the same calibration state meanwhile.
/// Errors   the calibration state's.
class ClCaptureCheck {
 public:
  bool IsGood(ClVT40SetupCalibrationData& oSetup, ClImage& oFullRaw, ClImage& oPreviewRaw);

  /// The decision, from two evenly lit and softened pictures of one scale. Margins of a tenth of the width on
  /// both sides, and of a tenth of the height at the end, do not count. A picture that is too small to have
  /// more than margins is not good.
  static bool KeepsItsLight(const ClImage& oPreview, const ClImage& oCapture);

 private:
  ClImage m_oCaptureReduced;
  ClImage m_oCaptureLight;
  ClImage m_oPreviewReduced;
  ClImage m_oPreviewLight;
  ClIpSubsample m_oReduce;
  ClIpFilterMid m_oSoften;
};
