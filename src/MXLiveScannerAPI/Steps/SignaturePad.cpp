// Strokes, pauses and swipes.
#include "MXLiveScannerAPI/SignaturePad.h"

void ClSignaturePad::Start(int nPreviewHeight, Ticks nNow) {
  TpLock oLock(m_oMutex);
  m_oStrokes.Start(nPreviewHeight);
  m_oTiming = ClSignatureTiming(nNow);
}

void ClSignaturePad::Clear() {
  TpLock oLock(m_oMutex);
  m_oStrokes.Clear();
}

void ClSignaturePad::ResetSwipe() {
  TpLock oLock(m_oMutex);
  m_oSwipe.Reset();
}

ClSignaturePad::StOutcome ClSignaturePad::Follow(const ClPenDetector::StSight& oSight, Ticks nNow,
                                                 double dDetectTime) {
  TpLock oLock(m_oMutex);
  auto eState = ClVTLiveCaptureBase::eCaptureStateNoFinger;
  m_oStrokes.NextFrame();
  if (oSight.eKind == ClPenDetector::eLargeObject) {
    eState = m_oSwipe.Add(static_cast<int>(oSight.dWide));
    m_oTiming.Touch(nNow);
  } else if (oSight.eKind != ClPenDetector::ePen) {
    m_oStrokes.EndStroke();
  } else if (m_oStrokes.AddPoint(oSight.dX, oSight.dMeanY, oSight.nWeight)) {
    // The pen writes again after the pause: the points before belong to another signature.
    if (m_oTiming.HasPaused(nNow, dDetectTime)) m_oStrokes.Clear();
    m_oTiming.Touch(nNow);
  }
  if (!m_oTiming.IsDone(nNow, dDetectTime, m_oStrokes.Points())) return {eState, false};
  return {ClVTLiveCaptureBase::eCaptureStateDone, m_oTiming.IsFirstDoneFrame()};
}

void ClSignaturePad::CopyPreview(ClImage& oImage) {
  TpLock oLock(m_oMutex);
  oImage = m_oStrokes.Preview();
}

void ClSignaturePad::Draw(ClImage& oImage) {
  TpLock oLock(m_oMutex);
  m_oStrokes.Draw(oImage);
}
