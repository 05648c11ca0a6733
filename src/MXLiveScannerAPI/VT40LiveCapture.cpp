// Set-up of the ten-finger engine, switching between its capture modes, and what callers ask of them.
#include "MXLiveScannerAPI/VT40LiveCapture.h"

#include <boost/thread/thread.hpp>

#include "MXLiveScannerAPI/AutoMode.h"
#include "MXLiveScannerAPI/FullMode.h"
#include "MXLiveScannerAPI/OneShotMode.h"
#include "MXLiveScannerAPI/RollMode.h"
#include "MXLiveScannerAPI/VT40SetupCalibrationData.h"
#include "MXTools/AtomicAccess.h"
#include "MXTools/Exception.h"
#include "MXVTScanAPI/MXVTScanAPIHandleBase.h"

namespace {

constexpr unsigned int cnRollWaitSeconds = 5;

/// Raw sequences have the sensor's size: calibration data for larger frames are refused.
void CheckSourceSize(const ClCalibrateGeometricData& oData, const ScannerTypes::Resolution& oSensor) {
  if (oData.m_nSourceWidth > oSensor.nWidth || oData.m_nSourceHeight > oSensor.nHeight) {
    KLV_RAISE(ClException, "invalid calibration data found in scanner eprom.", -39);
  }
}

}  // namespace

ClVT40LiveCapture::ClVT40LiveCapture() {
  m_nScannerCondition = 100;
}

ClVT40LiveCapture::~ClVT40LiveCapture() {
  TpLock oSwitchLock(m_oSwitchMutex);
  StopMode();
}

void ClVT40LiveCapture::SetScanner(ClMXVTScanAPIHandleBase* pScanner) {
  ClVTLiveCaptureBase::SetScanner(pScanner);
  m_oSensor.SetScanner(pScanner);
}

void ClVT40LiveCapture::SetupCalibrationData(ClVTSetupCalibrationDataBase* pData) {
  auto& oSetup = static_cast<ClVT40SetupCalibrationData&>(*pData);
  using Scanner = ClMXVTScanAPIHandleBase;
  CheckSourceSize(oSetup.GetGeometricDataPreview(m_bSmallImages),
                  m_bSmallImages ? Scanner::m_oResVT40_960x1360 : Scanner::m_oResVT40Half);
  CheckSourceSize(oSetup.GetGeometricDataFull(m_bSmallImages),
                  m_bSmallImages ? Scanner::m_oResVT40_1920x2720 : Scanner::m_oResVT40Full);
  {
    TpLock oSwitchLock(m_oSwitchMutex);
    StopMode();
    m_oSensor.SetCalibration(&oSetup);
    {
      TpLock oFullLock(m_oFull);
      m_oFull.SetCalibration(oSetup);
    }
    m_pRooms.reset(new StCaptureRooms{
        {*m_pScanner, m_nAutoCaptureBeep, m_eDetectState, m_dScore, m_nScannerCondition, m_nReturnCode},
        oSetup,
        m_bSmallImages,
        m_oSensor,
        m_oFull,
        m_oWaits,
        m_oFrames,
        m_oLiveness,
        m_oRoll,
        m_oPad,
        m_oSettings});
    m_pOneShot = std::make_unique<ClOneShotMode>(*m_pRooms);
  }
  // The 0 is no mode, so that the switch to "off" is not skipped.
  m_eCaptureMode = static_cast<ECaptureMode>(0);
  SetCaptureMode(eCaptureModeOff);
}

void ClVT40LiveCapture::SetCaptureMode(ECaptureMode eMode) {
  if (eMode == m_eCaptureMode) return;
  TpLock oSwitchLock(m_oSwitchMutex);
  StopMode();
  TpLock oSensorLock(m_oSensor);
  try {
    const bool bEnded = m_oSensor.TakeEnded();
    if (m_eCaptureMode == eCaptureModeOff || bEnded) m_pScanner->EnableCaptureThread(true);
    m_eCaptureMode = eMode;
    m_pMode = MakeMode(eMode);
    if (eMode == eCaptureModeOff) m_pScanner->EnableCaptureThread(false);
    ResetMode(eMode != eCaptureModeOff);
    Mode().Start();
  } catch (...) {
    m_eCaptureMode = eCaptureModeOff;
    // A worker that was started already waits for the sensor before its first frame.
    oSensorLock.unlock();
    StopMode();
    try {
      m_pScanner->EnableCaptureThread(false);
    } catch (...) {
      // The first failure is the one to report.
    }
    throw;
  }
}

std::unique_ptr<ClCaptureMode> ClVT40LiveCapture::MakeMode(ECaptureMode eMode) {
  switch (eMode) {
    case eCaptureModeOff:
      return nullptr;
    case eCaptureModeAutoLive:
      return std::make_unique<ClAutoMode>(*m_pRooms, true);
    case eCaptureModeAuto:
      return std::make_unique<ClAutoMode>(*m_pRooms, false);
    case eCaptureModeRoll:
      return std::make_unique<ClRollMode>(*m_pRooms);
    case eCaptureModeFull:
      return std::make_unique<ClFullMode>(*m_pRooms);
    case eCaptureModePreview:
      return std::make_unique<ClPreviewMode>(*m_pRooms);
    case eCaptureModeSignature:
      return std::make_unique<ClSignatureMode>(*m_pRooms);
  }
  KLV_RAISE(ClException, "Unknown capture mode.", -103);
}

ClCaptureMode& ClVT40LiveCapture::Mode() {
  return m_pMode != nullptr ? *m_pMode : *m_pOneShot;
}

void ClVT40LiveCapture::StopMode() {
  if (m_pMode == nullptr) return;
  m_pMode->Stop();
  m_pMode.reset();
}

void ClVT40LiveCapture::Reset(bool bReset) {
  TpLock oSwitchLock(m_oSwitchMutex);
  TpLock oSensorLock(m_oSensor);
  ResetMode(bReset);
}

void ClVT40LiveCapture::ResetMode(bool bReset) {
  if (bReset) {
    m_eDetectState = eCaptureStateNoFinger;
    m_dScore = 0.0;
    TpLock oFullLock(m_oFull);
    m_oFull.Reset();
  }
  m_oSensor.SetGains();
  m_nScannerCondition = 0;
  m_oPad.ResetSwipe();
  if (const auto oRow = Mode().Row()) m_oSensor.Select(*oRow);
  Mode().Reset();
  m_oRoll.SetAutoRotate(KlvAtomicLoad(m_nRolledPostProcess) != 0);
}

void ClVT40LiveCapture::Capture() {
  if (m_eCaptureMode < eCaptureModeOff || m_eCaptureMode > eCaptureModeSignature) {
    KLV_RAISE(ClException, "Current capture mode is not impolemented yet. (should never happen)", -103);
  }
  boost::this_thread::sleep(boost::posix_time::milliseconds(10));
}

void ClVT40LiveCapture::GetImage(ClImage& oImage, ECaptureState& eState, double& dScore) {
  TpLock oLock(m_oMutex);
  TpLock oSwitchLock(m_oSwitchMutex);
  Mode().GetImage(oImage, eState, dScore);
}

void ClVT40LiveCapture::GetPreviewImage(ClImage& oImage, ECaptureState& eState, double& dScore) {
  TpLock oSwitchLock(m_oSwitchMutex);
  Mode().GetPreviewImage(oImage, eState, dScore);
}

void ClVT40LiveCapture::GetRollImage(ClImage& oImage, ECaptureState& eState, double& dScore) {
  const bool bArrived = m_oFrames.WaitForFrame(cnRollWaitSeconds, m_oWaits);
  // The state is read between wait and copy, so that "done" always comes with the finished picture.
  eState = m_eDetectState;
  if (!bArrived) KLV_RAISE(ClException, "timeout during rolled image reading", -60);
  m_oFrames.Fetch(oImage);
  dScore = 0.0;
}

void ClVT40LiveCapture::ResetImage() {
  // The switch lock is not taken, since a call that waits for a frame holds it; what is dropped outlives the
  // modes.
  const ECaptureMode eMode = m_eCaptureMode;
  if (eMode == eCaptureModeRoll) {
    m_oRoll.RequestReset();
  } else if (eMode == eCaptureModeSignature) {
    m_oPad.Clear();
  } else {
    KLV_RAISE(ClException, "Image reset not supported in current capture mode.", -50);
  }
}

void ClVT40LiveCapture::SetDisplayData(unsigned int nType, void* pData, unsigned int nLength) {
  m_oDisplay.Write(*m_pScanner, nType, pData, nLength);
}

void ClVT40LiveCapture::SetSignatureSensorMode(unsigned int nMode) {
  if (!m_oSettings.oSensorMode.Set(nMode)) {
    KLV_RAISE(ClException, "Mode must not be switched while signature mode is active.", -50);
  }
}

void ClVT40LiveCapture::SetSignatureDetectTime(double dTime) {
  if (!(dTime >= 0.0)) KLV_RAISE(ClException, "Illegal time delta.", -44);
  m_oSettings.dDetectTime = dTime;
}

void ClVT40LiveCapture::SetSignatureFilterSigma(double dSigma) {
  if (!(dSigma >= 0.5)) KLV_RAISE(ClException, "Sigma must be >= 0.5.", -44);
  if (dSigma > 100.0) KLV_RAISE(ClException, "Sigma must be <= 100.", -44);
  m_oSettings.dFilterSigma = dSigma;
}
