// The capture engine of the ten-finger scanner.
#pragma once

#include <boost/thread/mutex.hpp>
#include <boost/thread/thread.hpp>
#include <cstdint>
#include <functional>

#include "MXImageProcessing/Histogram.h"
#include "MXImageProcessing/IpFilterMin.h"
#include "MXImageProcessing/IpFlip.h"
#include "MXImageProcessing/IpSubsample.h"
#include "MXLiveScannerAPI/VTLiveCaptureBase.h"
#include "MXLiveScannerTools/IpLocalWhiteBalance.h"
#include "MXLiveScannerTools/TpTripleBuffer.h"
#include "MXTools/TicketMutex.h"

class ClVT40SetupCalibrationData;

/// Turns the scanner's stream of raw sequences into the images that callers poll.
///
/// One capture mode is active at a time; each streaming mode is a calibrating worker and a masking worker
/// joined by a triple buffer, and a second triple buffer from there to the caller. A mode switch stops all
/// workers and builds the next set.
///
/// Threads    thread-safe but for SetScanner, SetupCalibrationData and destruction. Locks are taken in this
///            order: m_oMutex, m_oImageMutex, m_oModeMutex, m_oSensorMutex, m_oFullImageMutex; workers take
///            the last two at most, which is why a mode switch can join them while it holds the others.
/// Errors     a worker that fails prints the reason and ends: callers see a time-out, -60.
class ClVT40LiveCapture : public ClVTLiveCaptureBase {
 public:
  ClVT40LiveCapture();
  ~ClVT40LiveCapture() override;

  /// pData must be a ClVT40SetupCalibrationData that is set up. Ends in eCaptureModeOff. Errors: -39 for data
  /// of frames that are larger than the sensor's; the scanner's numbers.
  void SetupCalibrationData(ClVTSetupCalibrationDataBase* pData) override;
  void Reset(bool bReset) override;
  void Capture() override;
  void GetImage(ClImage& oImage, ECaptureState& eState, double& dScore) override;
  void GetPreviewImage(ClImage& oImage, ECaptureState& eState, double& dScore) override;
  void GetRollImage(ClImage& oImage, ECaptureState& eState, double& dScore) override;
  void SetDisplayData(unsigned int nType, void* pData, unsigned int nLength) override;
  /// Does nothing when the mode is already set. After any failure the mode is eCaptureModeOff.
  /// Errors: -103 for a mode that this engine does not have; the scanner's numbers.
  void SetCaptureMode(ECaptureMode eMode) override;

  /// Drops what a mode has gathered so far. Errors: -50 in a mode that gathers nothing.
  void ResetImage();
  /// Keeps the sensor still: workers wait in front of their next sequence until Resume.
  void Suspend() { m_oSensorMutex.lock(); }
  void Resume() { m_oSensorMutex.unlock(); }
  /// True: the engine uses the sensor modes that merge columns.
  bool UseSmallImages() const { return m_bSmallImages; }

  /// Non-zero: a finished roll is rotated and centred; taken on at each Reset. Bound by address like
  /// AutoCaptureBeep.
  unsigned int* RolledPostProcess() { return &m_nRolledPostProcess; }
  /// 0 full height, otherwise half height of the signature area. Errors: -50 while the signature mode is
  /// active.
  void SetSignatureSensorMode(unsigned int nMode);
  unsigned int GetSignatureSensorMode() const { return m_nSignatureSensorMode; }
  /// Idle seconds after which a signature counts as finished; 0 never. Errors: -44 below 0 or NaN.
  void SetSignatureDetectTime(double dTime);
  double GetSignatureDetectTime() const { return m_dSignatureDetectTime; }
  /// Filter width of the signature image, 0.5 to 100. Errors: -44.
  void SetSignatureFilterSigma(double dSigma);
  double GetSignatureFilterSigma() const { return m_dSignatureFilterSigma; }

 private:
  using Lock = boost::unique_lock<boost::mutex>;
  using SensorLock = boost::unique_lock<ClTicketMutex>;

  /// What distinguishes one calibrating worker from another.
  struct StPipeline {
    ClImage& oRaw;
    std::function<void(ClImage&, ClImage&)> fnCalibrate;
    std::function<void(ClImage&, ClImage&, unsigned char)> fnAdjust;
    ClImage& oResult;
  };
  /// One sensor setting: exposure, scan mode and the light of each frame of a sequence.
  struct StSensorRow {
    unsigned short nExposure;
    int nScanMode;
    unsigned int nEntries;
  };

  // Set-up and switching
  void StartMode(ECaptureMode eMode);
  void StartStream(int nWidth, int nHeight, boost::thread& oCalibrating,
                   void (ClVT40LiveCapture::*pfnCalibrate)());
  void StopAllThreads();
  void InitializeSensor();
  StSensorRow PreviewRow() const;
  StSensorRow FullRow() const;
  void ApplySensorRow(const StSensorRow& oRow);
  template <typename TWork>
  static void RunWorker(TWork&& oWork) noexcept;

  // Preview and streams
  static void CreateDifferenceImage(const void* pRaw, int nWidth, int nHeight, unsigned char* pDst);
  void ReadDifference(ClImage& oDst);
  void CalibrateStream(const StPipeline& oPipeline);
  void CalibratePreviewThread();
  void CalibrateFullThread();
  void MaskThread();
  /// For image calls behind their lock. Errors: -50 when a switch came first.
  void CheckMode(ECaptureMode eMode) const;
  static bool WaitForImage(ClTpTripleBuffer<ClImage>& oBuffer, unsigned int nSeconds);

  // Full resolution
  void GetImageOneShot(ClImage& oImage, ECaptureState& eState, double& dScore);
  void GetImageStream(ClImage& oImage, ECaptureState& eState, double& dScore);
  void GetImageOnDemand(ClImage& oImage, ECaptureState& eState, double& dScore);
  void CaptureHires(ClImage& oImage);
  void CalibrateHighres();
  void MaskHighRes();
  void CalibrateAndMask();
  static int GetFingerPixel(const ClImage& oImage);
  void CompareMask(ClImage& oFirst, ClImage& oSecond, int* pnGained, int* pnLost);

  // Display
  void WriteLCD(unsigned char nValue, bool bCommand);
  void WriteLCDBus(unsigned char nBus);

  ClVT40SetupCalibrationData* m_pSetup = nullptr;
  const bool m_bSmallImages = true;

  ClImage m_oPreviewRaw;         // written by the calibrating worker of the mode
  ClImage m_oPreviewCalibrated;  // likewise
  ClImage m_oFullRaw;            // the worker of eCaptureModeFull, else whoever holds m_oFullImageMutex
  ClImage m_oFullCalibrated;     // likewise
  ClImage m_oFullMask;           // guarded by m_oFullImageMutex
  ClImage m_oPreviewMask;        // guarded by m_oFullImageMutex; 255 where nothing was seen yet

  // Scratch of a full-resolution capture, guarded by m_oFullImageMutex.
  ClImage m_oHighresBalanced;
  ClImage m_oHighresWarped;
  ClImage m_oHalfMask;
  ClImage m_oErodedFirst;
  ClImage m_oErodedSecond;
  ClIpLocalWhiteBalance m_oHighresBalance;
  ClIpFlip m_oHighresFlip;
  ClIpSubsample m_oHalve;
  ClIpFilterMin m_oErode;

  ClImage m_aCalibratedImages[3];
  ClTpTripleBuffer<ClImage> m_oCalibratedBuffer;  // calibrating worker to masking worker
  ClImage m_aMaskedImages[3];
  ClTpTripleBuffer<ClImage> m_oMaskedBuffer;  // masking worker to caller

  boost::thread m_oFullThread;
  boost::thread m_oPreviewThread;
  boost::thread m_oMaskThread;

  /// Serialises mode switches against the one shot of eCaptureModeOff.
  boost::mutex m_oModeMutex;
  /// Serialises mode switches against the image calls that wait for a stream.
  boost::mutex m_oImageMutex;
  /// Held while a sequence is locked and while the sensor is set; its order of service lets a capture in
  /// between two frames of a stream.
  ClTicketMutex m_oSensorMutex;
  boost::mutex m_oFullImageMutex;
  boost::mutex m_oDisplayMutex;

  unsigned int m_nRolledPostProcess = 0;
  std::atomic<double> m_dSignatureFilterSigma{2.0};
  std::atomic<double> m_dSignatureDetectTime{2.0};
  std::atomic<unsigned int> m_nSignatureSensorMode{0};
};
