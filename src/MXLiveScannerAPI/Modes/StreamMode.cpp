// From raw sequences to masked frames, by two workers.
#include "MXLiveScannerAPI/StreamMode.h"

#include "MXTools/Exception.h"

namespace {

/// The mask processor of streams.
constexpr unsigned int cnStreamMask = 0;
constexpr unsigned int cnMaskWaitSeconds = 3;

}  // namespace

ClStreamMode::ClStreamMode(const StCaptureRooms& oRooms, ClFrameRoad::EKind eKind)
    : m_oRooms(oRooms),
      m_oSensor(oRooms.oSensor),
      m_oRoad(oRooms.oSetup, eKind, oRooms.bSmallImages, cnStreamMask),
      m_oSize(ClFrameRoad::TargetSize(oRooms.oSetup, eKind, oRooms.bSmallImages)) {
  m_oRectified.Renew(m_oSize.nWidth, m_oSize.nHeight);
}

void ClStreamMode::Start() {
  // A call that waits for a rolled print holds no lock of the engine: while it reads a frame, this raises,
  // and the frame stays.
  m_oRooms.oFrames.Renew(m_oSize.nWidth, m_oSize.nHeight);
  m_oRooms.oWaits.Begin();
  const auto Failed = [this] { m_oRooms.oWaits.Fail(); };
  m_oRectifying.Start("vt40-rectify", {[this] { RectifyPass(); }, Failed});
  m_oMasking.Start("vt40-mask", {[this] { MaskPass(); }, Failed});
}

void ClStreamMode::Stop() {
  m_oRectifying.Interrupt();
  m_oMasking.Interrupt();
  const auto Wake = [this] {
    m_oRectified.InterruptWait();
    m_oRooms.oFrames.InterruptWait();
    m_oSensor.EndStuckWait();
  };
  m_oRectifying.Join(Wake);
  m_oMasking.Join(Wake);
  Wake();
}

void ClStreamMode::RectifyPass() {
  {
    TpLock oSensorLock(m_oSensor);
    m_oSensor.ReadDifference(m_oRoad.Raw());
  }
  TpWriteLock<ClImage> oWrite(m_oRectified);
  Rectify(oWrite.Item());
  oWrite.Publish();
}

void ClStreamMode::MaskPass() {
  if (!m_oRectified.WaitNewData(cnMaskWaitSeconds) || !m_oRectified.HasNewData()) return;
  TpReadLock<ClImage> oRead(m_oRectified);
  Publish(oRead);
}

void ClStreamMode::Publish(TpReadLock<ClImage>& oFrame) {
  TpWriteLock<ClImage> oWrite(m_oRooms.oFrames);
  m_oRoad.Mask(oFrame.Item(), oWrite.Item());
  oWrite.Publish();
}

void ClStreamMode::Fetch(ClImage& oImage, unsigned int nSeconds, const char* szTimeOut) {
  if (!m_oRooms.oFrames.WaitForFrame(nSeconds, m_oRooms.oWaits)) KLV_RAISE(ClException, szTimeOut, -60);
  m_oRooms.oFrames.Fetch(oImage);
}
