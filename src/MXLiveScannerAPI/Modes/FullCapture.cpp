// A capture from its shot to its mask.
#include "MXLiveScannerAPI/FullCapture.h"

#include "MXImageProcessing/Histogram.h"
#include "MXLiveScannerAPI/LivenessDetector.h"
#include "MXLiveScannerAPI/VT40SetupCalibrationData.h"

namespace {

/// The mask processor that captures use; streams use the first.
constexpr unsigned int cnShotMask = 1;
constexpr unsigned char cnWhiteGrey = 255;
constexpr unsigned char cnBlackGrey = 0;
/// Up to this standard deviation of the raw difference the platen is empty.
constexpr double cdEmptyDeviation = 3.0;

void NewPicture(ClImage& oImage, const ClFrameRoad::StSize& oSize) {
  oImage.NewWithType(ClImage::eUint8, oSize.nWidth, oSize.nHeight, 1, 0, 0, true);
}

}  // namespace

void ClFullCapture::SetCalibration(ClVT40SetupCalibrationData& oSetup) {
  m_pSetup = &oSetup;
  m_pRoad = std::make_unique<ClFrameRoad>(oSetup, ClFrameRoad::eFull, m_bSmallImages, cnShotMask);
  m_pChange = std::make_unique<ClMaskChange>(oSetup.GetScannerRevision() == 0);
  const ClFrameRoad::StSize oFull = ClFrameRoad::TargetSize(oSetup, ClFrameRoad::eFull, m_bSmallImages);
  NewPicture(m_oCalibrated, oFull);
  NewPicture(m_oMask, oFull);
  NewPicture(m_oPreviewMask, ClFrameRoad::TargetSize(oSetup, ClFrameRoad::ePreview, m_bSmallImages));
  m_oPreviewMask = cnWhiteGrey;
}

void ClFullCapture::Reset() {
  Withdraw();
  m_oMask = cnWhiteGrey;
  m_pRoad->Raw() = cnBlackGrey;
}

void ClFullCapture::Shoot(ClVT40Sensor& oSensor) {
  oSensor.Select(ClVT40Sensor::eFull);
  oSensor.ReadDifference(m_pRoad->Raw());
}

void ClFullCapture::Rectify() {
  m_pRoad->RectifyShot(m_oCalibrated);
}

void ClFullCapture::Mask() {
  m_pRoad->Mask(m_oCalibrated, m_oMask);
}

void ClFullCapture::RectifyAndMask() {
  const ClImage& oRaw = m_pRoad->Raw();
  const int nWidth = oRaw.Width();
  const int nHeight = oRaw.Height();
  ClHistogram oHistogram;
  oHistogram.Create(oRaw, nWidth / 20, nHeight / 20, 19 * nWidth / 20, 19 * nHeight / 20);
  if (oHistogram.GetStdDeviation(0, 255) > cdEmptyDeviation) {
    Rectify();
    Mask();
  } else {
    m_oCalibrated = cnBlackGrey;
    m_oMask = cnWhiteGrey;
  }
}

bool ClFullCapture::IsGood(ClImage& oPreviewRaw) {
  return m_oCheck.IsGood(*m_pSetup, m_pRoad->Raw(), oPreviewRaw);
}

double ClFullCapture::Score(ClLivenessDetector& oDetector) {
  return oDetector.Score(m_oCalibrated, m_oMask);
}
