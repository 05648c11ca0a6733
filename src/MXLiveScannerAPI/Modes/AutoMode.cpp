// When to capture, the capture itself, and its score.
#include "MXLiveScannerAPI/AutoMode.h"

#include "MXLiveScannerAPI/LivenessDetector.h"
#include "MXLiveScannerAPI/VT40SetupCalibrationData.h"
#include "MXTools/Exception.h"
#include "MXTools/HelperThread.h"

namespace {

/// The number of frames after a capture that were exposed while the settings changed.
constexpr int cnSpoiledFrames = 2;
/// How long the light stays on that shows that the fingers were captured.
constexpr long cnPauseMs = 150;
/// The last revision of scanners whose captures the liveness library can judge.
constexpr unsigned int cnLastJudgedRevision = 6;
constexpr int cnLivenessSequences = 4;

}  // namespace

ClAutoMode::ClAutoMode(const StCaptureRooms& oRooms, bool bLive)
    : ClPreviewMode(oRooms),
      m_bLive(bLive),
      m_oMeter(oRooms.oSetup.GetGeometricDataPreview(oRooms.bSmallImages), m_oRoad.Raw()) {
  if (bLive && !oRooms.oLiveness.IsAvailable()) {
    KLV_RAISE(ClException, "LiveDetection not available in this release.", -103);
  }
}

void ClAutoMode::Reset() {
  m_bResetMeter = true;
  m_bResetDetector = true;
}

void ClAutoMode::Rectify(ClImage& oOut) {
  if (m_bResetMeter.exchange(false)) m_oMeter.Reset();
  const ClDirtMeter::ESight eSight = m_oMeter.Add(m_oRoad.Raw());
  if (eSight == ClDirtMeter::eCovered) return m_oRoad.Rectify(oOut);
  if (eSight == ClDirtMeter::eMeasured) m_oRooms.oReport.nCondition = m_oMeter.Level();
  oOut = static_cast<unsigned char>(0);
}

void ClAutoMode::Publish(TpReadLock<ClImage>& oFrame) {
  if (m_bResetDetector.exchange(false)) {
    m_oDetector.Reset();
    m_nSkipFrames = 0;
  }
  m_oFull.CountFrame();
  if (m_nSkipFrames > 0) {
    --m_nSkipFrames;
    return;
  }
  TpWriteLock<ClImage> oWrite(m_oRooms.oFrames);
  m_oRoad.Mask(oFrame.Item(), oWrite.Item());
  const ClFingerDetector::EDecision eDecision = m_oDetector.Add(oFrame.Item(), oWrite.Item());
  oFrame.Release();
  Decide(eDecision, oWrite.Item());
  oWrite.Publish();
}

void ClAutoMode::Decide(ClFingerDetector::EDecision eDecision, const ClImage& oMask) {
  std::atomic<ECaptureState>& eState = m_oRooms.oReport.eState;
  if (eDecision == ClFingerDetector::eNoFinger || boost::this_thread::interruption_requested()) {
    eState = ClVTLiveCaptureBase::eCaptureStateNoFinger;
  } else if (eDecision == ClFingerDetector::eUnsteady) {
    eState = ClVTLiveCaptureBase::eCaptureStateFinger;
  } else if (eState != ClVTLiveCaptureBase::eCaptureStateDone) {
    Capture(oMask);
  }
}

void ClAutoMode::Capture(const ClImage& oMask) {
  TpLock oSensorLock(m_oSensor);
  TpLock oFullLock(m_oFull);
  const bool bGood = Shoot();
  oSensorLock.unlock();
  if (bGood) {
    if (m_bLive) MeasureScore();
    m_oFull.KeepPreviewMask(oMask);
  }
  // The picture and its score are set before: whoever sees the state or the offer finds them complete.
  m_oFull.Offer();
  m_oRooms.oReport.eState =
      bGood ? ClVTLiveCaptureBase::eCaptureStateDone : ClVTLiveCaptureBase::eCaptureStateFinger;
}

bool ClAutoMode::Shoot() {
  ClPreviewRowGuard oRow(m_oSensor);
  if (m_bLive) {
    m_oSensor.SelectLivenessLights();
    for (int n = 0; n < cnLivenessSequences; ++n) m_oSensor.SkipSequence();
  }
  m_oFull.Shoot(m_oSensor);
  ClHelperThread oRectifying([this] {
    m_oFull.AssertHeld();
    m_oFull.Rectify();
  });
  // The rectifying worker of the preview waits for the sensor, so that its raw frame does not change.
  const bool bGood = m_oFull.IsGood(m_oRoad.Raw());
  if (bGood) {
    m_oRooms.oReport.Beep();
    m_oSensor.SelectCapturedLight();
    if (!boost::this_thread::interruption_requested()) {
      boost::this_thread::sleep(boost::posix_time::milliseconds(cnPauseMs));
    }
  }
  oRow.Restore();
  m_nSkipFrames = cnSpoiledFrames;
  oRectifying.Join();
  return bGood;
}

void ClAutoMode::MeasureScore() {
  const unsigned int nRevision = m_oRooms.oSetup.GetScannerRevision();
  if (nRevision == 0) {
    m_oRooms.oReport.dScore = ClLivenessDetector::DrawnScore();
  } else if (nRevision <= cnLastJudgedRevision) {
    m_oFull.Mask();
    m_oRooms.oReport.dScore = m_oFull.Score(m_oRooms.oLiveness);
  }
}
