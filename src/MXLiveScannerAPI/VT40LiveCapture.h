// The capture engine of the ten-finger scanner.
#pragma once

#include <memory>

#include "MXLiveScannerAPI/CaptureMode.h"
#include "MXLiveScannerAPI/FrameBuffer.h"
#include "MXLiveScannerAPI/LivenessDetector.h"
#include "MXLiveScannerAPI/RollAssembly.h"
#include "MXLiveScannerAPI/SignatureMode.h"
#include "MXLiveScannerAPI/SignaturePad.h"
#include "MXLiveScannerAPI/VT40Display.h"
#include "MXLiveScannerAPI/VTLiveCaptureBase.h"

/// Switches between the capture modes, one of which is active at a time, and keeps what outlives them. The
/// modes turn the scanner's stream of raw sequences into the images that callers poll.
///
/// Threads    thread-safe but for SetScanner, SetupCalibrationData and destruction. Locks are taken in this
///            order: m_oMutex, m_oSwitchMutex, m_oSensor, m_oFull, and that of m_oPad. Workers take none of
///            the first two, which is why a switch can join them while it holds these.
/// Errors     a worker that fails prints the reason and ends: callers see a time-out, -60.
class ClVT40LiveCapture : public ClVTLiveCaptureBase {
 public:
  /// Loads the liveness library when there is one; without it eCaptureModeAutoLive is refused.
  ClVT40LiveCapture();
  ~ClVT40LiveCapture() override;

  void SetScanner(ClMXVTScanAPIHandleBase* pScanner) override;
  /// pData must be a ClVT40SetupCalibrationData that is set up. Ends in eCaptureModeOff. Errors: -39 for data
  /// of frames that are larger than the sensor's; the scanner's numbers.
  void SetupCalibrationData(ClVTSetupCalibrationDataBase* pData) override;
  void Reset(bool bReset) override;
  void Capture() override;
  void GetImage(ClImage& oImage, ECaptureState& eState, double& dScore) override;
  void GetPreviewImage(ClImage& oImage, ECaptureState& eState, double& dScore) override;
  /// The next frame of the stream, whatever the mode. Waits up to 5 seconds. Errors: -60.
  void GetRollImage(ClImage& oImage, ECaptureState& eState, double& dScore) override;
  void SetDisplayData(unsigned int nType, void* pData, unsigned int nLength) override;
  /// Does nothing when the mode is already set. After any failure the mode is eCaptureModeOff.
  /// Errors: -103 for a mode that this engine does not have, and for eCaptureModeAutoLive without the
  /// liveness library; the scanner's numbers.
  void SetCaptureMode(ECaptureMode eMode) override;

  /// Drops what a mode has gathered so far. Errors: -50 in a mode that gathers nothing.
  void ResetImage();
  /// Keeps the sensor still until Resume: workers wait before their next sequence, as do captures and
  /// switches. The worker of the signature pad goes on.
  void Suspend() KLV_ACQUIRE(m_oSensor) { m_oSensor.lock(); }
  void Resume() KLV_RELEASE(m_oSensor) { m_oSensor.unlock(); }
  /// Those of its calls that wait for a frame, or for the scanner. A caller who has to wait for the end of
  /// one is held back; it calls EndStuckWait now and then.
  ClFrameWaits& Waits() { return m_oWaits; }
  void EndStuckWait() { m_oSensor.EndStuckWait(); }
  /// True: the engine uses the sensor modes that merge columns.
  bool UseSmallImages() const { return m_bSmallImages; }

  /// Non-zero: a finished roll is rotated and centred; takes effect at each Reset. Bound by address like
  /// AutoCaptureBeep.
  unsigned int* RolledPostProcess() { return &m_nRolledPostProcess; }
  /// 0 full height, otherwise half height of the signature area. Errors: -50 while the signature mode is
  /// active.
  void SetSignatureSensorMode(unsigned int nMode);
  unsigned int GetSignatureSensorMode() const { return m_oSettings.oSensorMode.Get(); }
  /// Idle seconds after which a signature counts as finished; 0 never. Errors: -44 below 0 or NaN.
  void SetSignatureDetectTime(double dTime);
  double GetSignatureDetectTime() const { return m_oSettings.dDetectTime; }
  /// Filter width of the signature image, 0.5 to 100. Errors: -44.
  void SetSignatureFilterSigma(double dSigma);
  double GetSignatureFilterSigma() const { return m_oSettings.dFilterSigma; }

 private:
  std::unique_ptr<ClCaptureMode> MakeMode(ECaptureMode eMode) KLV_REQUIRES(m_oSwitchMutex);
  ClCaptureMode& Mode() KLV_REQUIRES(m_oSwitchMutex);
  void StopMode() KLV_REQUIRES(m_oSwitchMutex);
  void ResetMode(bool bReset) KLV_REQUIRES(m_oSwitchMutex, m_oSensor);

  const bool m_bSmallImages = true;
  ClMutex m_oSwitchMutex KLV_ACQUIRED_AFTER(m_oMutex) KLV_ACQUIRED_BEFORE(m_oSensor);
  ClVT40Sensor m_oSensor KLV_ACQUIRED_BEFORE(m_oFull){m_bSmallImages};
  ClFullCapture m_oFull{m_bSmallImages};
  ClFrameWaits m_oWaits;
  ClFrameBuffer m_oFrames;
  ClLivenessDetector m_oLiveness;
  ClRollAssembly m_oRoll;
  ClSignaturePad m_oPad;
  StSignatureSettings m_oSettings;
  ClVT40Display m_oDisplay;
  unsigned int m_nRolledPostProcess = 0;
  std::unique_ptr<const StCaptureRooms> m_pRooms KLV_GUARDED_BY(m_oSwitchMutex);
  std::unique_ptr<ClCaptureMode> m_pOneShot
      KLV_GUARDED_BY(m_oSwitchMutex);  // for as long as no other mode is active
  std::unique_ptr<ClCaptureMode> m_pMode KLV_GUARDED_BY(m_oSwitchMutex);
};
