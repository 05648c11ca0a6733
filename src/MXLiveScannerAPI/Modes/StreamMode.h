// The common part of the modes that stream frames.
#pragma once

#include "MXLiveScannerAPI/CaptureMode.h"
#include "MXLiveScannerAPI/FrameBuffer.h"
#include "MXLiveScannerAPI/FrameRoad.h"
#include "MXLiveScannerAPI/FrameWorker.h"

/// Two workers side by side: one rectifies frame n + 1 while the other masks frame n. The scan library sets
/// the pace.
///
///     sensor -> Rectify -> buffer -> Publish -> the engine's frames, which callers read
class ClStreamMode : public ClCaptureMode {
 public:
  void Start() override;
  void Stop() override;

 protected:
  ClStreamMode(const StCaptureRooms& oRooms, ClFrameRoad::EKind eKind);

  /// Step of the rectifying worker: the raw difference in m_oRoad.Raw() becomes a frame of the target's size.
  virtual void Rectify(ClImage& oOut) { m_oRoad.Rectify(oOut); }
  /// Step of the masking worker, for a frame that it holds until it releases it: masks and publishes.
  virtual void Publish(TpReadLock<ClImage>& oFrame);

  /// Waits for a frame for callers and copies it. Errors: -60 with that text when none came.
  void Fetch(ClImage& oImage, unsigned int nSeconds, const char* szTimeOut);

  const StCaptureRooms& m_oRooms;
  ClVT40Sensor& m_oSensor;
  ClFrameRoad m_oRoad;  // its raw frame is written while the sensor is held

 private:
  void RectifyPass();
  void MaskPass();

  const ClFrameRoad::StSize m_oSize;
  ClFrameBuffer m_oRectified;
  ClFrameWorker m_oRectifying;
  ClFrameWorker m_oMasking;
};
