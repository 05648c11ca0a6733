// Set-up of the ten-finger engine and switching between its capture modes.
#include "MXLiveScannerAPI/VT40LiveCapture.h"

#include <algorithm>

#include "MXLibraryLoaders/KelvarinFakeFingerDetectionVT40Wrapper.h"
#include "MXLiveScannerAPI/VT40SetupCalibrationData.h"
#include "MXTools/AtomicAccess.h"
#include "MXTools/Exception.h"
#include "MXVTScanAPI/MXVTScanAPIHandleBase.h"

namespace {

/// How often a worker that must end is woken again until it has.
constexpr long cnWakeIntervalMs = 20;
/// Frames that the rings of the automatic capture hold.
constexpr unsigned int cnHistory = 16;
/// Lights of the longest sequence.
constexpr size_t cnMaxMasks = 6;

void NewFrame(ClImage& oImage, int nWidth, int nHeight) {
  oImage.NewWithType(ClImage::eUint8, nWidth, nHeight, 1, 0, 0, true);
}

int AsInt(unsigned int n) {
  return static_cast<int>(n);
}

/// Raw sequences have the sensor's size, whatever the calibration data say.
void CheckSourceSize(const ClCalibrateGeometricData& oData, const ScannerTypes::Resolution& oSensor) {
  if (oData.m_nSourceWidth > oSensor.nWidth || oData.m_nSourceHeight > oSensor.nHeight) {
    KLV_RAISE(ClException, "invalid calibration data found in scanner eprom.", -39);
  }
}

}  // namespace

ClVT40LiveCapture::ClVT40LiveCapture() : m_aMotionHistory(cnHistory), m_aDirtHistory(cnHistory) {
  m_nScannerCondition = 100;
  OpenFakeDetection();
}

ClVT40LiveCapture::~ClVT40LiveCapture() {
  StopAllThreads();
  if (m_hFakeDetection == nullptr) return;
  m_pFakeDetector->FD_VT40DestroyHandle(&m_hFakeDetection);
  m_pFakeDetector->FD_VT40Uninitialize();
}

void ClVT40LiveCapture::SetupCalibrationData(ClVTSetupCalibrationDataBase* pData) {
  m_pSetup = static_cast<ClVT40SetupCalibrationData*>(pData);
  const ClCalibrateGeometricData& oPreview = m_pSetup->GetGeometricDataPreview(m_bSmallImages);
  const ClCalibrateGeometricData& oFull = m_pSetup->GetGeometricDataFull(m_bSmallImages);
  using Scanner = ClMXVTScanAPIHandleBase;
  CheckSourceSize(oPreview, m_bSmallImages ? Scanner::m_oResVT40_960x1360 : Scanner::m_oResVT40Half);
  CheckSourceSize(oFull, m_bSmallImages ? Scanner::m_oResVT40_1920x2720 : Scanner::m_oResVT40Full);
  NewFrame(m_oPreviewRaw, AsInt(oPreview.m_nSourceWidth), AsInt(oPreview.m_nSourceHeight));
  NewFrame(m_oPreviewCalibrated, AsInt(oPreview.m_nTargetWidth), AsInt(oPreview.m_nTargetHeight));
  NewFrame(m_oFullRaw, AsInt(oFull.m_nSourceWidth), AsInt(oFull.m_nSourceHeight));
  NewFrame(m_oFullCalibrated, AsInt(oFull.m_nTargetWidth), AsInt(oFull.m_nTargetHeight));
  NewFrame(m_oRollRaw, AsInt(oFull.m_nSourceWidth / 2), AsInt(oFull.m_nSourceHeight / 2 + 2));
  NewFrame(m_oRollCalibrated, AsInt(oFull.m_nTargetWidth / 2), AsInt(oFull.m_nTargetHeight / 2));
  NewFrame(m_oFullMask, AsInt(oFull.m_nTargetWidth), AsInt(oFull.m_nTargetHeight));
  NewFrame(m_oPreviewMask, AsInt(oPreview.m_nTargetWidth), AsInt(oPreview.m_nTargetHeight));
  m_oPreviewMask = static_cast<unsigned char>(255);
  // No mode, so that the switch to "off" is not skipped.
  m_eCaptureMode = static_cast<ECaptureMode>(0);
  SetCaptureMode(eCaptureModeOff);
}

void ClVT40LiveCapture::SetCaptureMode(ECaptureMode eMode) {
  if (eMode == m_eCaptureMode) return;
  Lock oImageLock(m_oImageMutex);
  Lock oModeLock(m_oModeMutex);
  StopAllThreads();
  SensorLock oSensorLock(m_oSensorMutex);
  try {
    if (m_eCaptureMode == eCaptureModeOff) m_pScanner->EnableCaptureThread(true);
    m_eCaptureMode = eMode;
    StartMode(eMode);
  } catch (...) {
    m_eCaptureMode = eCaptureModeOff;
    // A worker that was started already waits for the sensor in front of its first frame.
    oSensorLock.unlock();
    StopAllThreads();
    try {
      m_pScanner->EnableCaptureThread(false);
    } catch (...) {
      // The first failure is the one to report.
    }
    throw;
  }
}

void ClVT40LiveCapture::StartMode(ECaptureMode eMode) {
  const ClCalibrateGeometricData& oPreview = m_pSetup->GetGeometricDataPreview(m_bSmallImages);
  const ClCalibrateGeometricData& oFull = m_pSetup->GetGeometricDataFull(m_bSmallImages);
  switch (eMode) {
    case eCaptureModeOff:
      m_pScanner->EnableCaptureThread(false);
      Reset(false);
      break;
    case eCaptureModeFull:
      Reset(true);
      StartStream(AsInt(oFull.m_nTargetWidth), AsInt(oFull.m_nTargetHeight), m_oFullThread,
                  &ClVT40LiveCapture::CalibrateFullThread, m_oMaskThread, &ClVT40LiveCapture::MaskThread);
      break;
    case eCaptureModePreview:
      Reset(true);
      StartStream(AsInt(oPreview.m_nTargetWidth), AsInt(oPreview.m_nTargetHeight), m_oPreviewThread,
                  &ClVT40LiveCapture::CalibratePreviewThread, m_oMaskThread, &ClVT40LiveCapture::MaskThread);
      break;
    case eCaptureModeAutoLive:
      if (m_hFakeDetection == nullptr) {
        KLV_RAISE(ClException, "LiveDetection not available in this release.", -103);
      }
      [[fallthrough]];
    case eCaptureModeAuto:
      Reset(true);
      StartStream(AsInt(oPreview.m_nTargetWidth), AsInt(oPreview.m_nTargetHeight), m_oDirtThread,
                  &ClVT40LiveCapture::CalibratePreviewThreadDirtDetection, m_oAutoDetectionThread,
                  &ClVT40LiveCapture::MaskThreadAutoDetection);
      break;
    case eCaptureModeRoll:
      Reset(true);
      {
        Lock oAutoRollLock(m_oAutoRollMutex);
        m_oAutoRoll.ResetProcessor();
      }
      StartStream(AsInt(oFull.m_nTargetWidth / 2), AsInt(oFull.m_nTargetHeight / 2), m_oRollThread,
                  &ClVT40LiveCapture::CalibrateRollThread, m_oMaskRollThread,
                  &ClVT40LiveCapture::MaskRollThread);
      break;
    case eCaptureModeSignature:
      Reset(true);
      StartSignature(AsInt(oPreview.m_nTargetWidth), AsInt(oPreview.m_nTargetHeight));
      break;
    default:
      KLV_RAISE(ClException, "Unknown capture mode.", -103);
  }
}

void ClVT40LiveCapture::StartStream(int nWidth, int nHeight, boost::thread& oCalibrating, Worker pfnCalibrate,
                                    boost::thread& oMasking, Worker pfnMask) {
  m_oCalibratedBuffer.SetBuffer(&m_aCalibratedImages[0], &m_aCalibratedImages[1], &m_aCalibratedImages[2]);
  // GetRollImage takes no lock of the engine: while it reads, this raises and its image stays.
  m_oMaskedBuffer.SetBuffer(&m_aMaskedImages[0], &m_aMaskedImages[1], &m_aMaskedImages[2]);
  for (ClImage& oImage : m_aCalibratedImages) NewFrame(oImage, nWidth, nHeight);
  for (ClImage& oImage : m_aMaskedImages) NewFrame(oImage, nWidth, nHeight);
  oCalibrating = boost::thread(pfnCalibrate, this);
  oMasking = boost::thread(pfnMask, this);
}

void ClVT40LiveCapture::StopAllThreads() {
  boost::this_thread::disable_interruption oNoInterruption;
  boost::thread* const aThreads[] = {&m_oFullThread,     &m_oPreviewThread,  &m_oDirtThread,
                                     &m_oRollThread,     &m_oMaskThread,     &m_oAutoDetectionThread,
                                     &m_oMaskRollThread, &m_oSignatureThread};
  for (boost::thread* pThread : aThreads) pThread->interrupt();
  for (boost::thread* pThread : aThreads) {
    if (!pThread->joinable()) continue;
    do {
      m_oCalibratedBuffer.InterruptWait();
      m_oMaskedBuffer.InterruptWait();
      m_oSignatureBuffer.InterruptWait();
    } while (!pThread->timed_join(boost::posix_time::milliseconds(cnWakeIntervalMs)));
  }
  m_oCalibratedBuffer.InterruptWait();
  m_oMaskedBuffer.InterruptWait();
  m_oSignatureBuffer.InterruptWait();
}

void ClVT40LiveCapture::Reset(bool bReset) {
  if (bReset) {
    m_eDetectState = eCaptureStateNoFinger;
    m_dScore = 0.0;
    m_nFramesSinceCapture = cnNoCapture;
    m_nSkipFrames = 0;
    Lock oFullImageLock(m_oFullImageMutex);
    m_oFullMask = static_cast<unsigned char>(255);
    m_oFullRaw = static_cast<unsigned char>(0);
  }
  InitializeSensor();
  Lock oAutoRollLock(m_oAutoRollMutex);
  m_oAutoRoll.SetAutoRotate(KlvAtomicLoad(m_nRolledPostProcess) != 0);
}

void ClVT40LiveCapture::InitializeSensor() {
  const unsigned int nGain = m_pSetup->GetGainLevel(1);
  m_pScanner->SetGain(AsInt(nGain & 0xFF), AsInt(nGain >> 8 & 0xFF), AsInt(nGain >> 16 & 0xFF));
  m_nScannerCondition = 0;
  m_oSwipe.Reset();
  switch (m_eCaptureMode) {
    case eCaptureModeOff:
      break;
    case eCaptureModeFull:
      ApplySensorRow(FullRow());
      break;
    case eCaptureModePreview:
      ApplySensorRow(PreviewRow());
      break;
    case eCaptureModeAutoLive:
    case eCaptureModeAuto:
      ApplySensorRow(PreviewRow());
      PrepareAutoDetection();
      break;
    case eCaptureModeRoll:
      ApplySensorRow(RollRow());
      break;
    case eCaptureModeSignature:
      ApplySignatureRow();
      break;
    default:
      KLV_RAISE(ClException, "Capture mode not implemented (should never happen.", -103);
  }
}

ClVT40LiveCapture::StSensorRow ClVT40LiveCapture::PreviewRow() const {
  const unsigned int nExposure = m_pSetup->GetExposure();
  if (m_bSmallImages) return {static_cast<unsigned short>(nExposure), 35};
  return {static_cast<unsigned short>(nExposure / 2), 32};
}

ClVT40LiveCapture::StSensorRow ClVT40LiveCapture::RollRow() const {
  const unsigned int nExposure = m_pSetup->GetExposure();
  if (m_bSmallImages) return {static_cast<unsigned short>(nExposure * 4), 36};
  return {static_cast<unsigned short>(nExposure * 2), 8};
}

ClVT40LiveCapture::StSensorRow ClVT40LiveCapture::FullRow() const {
  const unsigned int nExposure = m_pSetup->GetExposure();
  if (m_bSmallImages) return {static_cast<unsigned short>(nExposure * 2), 34};
  return {static_cast<unsigned short>(nExposure), 7};
}

void ClVT40LiveCapture::ApplySensorRow(const StSensorRow& oRow) {
  m_pScanner->SetVSYNCLength(oRow.nExposure);
  // One dark and one lit frame: their difference cancels the ambient light.
  SetSequence(oRow.nScanMode, 2, {0, 1}, 2);
}

void ClVT40LiveCapture::SetSequence(int nScanMode, unsigned int nEntries,
                                    std::initializer_list<unsigned long long> aMasks, unsigned int nMasks) {
  // A copy on the stack: the scan library takes the masks as its own to write.
  unsigned long long aWords[cnMaxMasks] = {};
  std::copy(aMasks.begin(), aMasks.end(), aWords);
  const long nResult = m_pScanner->SetCaptureMode(
      static_cast<ClMXVTScanAPIHandleBase::EScanMode_t>(nScanMode), nEntries, aWords, nMasks);
  // Frames of another size than the one asked for would be read past their end.
  if (nResult != 0) KLV_RAISE_NUMBER(nResult);
}

void ClVT40LiveCapture::RestorePreviewRow() noexcept {
  try {
    // The preview's workers must never meet frames of another size.
    ApplySensorRow(PreviewRow());
  } catch (...) {
    // The first failure is the one to report.
  }
}

void ClVT40LiveCapture::Capture() {
  switch (m_eCaptureMode) {
    case eCaptureModeOff:
    case eCaptureModeAutoLive:
    case eCaptureModeAuto:
    case eCaptureModeRoll:
    case eCaptureModeFull:
    case eCaptureModePreview:
    case eCaptureModeSignature:
      boost::this_thread::sleep(boost::posix_time::milliseconds(10));
      return;
  }
  KLV_RAISE(ClException, "Current capture mode is not impolemented yet. (should never happen)", -103);
}
