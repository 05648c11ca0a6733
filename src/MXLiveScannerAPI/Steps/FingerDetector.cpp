// Count, motion and steadiness, and their limits.
#include "MXLiveScannerAPI/FingerDetector.h"

#include <utility>

#include "MXKernels/DifferenceRows.h"

namespace {

/// Finger pixels up to which there is no finger, and beyond which a finger needs no steadiness.
constexpr int cnNoFingerPixels = 1000;
constexpr int cnLargeFingerPixels = 5000;
/// Sum of the squared differences of two frames up to which a finger lies still.
constexpr uint64_t cnStillMotion = 99999999;

}  // namespace

void ClFingerDetector::Reset() {
  m_bPrevious = false;
}

ClFingerDetector::EDecision ClFingerDetector::Add(const ClImage& oFrame, const ClImage& oMask) {
  if (!m_bPrevious) {
    m_oPrevious.New(oFrame);
    m_oPrevious = static_cast<unsigned char>(0);
  }
  uint64_t nMotion = 0;
  for (int y = 0; y < oFrame.Height(); ++y) {
    nMotion += MXKernels::SquaredDifference(oFrame.Row<uint8_t>(y), m_oPrevious.Row<uint8_t>(y),
                                            static_cast<size_t>(oFrame.Width()));
  }
  m_oPrevious = oFrame;
  m_bPrevious = true;

  m_oHistogram.Create(oMask);
  const int nCount = oMask.Width() * oMask.Height() - m_oHistogram.Count(255);
  const int nBefore = std::exchange(m_nPreviousCount, nCount);
  if (nCount <= cnNoFingerPixels || nMotion > cnStillMotion) return eNoFinger;
  const int nTenth = nBefore / 10;
  const bool bSteady =
      nCount > cnLargeFingerPixels || (nBefore - nTenth < nCount && nCount < nBefore + nTenth);
  return bSteady ? eSteady : eUnsteady;
}
