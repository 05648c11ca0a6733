// The platen as a signature pad: the worker that follows the pen, and the pictures of its strokes.
#include <cstring>

#include "MXLiveScannerAPI/PenDetector.h"
#include "MXLiveScannerAPI/RawSequenceLock.h"
#include "MXLiveScannerAPI/SignatureTiming.h"
#include "MXLiveScannerAPI/VT40LiveCapture.h"
#include "MXLiveScannerAPI/VT40SetupCalibrationData.h"
#include "MXTools/AtomicAccess.h"
#include "MXTools/Exception.h"
#include "MXTools/ProcessorTime.h"

namespace {

constexpr unsigned int cnSignatureWaitSeconds = 15;
constexpr unsigned char cnSignatureGrey = 192;
constexpr int cnPreviewHeight = 800;
constexpr unsigned int cnFramesPerPreview = 3;
/// Gives a thin line that the Gaussian filter has spread its full brightness back, times its deviation.
constexpr double cdSqrtTwoPi = 2.5066282746310002;

}  // namespace

bool ClVT40LiveCapture::IsSignatureHalf() const {
  return m_nSignatureSensorMode != 0;
}

void ClVT40LiveCapture::ApplySignatureRow() {
  m_pScanner->SetVSYNCLength(static_cast<unsigned short>(m_pSetup->GetExposure() / 3));
  // Lit frames alone: ambient light stands still, as everything but the pen.
  using Scanner = ClMXVTScanAPIHandleBase;
  SetSequence(IsSignatureHalf() ? Scanner::eScanMode960x340 : Scanner::eScanModeQuad, 1, {1}, 1);
}

void ClVT40LiveCapture::StartSignature(int nWidth, int nHeight) {
  m_oSignatureBuffer.SetBuffer(&m_aSignatureImages[0], &m_aSignatureImages[1], &m_aSignatureImages[2]);
  for (ClImage& oImage : m_aSignatureImages) {
    oImage.NewWithType(ClImage::eUint8, nWidth, IsSignatureHalf() ? nHeight / 2 : nHeight, 1, 0, 0, true);
  }
  m_oSignatureThread = boost::thread(&ClVT40LiveCapture::SignatureThread, this);
}

void ClVT40LiveCapture::SignatureThread() {
  RunWorker([this] {
    ClImage oRaw, oAdjusted;
    MakeSignatureFrame(oRaw);
    {
      Lock oSignatureLock(m_oSignatureMutex);
      m_oStrokes.Start(IsSignatureHalf() ? cnPreviewHeight / 2 : cnPreviewHeight);
    }
    ClPenDetector oDetector(oRaw.Width(), oRaw.Height(), IsSignatureHalf());
    ClSignatureTiming oTiming(Klv::ProcessorTime());
    unsigned int nFrame = 0;
    while (!boost::this_thread::interruption_requested()) {
      {
        ClRawSequenceLock oSequence(*m_pScanner);
        std::memcpy(oRaw.Data(), oSequence.Data(), oRaw.DataBytes());
        oSequence.Release();
      }
      m_pSetup->AdjustBrightnessSignature(oRaw, oAdjusted, cnSignatureGrey);
      const ClPenDetector::StSight oSight = oDetector.Detect(oAdjusted);
      if (oSight.eKind == ClPenDetector::eFirstFrame) continue;
      m_eDetectState = FollowPen(oSight, oTiming);
      if (++nFrame % cnFramesPerPreview == 0) PublishSignature();
    }
  });
}

/// An image for the frames that the scanner now gives, which have the size of their sensor mode and no padding.
void ClVT40LiveCapture::MakeSignatureFrame(ClImage& oRaw) const {
  unsigned int nWidth = 0;
  unsigned int nHeight = 0;
  const long nResult = m_pScanner->GetResolution(&nWidth, &nHeight);
  if (nResult != 0) KLV_RAISE_NUMBER(nResult);
  using Scanner = ClMXVTScanAPIHandleBase;
  const ScannerTypes::Resolution& oMode =
      IsSignatureHalf() ? Scanner::m_oResVT40_960x340 : Scanner::m_oResVT40Quad;
  if (nWidth != oMode.nWidth || nHeight != oMode.nHeight) {
    KLV_RAISE(ClException, "Wrong image size.", -44);
  }
  oRaw.NewWithType(ClImage::eUint8, static_cast<int>(nWidth), static_cast<int>(nHeight), 1, 0, 0, true);
}

ClVT40LiveCapture::ECaptureState ClVT40LiveCapture::FollowPen(const ClPenDetector::StSight& oSight,
                                                              ClSignatureTiming& oTiming) {
  const ClSignatureTiming::Ticks nNow = Klv::ProcessorTime();
  const double dDetectTime = m_dSignatureDetectTime;
  ECaptureState eState = eCaptureStateNoFinger;
  int nPoints = 0;
  {
    Lock oSignatureLock(m_oSignatureMutex);
    m_oStrokes.NextFrame();
    if (oSight.eKind == ClPenDetector::eLargeObject) {
      eState = m_oSwipe.Add(static_cast<int>(oSight.dWide));
      oTiming.Touch(nNow);
    } else if (oSight.eKind != ClPenDetector::ePen) {
      m_oStrokes.EndStroke();
    } else if (m_oStrokes.AddPoint(oSight.dX, oSight.dMeanY, oSight.nWeight)) {
      // The pen is back: what it wrote before was another signature.
      if (oTiming.HasPaused(nNow, dDetectTime)) m_oStrokes.Clear();
      oTiming.Touch(nNow);
    }
    nPoints = m_oStrokes.Points();
  }
  if (!oTiming.IsDone(nNow, dDetectTime, nPoints)) return eState;
  if (oTiming.IsFirstDoneFrame() && KlvAtomicLoad(m_nAutoCaptureBeep) != 0) m_pScanner->Beep(300, 100);
  return eCaptureStateDone;
}

void ClVT40LiveCapture::PublishSignature() {
  TpWriteLock<ClImage> oWrite(m_oSignatureBuffer);
  {
    Lock oSignatureLock(m_oSignatureMutex);
    oWrite.Item() = m_oStrokes.Preview();
  }
  oWrite.Publish();
}

/// A completion is told once: the state that the call before saw decides, whichever engine that was.
ClVT40LiveCapture::ECaptureState ClVT40LiveCapture::TakeSignatureState() {
  static std::atomic<ECaptureState> s_eSeen{eCaptureStateNone};
  const ECaptureState eState = m_eDetectState;
  return s_eSeen.exchange(eState) == eCaptureStateDone ? eCaptureStateNoFinger : eState;
}

void ClVT40LiveCapture::GetSignaturePreview(ClImage& oImage, ECaptureState& eState, double& dScore) {
  eState = TakeSignatureState();
  if (!WaitForImage(m_oSignatureBuffer, cnSignatureWaitSeconds)) {
    KLV_RAISE(ClException, "timeout during signature image reading", -60);
  }
  TpReadLock<ClImage> oRead(m_oSignatureBuffer);
  DrawInk(m_oPreviewInk, oRead.Item(), oImage, 0.5 * m_dSignatureFilterSigma);
  dScore = 0.0;
}

void ClVT40LiveCapture::GetImageSignature(ClImage& oImage, ECaptureState& eState, double& dScore) {
  const ClCalibrateGeometricData& oFull = m_pSetup->GetGeometricDataFull(m_bSmallImages);
  const unsigned int nHeight = IsSignatureHalf() ? oFull.m_nTargetHeight / 2 : oFull.m_nTargetHeight;
  m_oFullStrokes.NewWithType(ClImage::eUint8, static_cast<int>(oFull.m_nTargetWidth),
                             static_cast<int>(nHeight), 1, 0, 0, true);
  m_oFullStrokes = 0;
  {
    // Not while the picture is softened: a wide filter takes longer than many frames.
    Lock oSignatureLock(m_oSignatureMutex);
    m_oStrokes.Draw(m_oFullStrokes);
  }
  DrawInk(m_oFullInk, m_oFullStrokes, oImage, m_dSignatureFilterSigma);
  eState = eCaptureStateDone;
  dScore = 0.0;
}

/// Soft black ink on white from strokes of 255 on 0.
void ClVT40LiveCapture::DrawInk(StInk& oInk, ClImage& oStrokes, ClImage& oImage, double dSigma) {
  oInk.oFilter.ApplyParam(oStrokes, oImage, dSigma, 0);
  oInk.oScale.ApplyParam(oImage, cdSqrtTwoPi * dSigma);
  oInk.oInvert.ApplyParam(oImage, oImage);
}

void ClVT40LiveCapture::SetSignatureSensorMode(unsigned int nMode) {
  // A switch into the mode reads the value several times.
  Lock oModeLock(m_oModeMutex);
  if (m_eCaptureMode == eCaptureModeSignature) {
    KLV_RAISE(ClException, "Mode must not be switched while signature mode is active.", -50);
  }
  m_nSignatureSensorMode = nMode;
}

void ClVT40LiveCapture::SetSignatureDetectTime(double dTime) {
  if (!(dTime >= 0.0)) KLV_RAISE(ClException, "Illegal time delta.", -44);
  m_dSignatureDetectTime = dTime;
}

void ClVT40LiveCapture::SetSignatureFilterSigma(double dSigma) {
  if (!(dSigma >= 0.5)) KLV_RAISE(ClException, "Sigma must be >= 0.5.", -44);
  if (dSigma > 100.0) KLV_RAISE(ClException, "Sigma must be <= 100.", -44);
  m_dSignatureFilterSigma = dSigma;
}
