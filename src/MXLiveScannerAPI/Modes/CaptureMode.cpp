// What a mode does unless it says otherwise.
#include "MXLiveScannerAPI/CaptureMode.h"

#include "MXTools/AtomicAccess.h"
#include "MXTools/Exception.h"
#include "MXVTScanAPI/MXVTScanAPIHandleBase.h"

namespace {

constexpr unsigned int cnBeep = 300;
constexpr unsigned int cnBeepLength = 100;

[[noreturn]] void RaiseInvalidMode() {
  KLV_RAISE(ClException, "Invalid capture mode.", -50);
}

}  // namespace

void StCaptureReport::Beep() const {
  if (KlvAtomicLoad(nAutoCaptureBeep) != 0) oScanner.Beep(cnBeep, cnBeepLength);
}

void ClCaptureMode::GetImage(ClImage&, ECaptureState&, double&) {
  RaiseInvalidMode();
}

void ClCaptureMode::GetPreviewImage(ClImage&, ECaptureState&, double&) {
  RaiseInvalidMode();
}
