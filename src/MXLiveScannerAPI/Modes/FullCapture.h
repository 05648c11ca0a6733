// The full-resolution capture: the shot, its pictures, and whether it can still be fetched.
#pragma once

#include <atomic>
#include <memory>

#include "MXLiveScannerAPI/CaptureCheck.h"
#include "MXLiveScannerAPI/FrameRoad.h"
#include "MXLiveScannerAPI/MaskChange.h"
#include "MXLiveScannerAPI/VT40Sensor.h"
#include "MXTools/Mutex.h"

class ClLivenessDetector;

/// Belongs to whoever holds its lock, from the shot to the copy. It outlives the capture modes, since they
/// share its pictures: the mask of the last automatic capture judges later ones.
///
/// Ownership  keeps its pictures and their scratch from one capture to the next.
/// Threads    the lock is thread-safe, and so is what requires it. Rectify, Mask and RectifyAndMask may run
///            on a helper thread, one at a time, while their caller holds the lock.
/// Errors     the scanner's numbers and the calibration state's.
class KLV_CAPABILITY("mutex") ClFullCapture {
 public:
  explicit ClFullCapture(bool bSmallImages) : m_bSmallImages(bSmallImages) {}
  /// Makes the pictures at the sizes of a scanner.
  void SetCalibration(ClVT40SetupCalibrationData& oSetup) KLV_REQUIRES(this);

  void lock() KLV_ACQUIRE() KLV_NOT_ANALYSED { m_oMutex.lock(); }
  void unlock() KLV_RELEASE() KLV_NOT_ANALYSED { m_oMutex.unlock(); }
  /// For helper threads, whose caller holds the lock until it has joined them.
  void AssertHeld() const KLV_ASSERT_CAPABILITY(this) {}

  /// Drops the last capture.
  void Reset() KLV_REQUIRES(this);
  /// Takes a full-resolution sequence. The sensor stays in that mode.
  void Shoot(ClVT40Sensor& oSensor) KLV_REQUIRES(this, oSensor);
  void Rectify() KLV_REQUIRES(this);
  void Mask() KLV_REQUIRES(this);
  /// Does both. An empty platen, whose difference is noise alone, at once becomes a black picture and a white
  /// mask.
  void RectifyAndMask() KLV_REQUIRES(this);

  /// Whether the fingers of the preview before the shot were still there.
  bool IsGood(ClImage& oPreviewRaw) KLV_REQUIRES(this);
  /// Whether the capture shows what the last automatic one did, or enough of any fingers.
  bool IsComplete() KLV_REQUIRES(this) { return m_pChange->IsComplete(m_oPreviewMask, m_oMask); }
  /// The mask of the preview to which an automatic capture belongs.
  void KeepPreviewMask(const ClImage& oMask) KLV_REQUIRES(this) { m_oPreviewMask = oMask; }
  /// The liveness score of the masked capture.
  double Score(ClLivenessDetector& oDetector) KLV_REQUIRES(this);
  const ClImage& MaskedPicture() const KLV_REQUIRES(this) { return m_oMask; }

  /// An automatic capture can be fetched while fewer than five frames have passed since.
  void Offer() { m_nFramesSinceCapture = 0; }
  void Withdraw() { m_nFramesSinceCapture = cnNoCapture; }
  bool IsOffered() const { return m_nFramesSinceCapture < cnNoCapture; }
  /// To be called for each frame of the preview.
  void CountFrame() {
    // Once the offer has ended, the count must not go on: it would wrap, and the offer would begin again.
    if (IsOffered()) ++m_nFramesSinceCapture;
  }

 private:
  static constexpr unsigned int cnNoCapture = 5;

  const bool m_bSmallImages;
  ClMutex m_oMutex;
  ClVT40SetupCalibrationData* m_pSetup KLV_GUARDED_BY(this) = nullptr;
  std::unique_ptr<ClFrameRoad> m_pRoad KLV_GUARDED_BY(this);
  std::unique_ptr<ClMaskChange> m_pChange KLV_GUARDED_BY(this);
  ClImage m_oCalibrated KLV_GUARDED_BY(this);
  ClImage m_oMask KLV_GUARDED_BY(this);
  ClImage m_oPreviewMask KLV_GUARDED_BY(this);  // 255 where nothing was seen yet
  ClCaptureCheck m_oCheck KLV_GUARDED_BY(this);
  std::atomic<unsigned int> m_nFramesSinceCapture{cnNoCapture};
};
