// What every capture mode of the engine is.
#pragma once

#include <optional>

#include "MXLiveScannerAPI/FullCapture.h"
#include "MXLiveScannerAPI/VT40Sensor.h"
#include "MXLiveScannerAPI/VTLiveCaptureBase.h"

class ClFrameBuffer;
class ClFrameWaits;
class ClLivenessDetector;
class ClRollAssembly;
class ClSignaturePad;
struct StSignatureSettings;

/// The variables of the engine that modes write and callers read.
///
/// Threads  thread-safe.
struct StCaptureReport {
  using ECaptureState = ClVTLiveCaptureBase::ECaptureState;

  /// Beeps if the application has asked for it.
  void Beep() const;

  ClMXVTScanAPIHandleBase& oScanner;
  const unsigned int& nAutoCaptureBeep;
  std::atomic<ECaptureState>& eState;
  std::atomic<double>& dScore;
  std::atomic<int>& nCondition;
  std::atomic<long>& nReturnCode;
};

/// What the engine lends to its modes. All of it outlives them.
struct StCaptureRooms {
  const StCaptureReport oReport;
  ClVT40SetupCalibrationData& oSetup;
  const bool bSmallImages;
  ClVT40Sensor& oSensor;
  ClFullCapture& oFull;
  ClFrameWaits& oWaits;
  ClFrameBuffer& oFrames;  ///< to callers, who may still wait for a frame when the mode is gone
  ClLivenessDetector& oLiveness;
  ClRollAssembly& oRoll;
  ClSignaturePad& oPad;
  StSignatureSettings& oSettings;
};

/// One way of capturing: its workers, its buffers and its scratch, from its construction to Stop. The base
/// has no data.
///
/// Threads  thread-bound: the engine serialises all calls by its switch lock.
/// Errors   a call that the mode does not have raises -50, "Invalid capture mode.".
class ClCaptureMode {
 public:
  using ECaptureState = ClVTLiveCaptureBase::ECaptureState;

  ClCaptureMode() = default;
  ClCaptureMode(const ClCaptureMode&) = delete;
  ClCaptureMode& operator=(const ClCaptureMode&) = delete;
  virtual ~ClCaptureMode() = default;

  /// The row that the sensor is set for while the mode is active; none in a mode that sets it for each shot.
  virtual std::optional<ClVT40Sensor::ERow> Row() const { return std::nullopt; }
  /// Forgets what was gathered. Workers may be running.
  virtual void Reset() {}
  /// Starts the workers. The caller holds the sensor, so that they wait before their first frame.
  virtual void Start() {}
  /// Ends the workers, each after the frame in progress, and returns when the last has ended. To be called
  /// before the destruction, also after a Start that raised; the caller does not hold the sensor.
  virtual void Stop() {}

  /// The capture at full resolution. May wait for a frame.
  virtual void GetImage(ClImage& oImage, ECaptureState& eState, double& dScore);
  /// The next preview. May wait for a frame.
  virtual void GetPreviewImage(ClImage& oImage, ECaptureState& eState, double& dScore);
};
