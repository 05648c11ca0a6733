// The growing print, and the end of a roll.
#include "MXLiveScannerAPI/RollMode.h"

ClRollMode::ClRollMode(const StCaptureRooms& oRooms) : ClStreamMode(oRooms, ClFrameRoad::eRoll) {
  oRooms.oRoll.RequestReset();
}

void ClRollMode::Publish(TpReadLock<ClImage>& oFrame) {
  m_oRoad.Mask(oFrame.Item(), m_oMask);
  oFrame.Release();
  TpWriteLock<ClImage> oWrite(m_oRooms.oFrames);
  const ClRollAssembly::StOutcome oOutcome = m_oRooms.oRoll.Add(m_oMask, oWrite.Item());
  if (oOutcome.eState == ClIpAutoRoll::eStateRolling) {
    m_oRooms.oReport.eState = ClVTLiveCaptureBase::eCaptureStateFinger;
  }
  oWrite.Publish();
  // The state follows the picture, so that whoever sees the end finds the finished print.
  if (oOutcome.eState == ClIpAutoRoll::eStateFinished) ReportFinished(oOutcome.nVerdict);
}

void ClRollMode::ReportFinished(long nVerdict) {
  const StCaptureReport& oReport = m_oRooms.oReport;
  oReport.nReturnCode = nVerdict;
  // The end is reported once: the call that has seen it resets the state to "no finger".
  ECaptureState eRolling = ClVTLiveCaptureBase::eCaptureStateFinger;
  if (oReport.eState.compare_exchange_strong(eRolling, ClVTLiveCaptureBase::eCaptureStateDone))
    oReport.Beep();
}
