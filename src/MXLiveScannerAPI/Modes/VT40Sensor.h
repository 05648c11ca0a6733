// The sensor of the ten-finger scanner: its settings, its light, and the sequences that it lends.
#pragma once

#include <atomic>
#include <cstdint>
#include <initializer_list>

#include "MXTools/FpImage.h"
#include "MXTools/TicketMutex.h"

class ClMXVTScanAPIHandleBase;
class ClRawSequenceLock;
class ClVT40SetupCalibrationData;

/// Whoever sets the sensor, or reads sequences while others may set it, holds its lock. The lock serves its
/// callers in the order of arrival, so that a capture gets in between two frames of a stream.
///
/// Ownership  neither scanner nor calibration state is owned; both outlive it.
/// Threads    the lock is thread-safe, and so is what requires it. ReadLit is for the one worker of a mode in
///            which nobody else sets the sensor.
/// Errors     the scanner's numbers; -103 when the scan library cannot lend sequences.
class KLV_CAPABILITY("mutex") ClVT40Sensor {
 public:
  /// What the sensor is set for.
  enum ERow { ePreview, eRoll, eFull, eSignature, eSignatureHalf };

  explicit ClVT40Sensor(bool bSmallImages) : m_bSmallImages(bSmallImages) {}
  void SetScanner(ClMXVTScanAPIHandleBase* pScanner) { m_pScanner = pScanner; }
  void SetCalibration(ClVT40SetupCalibrationData* pSetup) { m_pSetup = pSetup; }

  void lock() KLV_ACQUIRE() KLV_NOT_ANALYSED {
    m_oMutex.lock([this] { EndStuckWait(); });
  }
  void unlock() KLV_RELEASE() KLV_NOT_ANALYSED { m_oMutex.unlock(); }
  /// For code that runs only while its caller holds the lock, where the compiler cannot see it.
  void AssertHeld() const KLV_ASSERT_CAPABILITY(this) {}

  void SetGains() KLV_REQUIRES(this);
  /// Exposure, sensor mode and lights of a row. The next sequence is the first with them.
  void Select(ERow eRow) KLV_REQUIRES(this);
  /// The preview's row under the lights that the liveness library asks for, one sequence after the other.
  void SelectLivenessLights() KLV_REQUIRES(this);
  /// The preview's row under one light, which shows that the fingers were captured.
  void SelectCapturedLight() KLV_REQUIRES(this);

  /// Waits for the next sequence; the image, which has the size of its frames, becomes the lit frame less the
  /// dark one.
  void ReadDifference(ClImage& oDifference) KLV_REQUIRES(this);
  /// Waits for the next sequence and gives it back unread.
  void SkipSequence() KLV_REQUIRES(this);
  /// Waits for the next sequence of one lit frame, and copies it.
  void ReadLit(ClImage& oLit);
  /// Ends the capture when the scan library has not answered for so long that it will not by itself. For
  /// those who wait for the end of a call that waits for a sequence; raises nothing.
  void EndStuckWait();
  /// Whether the capture has been ended so since the last call.
  bool TakeEnded() { return m_bEnded.exchange(false); }

  /// A new image for the lit frames of the row. Errors: -44 when the scanner's frames have another size.
  void MakeLit(ERow eRow, ClImage& oLit) const;

 private:
  struct StSetting {
    unsigned int nExposure;
    int nScanMode;
  };

  static constexpr int64_t cnNoWait = -1;

  /// Waits for the next sequence.
  ClRawSequenceLock NextSequence();
  StSetting SettingOf(ERow eRow) const;
  void SetExposure(unsigned int nExposure);
  void SetSequence(int nScanMode, unsigned int nEntries, std::initializer_list<unsigned long long> aLights,
                   unsigned int nLights);

  const bool m_bSmallImages;
  ClMXVTScanAPIHandleBase* m_pScanner = nullptr;
  ClVT40SetupCalibrationData* m_pSetup = nullptr;
  ClTicketMutex m_oMutex;
  std::atomic<int64_t> m_nWaitsSinceMs{cnNoWait};
  std::atomic<bool> m_bEnded{false};
};

/// Puts the preview's row back on every way out of a capture, so that the workers of the preview never meet
/// frames of another size.
///
/// Threads  thread-bound; the sensor is held from construction to destruction.
class ClPreviewRowGuard {
 public:
  explicit ClPreviewRowGuard(ClVT40Sensor& oSensor) KLV_REQUIRES(oSensor) : m_oSensor(oSensor) {}
  ClPreviewRowGuard(const ClPreviewRowGuard&) = delete;
  ClPreviewRowGuard& operator=(const ClPreviewRowGuard&) = delete;
  ~ClPreviewRowGuard();
  /// Restores the row and reports a failure.
  void Restore();

 private:
  ClVT40Sensor& m_oSensor;
  bool m_bRestored = false;
};
