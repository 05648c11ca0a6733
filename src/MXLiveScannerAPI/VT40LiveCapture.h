// The capture engine of the ten-finger scanner.
#pragma once

#include <boost/thread/mutex.hpp>
#include <boost/thread/thread.hpp>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>

#include "MXImageProcessing/Histogram.h"
#include "MXImageProcessing/IpFilterGauss.h"
#include "MXImageProcessing/IpFilterMid.h"
#include "MXImageProcessing/IpFilterMin.h"
#include "MXImageProcessing/IpFlip.h"
#include "MXImageProcessing/IpInvert.h"
#include "MXImageProcessing/IpScale.h"
#include "MXImageProcessing/IpSubsample.h"
#include "MXLiveScannerAPI/IpAutoRoll.h"
#include "MXLiveScannerAPI/PenDetector.h"
#include "MXLiveScannerAPI/SignatureStrokes.h"
#include "MXLiveScannerAPI/SwipeDetector.h"
#include "MXLiveScannerAPI/VTLiveCaptureBase.h"
#include "MXLiveScannerTools/IpLocalWhiteBalance.h"
#include "MXLiveScannerTools/TpTripleBuffer.h"
#include "MXTools/TicketMutex.h"
#include "MXTools/TpArrayStatic.h"

class ClSignatureTiming;
class ClKelvarinFakeFingerDetectionVT40Wrapper;
class ClVT40SetupCalibrationData;

/// Turns the scanner's stream of raw sequences into the images that callers poll.
///
/// One capture mode is active at a time; each streaming mode is a calibrating worker and a masking worker
/// joined by a triple buffer, and a second triple buffer from there to the caller. The signature pad has one
/// worker. A mode switch stops all workers and builds the next set.
///
/// Threads    thread-safe but for SetScanner, SetupCalibrationData and destruction. Locks are taken in this
///            order: m_oMutex, m_oImageMutex, m_oModeMutex, m_oSensorMutex, m_oFullImageMutex,
///            m_oAutoRollMutex or m_oSignatureMutex; workers take none of the first three, which is why a mode switch can join them
///            while it holds these.
/// Errors     a worker that fails prints the reason and ends: callers see a time-out, -60.
class ClVT40LiveCapture : public ClVTLiveCaptureBase {
 public:
  /// Loads the liveness library when there is one; without it eCaptureModeAutoLive is refused.
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
  /// Errors: -103 for a mode that this engine does not have, and for eCaptureModeAutoLive without the
  /// liveness library; the scanner's numbers.
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
  static constexpr unsigned int cnNoCapture = 5;
  static constexpr int cnMaskDpi = 500;
  static constexpr unsigned int cnMaskWaitSeconds = 3;
  /// The grey value that a white area gets in front of the mask.
  static constexpr unsigned char cnTargetGrey = 224;
  using Lock = boost::unique_lock<boost::mutex>;
  using SensorLock = boost::unique_lock<ClTicketMutex>;

  /// What distinguishes one calibrating worker from another.
  struct StPipeline {
    ClImage& oRaw;
    std::function<void(ClImage&, ClImage&)> fnCalibrate;
    std::function<void(ClImage&, ClImage&, unsigned char)> fnAdjust;
    ClImage& oResult;
  };
  /// The scratch of one calibrating worker.
  struct StScratch {
    ClImage oBalanced;
    ClImage oWarped;
    ClIpLocalWhiteBalance oBalance;
    ClIpFlip oFlip;
  };
  /// One sensor setting: exposure and scan mode; its sequences are one dark and one lit frame.
  struct StSensorRow {
    unsigned short nExposure;
    int nScanMode;
  };
  /// What makes ink of strokes.
  struct StInk {
    ClIpFilterGauss oFilter;
    ClIpScale oScale;
    ClIpInvert oInvert;
  };
  /// Half-open, in pixels.
  struct StRectangle {
    int nX0, nY0, nX1, nY1;
  };

  // Set-up and switching
  void StartMode(ECaptureMode eMode);
  using Worker = void (ClVT40LiveCapture::*)();
  void StartStream(int nWidth, int nHeight, boost::thread& oCalibrating, Worker pfnCalibrate,
                   boost::thread& oMasking, Worker pfnMask);
  void StopAllThreads();
  void InitializeSensor();
  StSensorRow PreviewRow() const;
  StSensorRow RollRow() const;
  StSensorRow FullRow() const;
  void ApplySensorRow(const StSensorRow& oRow);
  /// Selects a scan mode and the lights of a sequence's frames. Errors: the scanner's number.
  void SetSequence(int nScanMode, unsigned int nEntries, std::initializer_list<unsigned long long> aMasks,
                   unsigned int nMasks);
  /// Puts the preview's setting back on the way out with another failure, which stays the one to report.
  void RestorePreviewRow() noexcept;
  static void RunWorker(const std::function<void()>& oWork) noexcept;

  // Preview and streams
  static void CreateDifferenceImage(const void* pRaw, int nWidth, int nHeight, unsigned char* pDst);
  void ReadDifference(ClImage& oDst);
  StPipeline PreviewPipeline();
  void Calibrate(const StPipeline& oPipeline, StScratch& oScratch);
  void CalibrateStream(const StPipeline& oPipeline);
  void CalibratePreviewThread();
  void CalibrateFullThread();
  void MaskThread();
  static bool IsPreviewMode(ECaptureMode eMode);
  /// For image calls behind their lock: a switch may have come first.
  static void CheckMode(bool bAccepted);
  static bool WaitForImage(ClTpTripleBuffer<ClImage>& oBuffer, unsigned int nSeconds);

  // Automatic capture and dirt
  void OpenFakeDetection();
  void CalibratePreviewThreadDirtDetection();
  void MaskThreadAutoDetection();
  void PrepareAutoDetection();
  StRectangle PlatenRectangle() const;
  void UpdateDirt();
  int MeasureDirt();
  void Classify(const ClImage& oMask, int nCount, int nLastCount, uint64_t nMotion);
  void CaptureAutomatically(const ClImage& oMask);
  bool ShootAutomatically();
  bool IsCaptureGood();
  void MeasureScore();

  // Rolled prints
  void CalibrateRollThread();
  void MaskRollThread();
  void ReportFinishedRoll(long nReturnCode);

  // Signature
  bool IsSignatureHalf() const;
  void ApplySignatureRow();
  void StartSignature(int nWidth, int nHeight);
  void SignatureThread();
  void MakeSignatureFrame(ClImage& oRaw) const;
  ECaptureState FollowPen(const ClPenDetector::StSight& oSight, ClSignatureTiming& oTiming);
  void PublishSignature();
  ECaptureState TakeSignatureState();
  void GetSignaturePreview(ClImage& oImage, ECaptureState& eState, double& dScore);
  void GetImageSignature(ClImage& oImage, ECaptureState& eState, double& dScore);
  static void DrawInk(StInk& oInk, ClImage& oStrokes, ClImage& oImage, double dSigma);

  // Full resolution
  void GetImageOneShot(ClImage& oImage, ECaptureState& eState, double& dScore);
  void GetImageStream(ClImage& oImage, ECaptureState& eState, double& dScore);
  void GetImageOnDemand(ClImage& oImage, ECaptureState& eState, double& dScore);
  ECaptureState CaptureOnDemand();
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
  ClImage m_oRollRaw;            // likewise
  ClImage m_oRollCalibrated;     // likewise
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

  // Automatic capture
  std::unique_ptr<ClKelvarinFakeFingerDetectionVT40Wrapper> m_pFakeDetector;
  void* m_hFakeDetection = nullptr;  // null: no liveness library
  /// Frames of the masking worker since the last automatic capture; cnNoCapture: none waits for GetImage.
  std::atomic<unsigned int> m_nFramesSinceCapture{cnNoCapture};
  /// Frames that the masking worker drops: the sensor's settings changed while they were exposed.
  std::atomic<int> m_nSkipFrames{0};
  TpArrayStatic<ClImage> m_aMotionHistory;  // the masking worker's, as the index
  int m_nMotionIndex = 0;
  // The calibrating worker's: the differences of the last dark scenes, their sum, and what is made of it.
  TpArrayStatic<ClImage> m_aDirtHistory;
  ClImage m_oDirtSum;
  int m_nDirtFrames = 0;
  unsigned int m_nPreviewFrames = 0;
  ClImage m_oDirtSmooth;
  ClImage m_oDirtGround;
  ClImage m_oDirtSpecks;
  ClIpFilterMid m_oDirtFilter;
  // Scratch of the comparison of a capture with the preview before it, guarded by m_oFullImageMutex.
  ClImage m_oPreviewAtCapture;
  ClImage m_oCaptureReduced;
  ClImage m_oCaptureLight;
  ClImage m_oPreviewReduced;
  ClImage m_oPreviewLight;
  ClIpSubsample m_oReduce;
  ClIpFilterMid m_oLight;

  ClIpAutoRoll m_oAutoRoll;  // guarded by m_oAutoRollMutex

  ClSignatureStrokes m_oStrokes;  // guarded by m_oSignatureMutex
  ClSwipeDetector m_oSwipe;       // the signature worker's
  StInk m_oPreviewInk;            // guarded by m_oImageMutex
  StInk m_oFullInk;               // guarded by m_oMutex
  ClImage m_oFullStrokes;         // likewise

  ClImage m_aCalibratedImages[3];
  ClTpTripleBuffer<ClImage> m_oCalibratedBuffer;  // calibrating worker to masking worker
  ClImage m_aMaskedImages[3];
  ClTpTripleBuffer<ClImage> m_oMaskedBuffer;  // masking worker to caller
  ClImage m_aSignatureImages[3];
  ClTpTripleBuffer<ClImage> m_oSignatureBuffer;  // signature worker to caller

  boost::thread m_oFullThread;
  boost::thread m_oPreviewThread;
  boost::thread m_oDirtThread;
  boost::thread m_oRollThread;
  boost::thread m_oMaskThread;
  boost::thread m_oAutoDetectionThread;
  boost::thread m_oMaskRollThread;
  boost::thread m_oSignatureThread;

  /// Serialises mode switches against the one shot of eCaptureModeOff and changes of the signature's height.
  boost::mutex m_oModeMutex;
  /// Serialises mode switches against the image calls that wait for a stream.
  boost::mutex m_oImageMutex;
  /// Held while a sequence is locked and while the sensor is set; its order of service lets a capture in
  /// between two frames of a stream.
  ClTicketMutex m_oSensorMutex;
  boost::mutex m_oFullImageMutex;
  boost::mutex m_oAutoRollMutex;
  boost::mutex m_oSignatureMutex;
  boost::mutex m_oDisplayMutex;

  unsigned int m_nRolledPostProcess = 0;
  std::atomic<double> m_dSignatureFilterSigma{2.0};
  std::atomic<double> m_dSignatureDetectTime{2.0};
  std::atomic<unsigned int> m_nSignatureSensorMode{0};
};
