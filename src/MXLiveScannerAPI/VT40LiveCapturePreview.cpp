// From raw sequences to masked images: the workers of the plain streams, and the preview call.
#include <cstdio>

#include "MXKernels/PointRows.h"
#include "MXLiveScannerAPI/RawSequenceLock.h"
#include "MXLiveScannerAPI/VT40LiveCapture.h"
#include "MXLiveScannerAPI/VT40SetupCalibrationData.h"
#include "MXLiveScannerTools/IpLiveScannerMask.h"
#include "MXTools/ErrorTable.h"
#include "MXTools/Exception.h"

namespace {

constexpr unsigned int cnPreviewWaitSeconds = 15;

}  // namespace

/// Runs the body of a worker; nothing leaves a thread. The reason of a failure is the worker's last word.
void ClVT40LiveCapture::RunWorker(const std::function<void()>& oWork) noexcept {
  boost::this_thread::disable_interruption oNoInterruption;
  try {
    oWork();
  } catch (const ClException& oFailure) {
    std::puts(oFailure.What());
  } catch (const std::exception& oFailure) {
    std::puts(oFailure.what());
  } catch (...) {
    std::puts(GetErrorDescriptionIntern(-722));
  }
}

void ClVT40LiveCapture::CreateDifferenceImage(const void* pRaw, int nWidth, int nHeight,
                                              unsigned char* pDst) {
  const size_t nPlane = static_cast<size_t>(nWidth) * static_cast<size_t>(nHeight);
  const unsigned char* pFirst = static_cast<const unsigned char*>(pRaw);
  const unsigned char* pSecond = pFirst + nPlane;
  const bool bDarkFirst = (pFirst[0] & 0x0F) == 0;
  MXKernels::SubtractSaturated(bDarkFirst ? pSecond : pFirst, bDarkFirst ? pFirst : pSecond, pDst, nPlane);
}

void ClVT40LiveCapture::ReadDifference(ClImage& oDst) {
  ClRawSequenceLock oSequence(*m_pScanner);
  CreateDifferenceImage(oSequence.Data(), oDst.Width(), oDst.Height(), oDst.Data());
  oSequence.Release();
}

void ClVT40LiveCapture::Calibrate(const StPipeline& oPipeline, StScratch& oScratch) {
  oScratch.oBalance.ApplyParam(oPipeline.oRaw, oScratch.oBalanced);
  oPipeline.fnCalibrate(oScratch.oBalanced, oScratch.oWarped);
  oScratch.oFlip.ApplyParam(oScratch.oWarped, oScratch.oWarped, true, false);
  oPipeline.fnAdjust(oScratch.oWarped, oPipeline.oResult, cnTargetGrey);
}

void ClVT40LiveCapture::CalibrateStream(const StPipeline& oPipeline) {
  StScratch oScratch;
  while (!boost::this_thread::interruption_requested()) {
    {
      SensorLock oSensorLock(m_oSensorMutex);
      ReadDifference(oPipeline.oRaw);
    }
    Calibrate(oPipeline, oScratch);
    TpWriteLock<ClImage> oWrite(m_oCalibratedBuffer);
    oWrite.Item() = oPipeline.oResult;
    oWrite.Publish();
  }
}

ClVT40LiveCapture::StPipeline ClVT40LiveCapture::PreviewPipeline() {
  return {m_oPreviewRaw, [this](ClImage& oIn, ClImage& oOut) { m_pSetup->CalibratePreview(oIn, oOut); },
          [this](ClImage& oIn, ClImage& oOut, unsigned char n) {
            m_pSetup->AdjustBrightnessPreview(oIn, oOut, n);
          },
          m_oPreviewCalibrated};
}

void ClVT40LiveCapture::CalibratePreviewThread() {
  RunWorker([this] { CalibrateStream(PreviewPipeline()); });
}

void ClVT40LiveCapture::CalibrateFullThread() {
  RunWorker([this] {
    CalibrateStream({m_oFullRaw, [this](ClImage& oIn, ClImage& oOut) { m_pSetup->CalibrateFull(oIn, oOut); },
                     [this](ClImage& oIn, ClImage& oOut, unsigned char n) {
                       m_pSetup->AdjustBrightnessFull(oIn, oOut, n);
                     },
                     m_oFullCalibrated});
  });
}

void ClVT40LiveCapture::MaskThread() {
  RunWorker([this] {
    while (!boost::this_thread::interruption_requested()) {
      if (!m_oCalibratedBuffer.WaitNewData(cnMaskWaitSeconds)) continue;
      if (!m_oCalibratedBuffer.HasNewData()) continue;
      TpReadLock<ClImage> oRead(m_oCalibratedBuffer);
      TpWriteLock<ClImage> oWrite(m_oMaskedBuffer);
      m_pSetup->GetMaskProcessor(0)->ApplyParam(oRead.Item(), oWrite.Item(), cnMaskDpi, 1.0);
      oWrite.Publish();
    }
  });
}

bool ClVT40LiveCapture::WaitForImage(ClTpTripleBuffer<ClImage>& oBuffer, unsigned int nSeconds) {
  const auto oEnd = Klv::MonotonicNow() + boost::posix_time::seconds(nSeconds);
  for (;;) {
    if (oBuffer.HasNewData()) return true;
    const auto oLeft = oEnd - Klv::MonotonicNow();
    if (oLeft <= boost::posix_time::time_duration()) return false;
    oBuffer.WaitNewData(oLeft);
  }
}

bool ClVT40LiveCapture::IsPreviewMode(ECaptureMode eMode) {
  return eMode == eCaptureModePreview || eMode == eCaptureModeAuto || eMode == eCaptureModeAutoLive;
}

void ClVT40LiveCapture::CheckMode(bool bAccepted) {
  if (!bAccepted) KLV_RAISE(ClException, "Invalid capture mode.", -50);
}

void ClVT40LiveCapture::GetPreviewImage(ClImage& oImage, ECaptureState& eState, double& dScore) {
  Lock oImageLock(m_oImageMutex);
  if (m_eCaptureMode == eCaptureModeSignature) return GetSignaturePreview(oImage, eState, dScore);
  CheckMode(IsPreviewMode(m_eCaptureMode));
  // Read in front of the wait: the state may be a frame older than the image, never newer.
  eState = m_eDetectState;
  if (!WaitForImage(m_oMaskedBuffer, cnPreviewWaitSeconds)) {
    KLV_RAISE(ClException, "timeout during preview image reading", -60);
  }
  TpReadLock<ClImage> oRead(m_oMaskedBuffer);
  oImage = oRead.Item();
  dScore = m_dScore;
}

void ClVT40LiveCapture::ResetImage() {
  const ECaptureMode eMode = m_eCaptureMode;
  if (eMode == eCaptureModeRoll) {
    Lock oAutoRollLock(m_oAutoRollMutex);
    m_oAutoRoll.ResetProcessor();
  } else if (eMode == eCaptureModeSignature) {
    Lock oSignatureLock(m_oSignatureMutex);
    m_oStrokes.Clear();
  } else {
    KLV_RAISE(ClException, "Image reset not supported in current capture mode.", -50);
  }
}
