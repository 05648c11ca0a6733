// Rolled fingerprints.
#pragma once

#include "MXLiveScannerAPI/RollAssembly.h"
#include "MXLiveScannerAPI/StreamMode.h"

/// What callers read is the print as it grows. Its verdict and its end are reported after the finished print.
class ClRollMode : public ClStreamMode {
 public:
  explicit ClRollMode(const StCaptureRooms& oRooms);

  std::optional<ClVT40Sensor::ERow> Row() const override { return ClVT40Sensor::eRoll; }

 protected:
  void Publish(TpReadLock<ClImage>& oFrame) override;

 private:
  void ReportFinished(long nVerdict);

  ClImage m_oMask;  // the masking worker's
};
