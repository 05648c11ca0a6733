// The liveness library, where there is one.
#pragma once

#include <memory>

#include "MXTools/FpImage.h"

class ClKelvarinFakeFingerDetectionVT40Wrapper;

/// Ownership  a reference on the library and a context in it, for the life of the object.
/// Threads    thread-bound.
class ClLivenessDetector {
 public:
  /// Loads the library. A missing or failing one leaves the object unavailable. Errors: -102.
  ClLivenessDetector();
  ClLivenessDetector(const ClLivenessDetector&) = delete;
  ClLivenessDetector& operator=(const ClLivenessDetector&) = delete;
  ~ClLivenessDetector();

  bool IsAvailable() const { return m_hContext != nullptr; }
  /// The score of a rectified capture and its mask, 0 when the library fails.
  double Score(const ClImage& oPicture, const ClImage& oMask);
  /// The score for scanners without liveness lights: 15 to 90, drawn by the time of day.
  static double DrawnScore();

 private:
  std::unique_ptr<ClKelvarinFakeFingerDetectionVT40Wrapper> m_pLibrary;
  void* m_hContext = nullptr;
};
