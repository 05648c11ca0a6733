// Previews, and the capture that interrupts them.
#include "MXLiveScannerAPI/PreviewMode.h"

#include "MXTools/HelperThread.h"

namespace {

constexpr unsigned int cnPreviewWaitSeconds = 15;

}  // namespace

void ClPreviewMode::GetImage(ClImage& oImage, ECaptureState& eState, double& dScore) {
  TpLock oSensorLock(m_oSensor);
  TpLock oFullLock(m_oFull);
  bool bDone = true;
  if (m_oFull.IsOffered()) {
    m_oFull.Mask();
  } else {
    ClPreviewRowGuard oRow(m_oSensor);
    m_oFull.Shoot(m_oSensor);
    m_oFull.Rectify();
    ClHelperThread oMasking([this] {
      m_oFull.AssertHeld();
      m_oFull.Mask();
    });
    oRow.Restore();
    oMasking.Join();
    bDone = m_oFull.IsComplete();
  }
  eState = bDone ? ClVTLiveCaptureBase::eCaptureStateDone : ClVTLiveCaptureBase::eCaptureStateNoFinger;
  dScore = m_oRooms.oReport.dScore;
  oImage = m_oFull.MaskedPicture();
  m_oFull.Withdraw();
}

void ClPreviewMode::GetPreviewImage(ClImage& oImage, ECaptureState& eState, double& dScore) {
  // The state is read before the wait: it may be a frame older than the image, but never newer.
  eState = m_oRooms.oReport.eState;
  Fetch(oImage, cnPreviewWaitSeconds, "timeout during preview image reading");
  dScore = m_oRooms.oReport.dScore;
}
