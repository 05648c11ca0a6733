// Rolled fingerprints: the two workers, and the call that shows the print as it grows.
#include "MXLiveScannerAPI/VT40LiveCapture.h"
#include "MXLiveScannerAPI/VT40SetupCalibrationData.h"
#include "MXLiveScannerTools/IpLiveScannerMask.h"
#include "MXTools/AtomicAccess.h"
#include "MXTools/Exception.h"
#include "MXVTScanAPI/MXVTScanAPIHandleBase.h"

namespace {

constexpr unsigned int cnRollWaitSeconds = 5;

}  // namespace

void ClVT40LiveCapture::CalibrateRollThread() {
  RunWorker([this] {
    CalibrateStream({m_oRollRaw, [this](ClImage& oIn, ClImage& oOut) { m_pSetup->CalibrateRoll(oIn, oOut); },
                     [this](ClImage& oIn, ClImage& oOut, unsigned char n) {
                       m_pSetup->AdjustBrightnessRoll(oIn, oOut, n);
                     },
                     m_oRollCalibrated});
  });
}

void ClVT40LiveCapture::MaskRollThread() {
  RunWorker([this] {
    ClImage oMask;
    while (!boost::this_thread::interruption_requested()) {
      if (!m_oCalibratedBuffer.WaitNewData(cnMaskWaitSeconds)) continue;
      if (!m_oCalibratedBuffer.HasNewData()) continue;
      {
        TpReadLock<ClImage> oRead(m_oCalibratedBuffer);
        m_pSetup->GetMaskProcessor(0)->ApplyParam(oRead.Item(), oMask, cnMaskDpi, 1.0);
      }
      TpWriteLock<ClImage> oWrite(m_oMaskedBuffer);
      int nState = ClIpAutoRoll::eStateIdle;
      long nReturnCode = 0;
      {
        Lock oAutoRollLock(m_oAutoRollMutex);
        // What it returns is the grade of the roll, no failure.
        m_oAutoRoll.ApplyParam(oMask, oWrite.Item());
        nState = m_oAutoRoll.GetProcessorState();
        nReturnCode = m_oAutoRoll.GetReturnCode();
      }
      if (nState == ClIpAutoRoll::eStateRolling) m_eDetectState = eCaptureStateFinger;
      oWrite.Publish();
      // Behind the picture, so that whoever sees the end finds the finished print.
      if (nState == ClIpAutoRoll::eStateFinished) ReportFinishedRoll(nReturnCode);
    }
  });
}

void ClVT40LiveCapture::ReportFinishedRoll(long nReturnCode) {
  m_nReturnCode = nReturnCode;
  ECaptureState eRolling = eCaptureStateFinger;
  if (!m_eDetectState.compare_exchange_strong(eRolling, eCaptureStateDone)) return;
  if (KlvAtomicLoad(m_nAutoCaptureBeep) != 0) m_pScanner->Beep(300, 100);
}

void ClVT40LiveCapture::GetRollImage(ClImage& oImage, ECaptureState& eState, double& dScore) {
  const bool bArrived = WaitForImage(m_oMaskedBuffer, cnRollWaitSeconds);
  // Read between wait and copy, so that "done" always comes with the finished picture.
  eState = m_eDetectState;
  if (!bArrived) KLV_RAISE(ClException, "timeout during rolled image reading", -60);
  TpReadLock<ClImage> oRead(m_oMaskedBuffer);
  oImage = oRead.Item();
  dScore = 0.0;
}
