// The platen as a signature pad.
#pragma once

#include <memory>

#include "MXImageProcessing/IpFilterGauss.h"
#include "MXImageProcessing/IpInvert.h"
#include "MXImageProcessing/IpScale.h"
#include "MXLiveScannerAPI/CaptureMode.h"
#include "MXLiveScannerAPI/FrameBuffer.h"
#include "MXLiveScannerAPI/FrameWorker.h"
#include "MXLiveScannerAPI/LatchedWord.h"
#include "MXLiveScannerAPI/PenDetector.h"

/// Properties of the signature pad.
///
/// Threads  thread-safe.
struct StSignatureSettings {
  std::atomic<double> dFilterSigma{2.0};
  std::atomic<double> dDetectTime{2.0};  ///< seconds
  ClLatchedWord oSensorMode;             ///< 0 the whole pad, otherwise its upper half
};

/// One worker takes lit frames, follows the pen and publishes every third preview of the strokes. The calling
/// thread makes ink of them.
class ClSignatureMode : public ClCaptureMode {
 public:
  /// Holds the sensor mode of the settings until its destruction.
  explicit ClSignatureMode(const StCaptureRooms& oRooms);

  std::optional<ClVT40Sensor::ERow> Row() const override { return m_eRow; }
  void Start() override;
  void Stop() override;
  /// The signature so far, at full size.
  void GetImage(ClImage& oImage, ECaptureState& eState, double& dScore) override;
  /// Waits up to 15 seconds. Errors: -60.
  void GetPreviewImage(ClImage& oImage, ECaptureState& eState, double& dScore) override;

 private:
  /// The processors that make ink of strokes.
  struct StInk {
    ClIpFilterGauss oFilter;
    ClIpScale oScale;
    ClIpInvert oInvert;
  };

  bool IsHalf() const { return m_eRow == ClVT40Sensor::eSignatureHalf; }
  int RowsOf(unsigned int nRows) const { return static_cast<int>(IsHalf() ? nRows / 2 : nRows); }
  void Begin();
  void FollowPass();
  ECaptureState TakeState();
  static void DrawInk(StInk& oInk, ClImage& oStrokes, ClImage& oImage, double dSigma);

  const StCaptureRooms& m_oRooms;
  const ClLatch m_oSensorMode;
  const ClVT40Sensor::ERow m_eRow;
  ClFrameBuffer m_oPreviews;
  StInk m_oPreviewInk;
  StInk m_oFullInk;
  ClImage m_oFullStrokes;

  // The worker's.
  ClImage m_oRaw;
  ClImage m_oAdjusted;
  std::unique_ptr<ClPenDetector> m_pDetector;
  unsigned int m_nFrame = 0;
  ClFrameWorker m_oFollowing;
};
