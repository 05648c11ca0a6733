// Count, motion and steadiness.
#include "MXLiveScannerAPI/FingerDetector.h"

#include <utility>

#include "MXKernels/DifferenceRows.h"
#include "MXLiveScannerAPI/CaptureLimits.h"

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
  if (nCount <= CaptureLimits::cnNoFingerPixels || nMotion > CaptureLimits::cnStillMotion) return eNoFinger;
  return CaptureLimits::IsSteady(nBefore, nCount) ? eSteady : eUnsteady;
}
