// The preview with captures on demand.
#pragma once

#include "MXLiveScannerAPI/StreamMode.h"

class ClPreviewMode : public ClStreamMode {
 public:
  explicit ClPreviewMode(const StCaptureRooms& oRooms)
      : ClStreamMode(oRooms, ClFrameRoad::ePreview), m_oFull(oRooms.oFull) {}

  std::optional<ClVT40Sensor::ERow> Row() const override { return ClVT40Sensor::ePreview; }
  /// The automatic capture that is offered, or one that is taken now, between two frames of the preview.
  void GetImage(ClImage& oImage, ECaptureState& eState, double& dScore) override;
  /// Waits up to 15 seconds. Errors: -60.
  void GetPreviewImage(ClImage& oImage, ECaptureState& eState, double& dScore) override;

 protected:
  ClFullCapture& m_oFull;
};
