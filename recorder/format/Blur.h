// Frames without ridges.
#pragma once

#include <cstdint>
#include <vector>

namespace Recording {

/// Replaces samples by means of their surroundings, so that light and finger area stay and ridges go.
///
/// Domain   planes one after the other, rows without padding.
/// Threads  thread-bound; scratch is kept.
class ClBlur {
 public:
  /// A frame of the sensor: each of the four colours and of the two taps is blurred by itself, over a 45th of
  /// the width.
  void BlurFrames(uint8_t* pFrames, uint64_t nBytes, uint32_t nWidth, uint32_t nHeight);

 private:
  void BlurPhase(uint8_t* pPlane, uint32_t nWidth, uint32_t nHeight, uint32_t nX, uint32_t nY,
                 uint32_t nReach);

  std::vector<uint8_t> m_aPhase;
  std::vector<uint8_t> m_aOther;
};

}  // namespace Recording
