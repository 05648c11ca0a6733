// Counts a hand's steps to either side.
#include "MXLiveScannerAPI/SwipeDetector.h"

namespace {

constexpr unsigned int cnJudgedSteps = 9;
/// Sensor pixels that make a step.
constexpr int cnStep = 6;
/// Steps to one side that make a swipe.
constexpr int cnSwipeSteps = 6;

}  // namespace

ClVTLiveCaptureBase::ECaptureState ClSwipeDetector::Add(int nX) {
  m_aSwipeX[m_nSwipeSamples++ % cnRing] = nX;
  if (m_nSwipeSamples <= cnJudgedSteps) return ClVTLiveCaptureBase::eCaptureStateNoFinger;
  int nForward = 0;
  int nBack = 0;
  for (unsigned int k = 1; k <= cnJudgedSteps; ++k) {
    const int nNewer = m_aSwipeX[(m_nSwipeSamples - k) % cnRing];
    const int nDecrease = m_aSwipeX[(m_nSwipeSamples - k - 1) % cnRing] - nNewer;
    nForward += nDecrease <= -cnStep;
    nBack += nDecrease >= cnStep;
  }
  if (nBack >= cnSwipeSteps) return ClVTLiveCaptureBase::eCaptureStateSwipeBack;
  if (nForward >= cnSwipeSteps) return ClVTLiveCaptureBase::eCaptureStateSwipeForward;
  return ClVTLiveCaptureBase::eCaptureStateNoFinger;
}
