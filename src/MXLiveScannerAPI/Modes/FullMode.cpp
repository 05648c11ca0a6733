// Frames of the full-resolution stream.
#include "MXLiveScannerAPI/FullMode.h"

namespace {

constexpr unsigned int cnFullWaitSeconds = 10;

}  // namespace

void ClFullMode::GetImage(ClImage& oImage, ECaptureState& eState, double& dScore) {
  Fetch(oImage, cnFullWaitSeconds, "timeout during highres image reading");
  eState = ClVTLiveCaptureBase::eCaptureStateNoFinger;
  dScore = 0.0;
}
