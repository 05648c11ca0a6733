// One full-resolution sequence, and the end of the capture.
#include "MXLiveScannerAPI/OneShotMode.h"

#include "MXTools/Failure.h"
#include "MXTools/HelperThread.h"
#include "MXVTScanAPI/MXVTScanAPIHandleBase.h"

void ClOneShotMode::GetImage(ClImage& oImage, ECaptureState& eState, double& dScore) {
  TpLock oSensorLock(m_oSensor);
  TpLock oFullLock(m_oFull);
  m_oScanner.EnableCaptureThread(true);
  TpUndo oUndo([this] { m_oScanner.EnableCaptureThread(false); });
  {
    // No other thread waits for this one, which would end the wait of a scan library that does not by itself.
    ClHelperThread oShooting([this] {
      m_oSensor.AssertHeld();
      m_oFull.AssertHeld();
      m_oFull.Shoot(m_oSensor);
    });
    oShooting.Join([this] { m_oSensor.EndStuckWait(); });
  }
  {
    // The picture is rectified while the capture sequence is being closed.
    ClHelperThread oRectifying([this] {
      m_oFull.AssertHeld();
      m_oFull.RectifyAndMask();
    });
    if (!m_oScanner.SetCaptureSequence(0, nullptr, nullptr)) {
      KLV_RAISE(ClException, "Scanner disconnected.", -60);
    }
    unsigned int nEndOfSequence = 1024;
    m_oScanner.SetCaptureSequenceEx(1, &nEndOfSequence);
    oRectifying.Join();
  }
  oUndo.Dismiss();
  oImage = m_oFull.MaskedPicture();
  eState = ClVTLiveCaptureBase::eCaptureStateNoFinger;
  dScore = 0.0;
  m_oScanner.SetLED(0);
  m_oScanner.EnableCaptureThread(false);
}
