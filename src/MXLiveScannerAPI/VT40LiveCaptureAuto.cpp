// Automatic capture: whether something lies on the platen, how dirty it is, when a finger lies still, the
// shot itself, and its liveness score.
#include <algorithm>
#include <cstdlib>
#include <ctime>

#include "MXKernels/DifferenceRows.h"
#include "MXLibraryLoaders/KelvarinFakeFingerDetectionVT40Wrapper.h"
#include "MXLiveScannerAPI/HelperThread.h"
#include "MXLiveScannerAPI/RawSequenceLock.h"
#include "MXLiveScannerAPI/VT40LiveCapture.h"
#include "MXLiveScannerAPI/VT40SetupCalibrationData.h"
#include "MXLiveScannerTools/IpLiveScannerMask.h"
#include "MXTools/AtomicAccess.h"
#include "MXTools/Exception.h"

namespace {

/// Brightness of the brightest tenth of the platen up to which nothing lies on it.
constexpr double cdEmptyBrightness = 24.0;

/// Length of the rings of dark scenes and of frames.
constexpr int cnRing = 16;
/// What a speck differs from its surroundings by, at least, less 1: sum over the ring.
constexpr uint16_t cnSpeckDeviation = 22;
/// The grid of overlapping blocks over which specks are counted, and the steps of the axes.
constexpr int cnDirtBlocks = 7;
constexpr int cnDirtSteps = 10;

/// Finger pixels up to which there is no finger, and above which a finger needs no stability.
constexpr int cnNoFingerPixels = 1000;
constexpr int cnLargeFingerPixels = 5000;
/// Sum of the squared differences of two frames up to which a finger lies still.
constexpr uint64_t cnStillMotion = 99999999;
/// Frames after a capture that were exposed under changed settings.
constexpr int cnSpoiledFrames = 2;

constexpr long cnPauseMs = 150;
constexpr unsigned char cnMiniTargetGrey = 255;
constexpr long cnLightWidth = 51;
/// Grey value from which a pixel of the preview counts as lit.
constexpr int cnLitGrey = 16;
/// Per cent of the preview's brightness that a pixel must keep in the capture.
constexpr int cnKeptPercent = 74;

/// Calls oRow(y) for each row of an image.
template <typename TRow>
void ForEachRow(const ClImage& oImage, TRow&& oRow) {
  for (int y = 0; y < oImage.Height(); ++y) oRow(y);
}

/// What every call to the liveness library at set-up answers when it works is 0.
void CheckAnswer(long nAnswer) {
  if (nAnswer != 0) KLV_RAISE_NUMBER(nAnswer);
}

/// A number of a coordinate's size; what lies outside the sensor is cut to it.
int ToPixel(double dCoordinate, int nLimit) {
  return static_cast<int>(std::max(0.0, std::min(dCoordinate, static_cast<double>(nLimit))));
}

void CopyUnpadded(const ClImage& oFrom, ClImage& oTo) {
  oTo.NewWithType(ClImage::eUint8, oFrom.Width(), oFrom.Height(), 1, 0, 0, false);
  ForEachRow(oFrom, [&](int y) { std::copy_n(oFrom.Row<uint8_t>(y), oFrom.Width(), oTo.Row<uint8_t>(y)); });
}

/// Milliseconds since local midnight.
unsigned int TimeOfDayMs() {
  const std::time_t nNow = std::time(nullptr);
  std::tm oLocal{};
  localtime_r(&nNow, &oLocal);
  return static_cast<unsigned int>((oLocal.tm_hour * 60 + oLocal.tm_min) * 60 + oLocal.tm_sec) * 1000U;
}

}  // namespace

void ClVT40LiveCapture::OpenFakeDetection() {
  try {
    m_pFakeDetector = std::make_unique<ClKelvarinFakeFingerDetectionVT40Wrapper>();
    m_pFakeDetector->OpenLibrary(m_pFakeDetector->m_ssSearchPath, m_pFakeDetector->m_ssLibName);
    CheckAnswer(m_pFakeDetector->FD_VT40Initialize(nullptr));
    const long nAnswer = m_pFakeDetector->FD_VT40CreateFakeDetectionVT40Handle(&m_hFakeDetection);
    if (nAnswer != 0) {
      m_hFakeDetection = nullptr;
      m_pFakeDetector->FD_VT40Uninitialize();
      KLV_RAISE_NUMBER(nAnswer);
    }
  } catch (const ClExBadAlloc&) {
    throw;
  } catch (const ClException&) {
    // The library is optional: whoever needs it finds no context.
  }
}

void ClVT40LiveCapture::PrepareAutoDetection() {
  m_nDirtFrames = 0;
  m_oDirtSum.NewWithType(ClImage::eUint16, m_oPreviewRaw.Width(), m_oPreviewRaw.Height(), 1, 0, 0, true);
  m_oDirtSum = static_cast<unsigned char>(0);
  m_nMotionIndex = 0;
  for (unsigned int n = 0; n < m_aMotionHistory.Entries(); ++n) {
    m_aMotionHistory[n].New(m_oPreviewCalibrated);
    m_aMotionHistory[n] = static_cast<unsigned char>(0);
  }
}

ClVT40LiveCapture::StRectangle ClVT40LiveCapture::PlatenRectangle() const {
  const ClCalibrateGeometricData& oData = m_pSetup->GetGeometricDataPreview(m_bSmallImages);
  const int nWidth = static_cast<int>(oData.m_nSourceWidth);
  const int nHeight = static_cast<int>(oData.m_nSourceHeight);
  // The bounds of the calibration points belong to the platen.
  StRectangle oBounds{nWidth, nHeight, 0, 0};
  const ClCalibrateGeometricData::Points& aPoints = oData.m_aActual[0];
  for (unsigned int n = 0; n < aPoints.Entries(); ++n) {
    const int nX = ToPixel(aPoints[n].x, nWidth - 1);
    const int nY = ToPixel(aPoints[n].y, nHeight - 1);
    oBounds.nX0 = std::min(oBounds.nX0, nX);
    oBounds.nY0 = std::min(oBounds.nY0, nY);
    oBounds.nX1 = std::max(oBounds.nX1, nX);
    oBounds.nY1 = std::max(oBounds.nY1, nY);
  }
  ++oBounds.nX1;
  ++oBounds.nY1;
  return oBounds;
}

void ClVT40LiveCapture::CalibratePreviewThreadDirtDetection() {
  RunWorker([this] {
    const StRectangle oPlaten = PlatenRectangle();
    const unsigned int nBrightCount =
        static_cast<unsigned int>((oPlaten.nX1 - oPlaten.nX0) * (oPlaten.nY1 - oPlaten.nY0)) / 10;
    const StPipeline oPipeline = PreviewPipeline();
    StScratch oScratch;
    ClHistogram oHistogram;
    m_nPreviewFrames = 0;
    while (!boost::this_thread::interruption_requested()) {
      {
        SensorLock oSensorLock(m_oSensorMutex);
        ReadDifference(m_oPreviewRaw);
        ++m_nPreviewFrames;
      }
      oHistogram.Create(m_oPreviewRaw, oPlaten.nX0, oPlaten.nY0, oPlaten.nX1, oPlaten.nY1);
      if (oHistogram.GetBrightestAvrg(nBrightCount) > cdEmptyBrightness) {
        Calibrate(oPipeline, oScratch);
        TpWriteLock<ClImage> oWrite(m_oCalibratedBuffer);
        oWrite.Item() = m_oPreviewCalibrated;
        oWrite.Publish();
      } else {
        if (m_nPreviewFrames % 2 == 0) UpdateDirt();
        TpWriteLock<ClImage> oWrite(m_oCalibratedBuffer);
        oWrite.Item() = static_cast<unsigned char>(0);
        oWrite.Publish();
      }
    }
  });
}

void ClVT40LiveCapture::UpdateDirt() {
  const size_t nWidth = static_cast<size_t>(m_oPreviewRaw.Width());
  ClImage& oOldest = m_aDirtHistory[static_cast<unsigned int>(m_nDirtFrames % cnRing)];
  ForEachRow(m_oPreviewRaw, [&](int y) {
    MXKernels::AddToSumsRow(m_oPreviewRaw.Row<uint8_t>(y), m_oDirtSum.Row<uint16_t>(y), nWidth);
  });
  if (m_nDirtFrames >= cnRing) {
    ForEachRow(oOldest, [&](int y) {
      MXKernels::TakeFromSumsRow(oOldest.Row<uint8_t>(y), m_oDirtSum.Row<uint16_t>(y), nWidth);
    });
    m_nScannerCondition = MeasureDirt();
  }
  oOldest = m_oPreviewRaw;
  ++m_nDirtFrames;
}

int ClVT40LiveCapture::MeasureDirt() {
  const int nWidth = m_oDirtSum.Width();
  const int nHeight = m_oDirtSum.Height();
  m_oDirtFilter.ApplyParam(m_oDirtSum, m_oDirtSmooth, (nWidth / 87) | 1);
  m_oDirtFilter.ApplyParam(m_oDirtSmooth, m_oDirtGround, (nHeight / 123) | 1);
  m_oDirtSpecks.NewWithType(ClImage::eUint8, nWidth, nHeight, 1, 0, 0, true);
  ForEachRow(m_oDirtSpecks, [&](int y) {
    MXKernels::DeviationRow(m_oDirtSum.Row<uint16_t>(y), m_oDirtGround.Row<uint16_t>(y),
                            m_oDirtSpecks.Row<uint8_t>(y), static_cast<size_t>(nWidth), cnSpeckDeviation);
  });

  ClHistogram oBlock;
  int nSum = 0;
  for (int j = 1; j <= cnDirtBlocks; ++j) {
    for (int i = 1; i <= cnDirtBlocks; ++i) {
      const int nX0 = nWidth * i / cnDirtSteps, nX1 = nWidth * (i + 2) / cnDirtSteps;
      const int nY0 = nHeight * j / cnDirtSteps, nY1 = nHeight * (j + 2) / cnDirtSteps;
      oBlock.Create(m_oDirtSpecks, nX0, nY0, nX1, nY1);
      const int64_t nPixels = int64_t{nX1 - nX0} * (nY1 - nY0);
      const auto nShare = static_cast<int>(int64_t{oBlock.Count(255)} * 15000 / nPixels);
      // Two parts in 15000 are noise.
      nSum += std::max(0, std::min(nShare - 2, 100));
    }
  }
  return nSum / (cnDirtBlocks * cnDirtBlocks);
}

void ClVT40LiveCapture::MaskThreadAutoDetection() {
  RunWorker([this] {
    ClHistogram oHistogram;
    int nLastCount = 0;
    while (!boost::this_thread::interruption_requested()) {
      if (!m_oCalibratedBuffer.WaitNewData(cnMaskWaitSeconds)) continue;
      if (!m_oCalibratedBuffer.HasNewData()) continue;
      // Beyond the window the count has nothing to tell, and must not wrap into it.
      if (m_nFramesSinceCapture < cnNoCapture) ++m_nFramesSinceCapture;
      TpReadLock<ClImage> oRead(m_oCalibratedBuffer);
      if (m_nSkipFrames > 0) {
        --m_nSkipFrames;
        continue;
      }
      TpWriteLock<ClImage> oWrite(m_oMaskedBuffer);
      const ClImage& oFrame = oRead.Item();
      const ClImage& oPrevious =
          m_aMotionHistory[static_cast<unsigned int>((m_nMotionIndex + cnRing - 1) % cnRing)];
      uint64_t nMotion = 0;
      ForEachRow(oFrame, [&](int y) {
        nMotion += MXKernels::SquaredDifference(oFrame.Row<uint8_t>(y), oPrevious.Row<uint8_t>(y),
                                                static_cast<size_t>(oFrame.Width()));
      });
      m_pSetup->GetMaskProcessor(0)->ApplyParam(oRead.Item(), oWrite.Item(), cnMaskDpi, 1.0);
      oHistogram.Create(oWrite.Item());
      const int nCount = oWrite.Item().Width() * oWrite.Item().Height() - oHistogram.Count(255);
      m_aMotionHistory[static_cast<unsigned int>(m_nMotionIndex)] = oFrame;
      m_nMotionIndex = (m_nMotionIndex + 1) % cnRing;
      oRead.Release();
      Classify(oWrite.Item(), nCount, nLastCount, nMotion);
      oWrite.Publish();
      nLastCount = nCount;
    }
  });
}

void ClVT40LiveCapture::Classify(const ClImage& oMask, int nCount, int nLastCount, uint64_t nMotion) {
  if (boost::this_thread::interruption_requested() || nCount <= cnNoFingerPixels || nMotion > cnStillMotion) {
    m_eDetectState = eCaptureStateNoFinger;
    return;
  }
  const int nTenth = nLastCount / 10;
  const bool bStable =
      nCount > cnLargeFingerPixels || (nLastCount - nTenth < nCount && nCount < nLastCount + nTenth);
  if (!bStable) {
    m_eDetectState = eCaptureStateFinger;
  } else if (m_eDetectState != eCaptureStateDone) {
    CaptureAutomatically(oMask);
  }
}

void ClVT40LiveCapture::CaptureAutomatically(const ClImage& oMask) {
  SensorLock oSensorLock(m_oSensorMutex);
  Lock oFullImageLock(m_oFullImageMutex);
  bool bGood = false;
  try {
    bGood = ShootAutomatically();
  } catch (...) {
    RestorePreviewRow();
    throw;
  }
  oSensorLock.unlock();
  if (bGood) {
    if (m_eCaptureMode == eCaptureModeAutoLive) MeasureScore();
    m_oPreviewMask = oMask;
  }
  // In this order: whoever sees the state or the count finds the picture and its score.
  m_nFramesSinceCapture = 0;
  m_eDetectState = bGood ? eCaptureStateDone : eCaptureStateFinger;
}

bool ClVT40LiveCapture::ShootAutomatically() {
  m_oPreviewAtCapture = m_oPreviewRaw;
  if (m_eCaptureMode == eCaptureModeAutoLive) {
    const StSensorRow oRow = PreviewRow();
    m_pScanner->SetVSYNCLength(oRow.nExposure);
    SetSequence(oRow.nScanMode, 6, {0x200, 0x400, 0x1000, 0x800, 0, 0}, 1);
    for (int n = 0; n < 4; ++n) ClRawSequenceLock(*m_pScanner).Release();
  }
  CaptureHires(m_oFullRaw);
  ClHelperThread oCalibration([this] { CalibrateHighres(); });
  const bool bGood = IsCaptureGood();
  if (bGood) {
    if (KlvAtomicLoad(m_nAutoCaptureBeep) != 0) m_pScanner->Beep(300, 100);
    SetSequence(PreviewRow().nScanMode, 1, {0x400}, 1);
    if (!boost::this_thread::interruption_requested()) {
      boost::this_thread::sleep(boost::posix_time::milliseconds(cnPauseMs));
    }
  }
  ApplySensorRow(PreviewRow());
  m_nSkipFrames = cnSpoiledFrames;
  oCalibration.Join();
  return bGood;
}

bool ClVT40LiveCapture::IsCaptureGood() {
  m_oReduce.ApplyParam(m_oFullRaw, 4, m_oCaptureReduced, true);
  m_oReduce.ApplyParam(m_oPreviewAtCapture, 2, m_oPreviewReduced, true);
  m_pSetup->AdjustBrightnessMiniRAW(m_oCaptureReduced, m_oCaptureReduced, cnMiniTargetGrey);
  m_pSetup->AdjustBrightnessMiniRAW(m_oPreviewReduced, m_oPreviewReduced, cnMiniTargetGrey);
  m_oLight.ApplyParam(m_oCaptureReduced, m_oCaptureLight, cnLightWidth);
  m_oLight.ApplyParam(m_oPreviewReduced, m_oPreviewLight, cnLightWidth);

  const int nWidth = std::min(m_oPreviewLight.Width(), m_oCaptureLight.Width());
  const int nHeight = std::min(m_oPreviewLight.Height(), m_oCaptureLight.Height());
  const int nFirst = static_cast<int>(0.1 * nWidth);
  const int nEnd = static_cast<int>(0.9 * nWidth);
  const int nRows = static_cast<int>(0.9 * nHeight);
  int nLit = 0;
  int nDarker = 0;
  for (int y = 0; y < nRows; ++y) {
    const unsigned char* pCapture = m_oCaptureLight.Row<unsigned char>(y);
    const unsigned char* pPreview = m_oPreviewLight.Row<unsigned char>(y);
    for (int x = nFirst; x < nEnd; ++x) {
      if (pPreview[x] <= cnLitGrey) continue;
      ++nLit;
      nDarker += pCapture[x] * 100 / pPreview[x] <= cnKeptPercent;
    }
  }
  return nLit / 10 > nDarker;
}

void ClVT40LiveCapture::MeasureScore() {
  const unsigned int nRevision = m_pSetup->GetScannerRevision();
  if (nRevision == 0) {
    // The first scanners have no liveness lights: their score is drawn, not measured.
    std::srand(TimeOfDayMs() & 0xFFFF);
    m_dScore = 15.0 + (std::rand() % 7500) / 100.0;
  } else if (nRevision <= 6) {
    MaskHighRes();
    // The library takes rows without padding.
    ClImage oPicture;
    ClImage oMask;
    CopyUnpadded(m_oFullCalibrated, oPicture);
    CopyUnpadded(m_oFullMask, oMask);
    double dScore = 0.0;
    m_pFakeDetector->FD_VT40GetFakeFingerDetectionScore(
        m_hFakeDetection, static_cast<unsigned int>(oPicture.Width()),
        static_cast<unsigned int>(oPicture.Height()), oPicture.Data(), oMask.Data(), &dScore);
    m_dScore = dScore;
  }
}
