// What every capture engine offers to the device handle.
#pragma once

#include <atomic>

#include "MXTools/FpImage.h"
#include "MXTools/Mutex.h"

class ClBitmap;
class ClMXVTScanAPIHandleBase;
class ClVTSetupCalibrationDataBase;

/// The abstract capture engine: its modes and states, and what needs no knowledge of a sensor pipeline.
///
/// Ownership  neither the scanner nor the calibration state is owned; both outlive the engine.
/// Threads    the image calls and SetCaptureMode are thread-safe in the concrete engine; the words that
///            workers write and callers read are atomic.
class ClVTLiveCaptureBase {
 public:
  enum ECaptureMode : int {
    eCaptureModeOff = 1,       ///< no stream; GetImage takes one shot
    eCaptureModeAutoLive = 2,  ///< preview with automatic capture and a liveness score
    eCaptureModeAuto = 3,      ///< preview with automatic capture
    eCaptureModeRoll = 4,      ///< rolled fingerprint
    eCaptureModeFull = 5,      ///< stream of masked full-resolution images
    eCaptureModePreview = 6,   ///< plain preview; GetImage captures on request
    eCaptureModeSignature = 7  ///< signature pad
  };

  enum ECaptureState : int {
    eCaptureStateNone = -1,        ///< constructed, never reset
    eCaptureStateNoFinger = 0,     ///< nothing usable on the platen
    eCaptureStateFinger = 1,       ///< something is there but not finished
    eCaptureStateDone = 2,         ///< a validated image, a finished roll or signature
    eCaptureStateSwipeBack = 4,    ///< a large object moved towards lower x
    eCaptureStateSwipeForward = 5  ///< a large object moved towards higher x
  };

  ClVTLiveCaptureBase() = default;
  ClVTLiveCaptureBase(const ClVTLiveCaptureBase&) = delete;
  ClVTLiveCaptureBase& operator=(const ClVTLiveCaptureBase&) = delete;
  virtual ~ClVTLiveCaptureBase() = default;

  virtual void SetScanner(ClMXVTScanAPIHandleBase* pScanner);
  virtual void SetupCalibrationData(ClVTSetupCalibrationDataBase* pData) = 0;
  /// Puts the sensor in the state of the current mode; with bReset also clears what the last capture left.
  virtual void Reset(bool bReset) = 0;
  virtual void Capture() = 0;
  /// The captured image at full resolution, its state and score. May wait for a frame.
  virtual void GetImage(ClImage& oImage, ECaptureState& eState, double& dScore) = 0;
  /// The next preview. Waits up to 15 seconds. Errors: -60 when none came, -50 in a mode without preview.
  virtual void GetPreviewImage(ClImage& oImage, ECaptureState& eState, double& dScore) = 0;
  virtual void GetRollImage(ClImage& oImage, ECaptureState& eState, double& dScore) = 0;
  virtual void SetDisplayData(unsigned int nType, void* pData, unsigned int nLength) = 0;
  /// Version texts: 0 the scan library, 1 firmware, 2 FPGA, 3 hardware, 4 the device's library.
  /// *pnLength comes in as the room and goes out as the length with its terminator.
  /// Errors: -44 another identifier; -103 not reported by the scanner; -702 too small or szBuffer NULL,
  /// length stored.
  virtual void GetVersionInfo(unsigned int nVersionId, char* szBuffer, unsigned int* pnLength);
  virtual void Beep(unsigned int nArg1, unsigned int nArg2);
  virtual void SetCaptureMode(ECaptureMode eMode) = 0;
  virtual ECaptureMode GetCaptureMode() { return m_eCaptureMode; }

  ECaptureState GetDetectState() const { return m_eDetectState; }
  /// Sets the state, whatever it was. A state that a worker has set meanwhile is lost; to take a capture that
  /// was delivered, use TakeDone.
  void SetDetectState(ECaptureState eState) { m_eDetectState = eState; }
  /// To be called when a finished capture was delivered: "done" becomes "no finger". Any other state stays.
  void TakeDone() {
    ECaptureState eDone = eCaptureStateDone;
    m_eDetectState.compare_exchange_strong(eDone, eCaptureStateNoFinger);
  }
  /// The outcome of the last roll: 0 or -801 to -805.
  long GetReturnCode() const { return m_nReturnCode; }
  /// Dirt level of the platen, 0 clean to 100.
  int GetScannerCondition() const { return m_nScannerCondition; }
  /// Non-zero: the engine beeps on each completed capture. Bound by address to the property of the handle,
  /// which reads and writes it atomically.
  unsigned int* AutoCaptureBeep() { return &m_nAutoCaptureBeep; }

  /// Two single exposures under the two illuminations and their difference, the second less the first. The
  /// bitmaps have the size that is asked for. Errors: -60 "scanner disconnected".
  void CaptureCurrent(ClBitmap& oBitmap1, ClBitmap& oBitmap2, ClImage& oResult, unsigned char nIllumination2,
                      unsigned char nIllumination1);

 protected:
  std::atomic<double> m_dScore{0.0};
  std::atomic<int> m_nScannerCondition{0};
  unsigned int m_nAutoCaptureBeep = 0;
  /// Held by GetImage for its whole length.
  ClMutex m_oMutex;
  ClMXVTScanAPIHandleBase* m_pScanner = nullptr;
  std::atomic<ECaptureMode> m_eCaptureMode{eCaptureModeOff};
  std::atomic<ECaptureState> m_eDetectState{eCaptureStateNone};
  std::atomic<long> m_nReturnCode{0};
};
