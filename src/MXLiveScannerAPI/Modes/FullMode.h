// The stream of masked full-resolution images.
#pragma once

#include "MXLiveScannerAPI/StreamMode.h"

class ClFullMode : public ClStreamMode {
 public:
  explicit ClFullMode(const StCaptureRooms& oRooms) : ClStreamMode(oRooms, ClFrameRoad::eFull) {}

  std::optional<ClVT40Sensor::ERow> Row() const override { return ClVT40Sensor::eFull; }
  /// The next frame. Waits up to 10 seconds. Errors: -60.
  void GetImage(ClImage& oImage, ECaptureState& eState, double& dScore) override;
};
