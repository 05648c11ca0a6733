// The preview that captures by itself.
#pragma once

#include "MXLiveScannerAPI/DirtMeter.h"
#include "MXLiveScannerAPI/FingerDetector.h"
#include "MXLiveScannerAPI/PreviewMode.h"

/// The rectifying worker measures dirt while nothing lies on the platen, the masking worker takes a capture
/// when a finger lies still. It then waits to be fetched by GetImage for five frames.
class ClAutoMode : public ClPreviewMode {
 public:
  /// bLive: captures get a liveness score. Errors: -103 when there is no liveness library.
  ClAutoMode(const StCaptureRooms& oRooms, bool bLive);

  void Reset() override;

 protected:
  void Rectify(ClImage& oOut) override;
  void Publish(TpReadLock<ClImage>& oFrame) override;

 private:
  void Decide(ClFingerDetector::EDecision eDecision, const ClImage& oMask);
  void Capture(const ClImage& oMask);
  bool Shoot() KLV_REQUIRES(m_oSensor, m_oFull);
  void MeasureScore() KLV_REQUIRES(m_oFull);

  const bool m_bLive;
  ClDirtMeter m_oMeter;          // the rectifying worker's
  ClFingerDetector m_oDetector;  // the masking worker's
  int m_nSkipFrames = 0;  // likewise; frames to drop, which were exposed while the sensor was being set
  std::atomic<bool> m_bResetMeter{false};
  std::atomic<bool> m_bResetDetector{false};
};
