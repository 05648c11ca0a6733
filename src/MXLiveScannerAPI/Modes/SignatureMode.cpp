// The worker that follows the pen, and the pictures of its strokes.
#include "MXLiveScannerAPI/SignatureMode.h"

#include "MXLiveScannerAPI/SignaturePad.h"
#include "MXLiveScannerAPI/VT40SetupCalibrationData.h"
#include "MXTools/Exception.h"
#include "MXTools/ProcessorTime.h"

namespace {

constexpr unsigned int cnSignatureWaitSeconds = 15;
constexpr unsigned char cnSignatureGrey = 192;
constexpr unsigned int cnPadRows = 800;
constexpr unsigned int cnFramesPerPreview = 3;
/// Times the deviation of the Gaussian filter, this restores the full brightness of a thin line that it has
/// spread.
constexpr double cdSqrtTwoPi = 2.5066282746310002;

}  // namespace

ClSignatureMode::ClSignatureMode(const StCaptureRooms& oRooms)
    : m_oRooms(oRooms),
      m_oSensorMode(oRooms.oSettings.oSensorMode),
      m_eRow(m_oSensorMode.Value() != 0 ? ClVT40Sensor::eSignatureHalf : ClVT40Sensor::eSignature) {}

void ClSignatureMode::Start() {
  const ClCalibrateGeometricData& oPreview = m_oRooms.oSetup.GetGeometricDataPreview(m_oRooms.bSmallImages);
  m_oPreviews.Renew(static_cast<int>(oPreview.m_nTargetWidth), RowsOf(oPreview.m_nTargetHeight));
  m_oRooms.oWaits.Begin();
  m_oFollowing.Start("vt40-pen",
                     {[this] { FollowPass(); }, [this] { m_oRooms.oWaits.Fail(); }, [this] { Begin(); }});
}

void ClSignatureMode::Stop() {
  m_oFollowing.Interrupt();
  m_oFollowing.Join([this] {
    m_oPreviews.InterruptWait();
    m_oRooms.oSensor.EndStuckWait();
  });
}

void ClSignatureMode::Begin() {
  m_oRooms.oSensor.MakeLit(m_eRow, m_oRaw);
  m_oRooms.oPad.Start(RowsOf(cnPadRows), Klv::ProcessorTime());
  m_pDetector = std::make_unique<ClPenDetector>(m_oRaw.Width(), m_oRaw.Height(), IsHalf());
}

void ClSignatureMode::FollowPass() {
  m_oRooms.oSensor.ReadLit(m_oRaw);
  m_oRooms.oSetup.AdjustBrightnessSignature(m_oRaw, m_oAdjusted, cnSignatureGrey);
  const ClPenDetector::StSight oSight = m_pDetector->Detect(m_oAdjusted);
  if (oSight.eKind == ClPenDetector::eFirstFrame) return;
  const ClSignaturePad::StOutcome oOutcome =
      m_oRooms.oPad.Follow(oSight, Klv::ProcessorTime(), m_oRooms.oSettings.dDetectTime);
  if (oOutcome.bJustDone) m_oRooms.oReport.Beep();
  m_oRooms.oReport.eState = oOutcome.eState;
  if (++m_nFrame % cnFramesPerPreview != 0) return;
  TpWriteLock<ClImage> oWrite(m_oPreviews);
  m_oRooms.oPad.CopyPreview(oWrite.Item());
  oWrite.Publish();
}

/// A completion is reported once: what the last call saw decides, even if that was a call of another engine.
ClSignatureMode::ECaptureState ClSignatureMode::TakeState() {
  static std::atomic<ECaptureState> s_eSeen{ClVTLiveCaptureBase::eCaptureStateNone};
  const ECaptureState eState = m_oRooms.oReport.eState;
  return s_eSeen.exchange(eState) == ClVTLiveCaptureBase::eCaptureStateDone
             ? ClVTLiveCaptureBase::eCaptureStateNoFinger
             : eState;
}

void ClSignatureMode::GetPreviewImage(ClImage& oImage, ECaptureState& eState, double& dScore) {
  eState = TakeState();
  if (!m_oPreviews.WaitForFrame(cnSignatureWaitSeconds, m_oRooms.oWaits)) {
    KLV_RAISE(ClException, "timeout during signature image reading", -60);
  }
  TpReadLock<ClImage> oRead(m_oPreviews);
  DrawInk(m_oPreviewInk, oRead.Item(), oImage, 0.5 * m_oRooms.oSettings.dFilterSigma);
  dScore = 0.0;
}

void ClSignatureMode::GetImage(ClImage& oImage, ECaptureState& eState, double& dScore) {
  const ClCalibrateGeometricData& oFull = m_oRooms.oSetup.GetGeometricDataFull(m_oRooms.bSmallImages);
  m_oFullStrokes.NewWithType(ClImage::eUint8, static_cast<int>(oFull.m_nTargetWidth),
                             RowsOf(oFull.m_nTargetHeight), 1, 0, 0, true);
  m_oFullStrokes = 0;
  m_oRooms.oPad.Draw(m_oFullStrokes);
  DrawInk(m_oFullInk, m_oFullStrokes, oImage, m_oRooms.oSettings.dFilterSigma);
  eState = ClVTLiveCaptureBase::eCaptureStateDone;
  dScore = 0.0;
}

/// Soft black ink on white from strokes of 255 on 0.
void ClSignatureMode::DrawInk(StInk& oInk, ClImage& oStrokes, ClImage& oImage, double dSigma) {
  oInk.oFilter.ApplyParam(oStrokes, oImage, dSigma, 0);
  oInk.oScale.ApplyParam(oImage, cdSqrtTwoPi * dSigma);
  oInk.oInvert.ApplyParam(oImage, oImage);
}
