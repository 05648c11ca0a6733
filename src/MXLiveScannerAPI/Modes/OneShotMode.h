// The mode without a stream.
#pragma once

#include "MXLiveScannerAPI/CaptureMode.h"

/// GetImage takes one shot: the scanner's capture runs for as long as that takes.
class ClOneShotMode : public ClCaptureMode {
 public:
  explicit ClOneShotMode(const StCaptureRooms& oRooms)
      : m_oScanner(oRooms.oReport.oScanner), m_oSensor(oRooms.oSensor), m_oFull(oRooms.oFull) {}

  void GetImage(ClImage& oImage, ECaptureState& eState, double& dScore) override;

 private:
  ClMXVTScanAPIHandleBase& m_oScanner;
  ClVT40Sensor& m_oSensor;
  ClFullCapture& m_oFull;
};
