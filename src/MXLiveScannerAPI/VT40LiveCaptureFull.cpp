// Full-resolution captures: one shot, on demand during the preview, and from the stream.
#include "MXLiveScannerAPI/HelperThread.h"
#include "MXLiveScannerAPI/VT40LiveCapture.h"
#include "MXLiveScannerAPI/VT40SetupCalibrationData.h"
#include "MXLiveScannerTools/IpLiveScannerMask.h"
#include "MXTools/Exception.h"
#include "MXVTScanAPI/MXVTScanAPIHandleBase.h"

namespace {

constexpr unsigned int cnStreamWaitSeconds = 10;
/// Grey values of finger pixels in a masked image.
constexpr unsigned char cnLastFingerGrey = 160;
/// Finger pixels, at preview size, below which nothing usable lies on the platen.
constexpr int cnMinFingerPixels = 1000;
/// Standard deviation of the raw difference up to which the platen is empty.
constexpr double cdEmptyDeviation = 3.0;

}  // namespace

void ClVT40LiveCapture::CaptureHires(ClImage& oImage) {
  ApplySensorRow(FullRow());
  ReadDifference(oImage);
}

void ClVT40LiveCapture::CalibrateHighres() {
  m_oHighresBalance.ApplyParam(m_oFullRaw, m_oHighresBalanced);
  m_pSetup->CalibrateFull(m_oHighresBalanced, m_oHighresWarped);
  m_pSetup->AdjustBrightnessFull(m_oHighresWarped, m_oHighresBalanced, cnTargetGrey);
  m_oHighresFlip.ApplyParam(m_oHighresBalanced, m_oFullCalibrated, true, false);
}

void ClVT40LiveCapture::MaskHighRes() {
  m_pSetup->GetMaskProcessor(1)->ApplyParam(m_oFullCalibrated, m_oFullMask, cnMaskDpi, 1.0);
}

void ClVT40LiveCapture::CalibrateAndMask() {
  const int nWidth = m_oFullRaw.Width();
  const int nHeight = m_oFullRaw.Height();
  ClHistogram oHistogram;
  oHistogram.Create(m_oFullRaw, nWidth / 20, nHeight / 20, 19 * nWidth / 20, 19 * nHeight / 20);
  if (oHistogram.GetStdDeviation(0, 255) > cdEmptyDeviation) {
    CalibrateHighres();
    MaskHighRes();
  } else {
    m_oFullCalibrated = static_cast<unsigned char>(0);
    m_oFullMask = static_cast<unsigned char>(255);
  }
}

void ClVT40LiveCapture::GetImage(ClImage& oImage, ECaptureState& eState, double& dScore) {
  Lock oLock(m_oMutex);
  switch (m_eCaptureMode) {
    case eCaptureModeOff:
      GetImageOneShot(oImage, eState, dScore);
      break;
    case eCaptureModeFull:
      GetImageStream(oImage, eState, dScore);
      break;
    case eCaptureModeAutoLive:
    case eCaptureModeAuto:
    case eCaptureModePreview:
      GetImageOnDemand(oImage, eState, dScore);
      break;
    case eCaptureModeSignature:
      GetImageSignature(oImage, eState, dScore);
      break;
    default:
      KLV_RAISE(ClException, "Invalid capture mode.", -50);
  }
}

void ClVT40LiveCapture::GetImageOneShot(ClImage& oImage, ECaptureState& eState, double& dScore) {
  Lock oModeLock(m_oModeMutex);
  CheckMode(m_eCaptureMode == eCaptureModeOff);
  Lock oFullImageLock(m_oFullImageMutex);
  m_pScanner->EnableCaptureThread(true);
  try {
    CaptureHires(m_oFullRaw);
    // Calibrated and masked while the capture sequence is being closed.
    ClHelperThread oCalibration([this] { CalibrateAndMask(); });
    if (!m_pScanner->SetCaptureSequence(0, nullptr, nullptr)) {
      KLV_RAISE(ClException, "Scanner disconnected.", -60);
    }
    unsigned int nEndOfSequence = 1024;
    m_pScanner->SetCaptureSequenceEx(1, &nEndOfSequence);
    oCalibration.Join();
  } catch (...) {
    try {
      m_pScanner->EnableCaptureThread(false);
    } catch (...) {
      // The first failure is the one to report.
    }
    throw;
  }
  oImage = m_oFullMask;
  eState = eCaptureStateNoFinger;
  dScore = 0.0;
  m_pScanner->SetLED(0);
  m_pScanner->EnableCaptureThread(false);
}

void ClVT40LiveCapture::GetImageStream(ClImage& oImage, ECaptureState& eState, double& dScore) {
  Lock oImageLock(m_oImageMutex);
  CheckMode(m_eCaptureMode == eCaptureModeFull);
  if (!WaitForImage(m_oMaskedBuffer, cnStreamWaitSeconds)) {
    KLV_RAISE(ClException, "timeout during highres image reading", -60);
  }
  TpReadLock<ClImage> oRead(m_oMaskedBuffer);
  oImage = oRead.Item();
  eState = eCaptureStateNoFinger;
  dScore = 0.0;
}

void ClVT40LiveCapture::GetImageOnDemand(ClImage& oImage, ECaptureState& eState, double& dScore) {
  SensorLock oSensorLock(m_oSensorMutex);
  CheckMode(IsPreviewMode(m_eCaptureMode));
  Lock oFullImageLock(m_oFullImageMutex);
  if (m_nFramesSinceCapture < cnNoCapture) {
    MaskHighRes();
    eState = eCaptureStateDone;
  } else {
    eState = CaptureOnDemand();
  }
  dScore = m_dScore;
  oImage = m_oFullMask;
  m_nFramesSinceCapture = cnNoCapture;
}

ClVT40LiveCapture::ECaptureState ClVT40LiveCapture::CaptureOnDemand() {
  try {
    CaptureHires(m_oFullRaw);
    CalibrateHighres();
    ClHelperThread oMasking([this] { MaskHighRes(); });
    ApplySensorRow(PreviewRow());
    oMasking.Join();
  } catch (...) {
    RestorePreviewRow();
    throw;
  }
  m_oHalve.ApplyParam(m_oFullMask, 2, m_oHalfMask, true);
  int nGained = 0;
  int nLost = 0;
  CompareMask(m_oPreviewMask, m_oHalfMask, &nGained, &nLost);
  const int nPixels = GetFingerPixel(m_oFullMask) / 4;
  const bool bDone = nLost - nGained < nPixels / 5 && nPixels > cnMinFingerPixels;
  return bDone ? eCaptureStateDone : eCaptureStateNoFinger;
}

int ClVT40LiveCapture::GetFingerPixel(const ClImage& oImage) {
  ClHistogram oHistogram;
  oHistogram.Create(oImage);
  int nPixels = 0;
  for (unsigned char n = 0; n <= cnLastFingerGrey; ++n) nPixels += oHistogram.Count(n);
  return nPixels;
}

void ClVT40LiveCapture::CompareMask(ClImage& oFirst, ClImage& oSecond, int* pnGained, int* pnLost) {
  *pnGained = 0;
  *pnLost = 0;
  // Single ridges and their gaps do not count: what is compared is where fingers lie.
  m_oErode.ApplyParam(oFirst, m_oErodedFirst, 7, 3);
  m_oErode.ApplyParam(oSecond, m_oErodedSecond, 7, 3);
  const int nWidth = std::min(m_oErodedFirst.Width(), m_oErodedSecond.Width());
  const int nHeight = std::min(m_oErodedFirst.Height(), m_oErodedSecond.Height());
  const int nFirstRow = m_pSetup->GetScannerRevision() == 0 ? nHeight / 5 : 0;
  for (int y = nFirstRow; y < nHeight; ++y) {
    const unsigned char* pFirst = m_oErodedFirst.Row<unsigned char>(y);
    const unsigned char* pSecond = m_oErodedSecond.Row<unsigned char>(y);
    for (int x = 0; x < nWidth; ++x) {
      *pnGained += pFirst[x] == 255 && pSecond[x] != 255;
      *pnLost += pFirst[x] != 255 && pSecond[x] == 255;
    }
  }
}
