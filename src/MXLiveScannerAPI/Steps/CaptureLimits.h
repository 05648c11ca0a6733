// The limits by which the automatic capture decides, for the engine and for programs that show why it waits.
#pragma once

#include <cstdint>

namespace CaptureLimits {

/// Finger pixels of a preview up to which there is no finger, and beyond which a finger needs no steadiness.
constexpr int cnNoFingerPixels = 1000;
constexpr int cnLargeFingerPixels = 5000;
/// Sum of the squared differences of two frames up to which a finger lies still.
constexpr uint64_t cnStillMotion = 99999999;

/// Whether a count of finger pixels has kept within a tenth of the one before, or is large enough.
constexpr bool IsSteady(int nBefore, int nCount) {
  const int nTenth = nBefore / 10;
  return nCount > cnLargeFingerPixels || (nBefore - nTenth < nCount && nCount < nBefore + nTenth);
}

}  // namespace CaptureLimits
