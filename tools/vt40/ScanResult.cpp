// The bound functions are replaced by ones that note the answer.
#include "ScanResult.h"

#include <utility>

#include "MXLibraryLoaders/KelvarinVTScanAPIWrapper.h"

namespace {

using Wrapper = ClKelvarinVTScanAPIWrapper;

long s_nLast = 0;
decltype(Wrapper::VTScanAPIBeep) s_pfnBeep = nullptr;
decltype(Wrapper::VTScanAPISetStatusLED) s_pfnSetStatusLed = nullptr;

long NoteBeep(void* hDevice, unsigned int nArg1, unsigned int nArg2) {
  return s_nLast = s_pfnBeep(hDevice, nArg1, nArg2);
}

long NoteStatusLed(void* hDevice, unsigned long long nWord) {
  return s_nLast = s_pfnSetStatusLed(hDevice, nWord);
}

}  // namespace

ClScanResult::ClScanResult() {
  s_nLast = 0;
  // An old scan library may have no buzzer, and the library then calls nothing.
  if (Wrapper::VTScanAPIBeep != nullptr) s_pfnBeep = std::exchange(Wrapper::VTScanAPIBeep, NoteBeep);
  s_pfnSetStatusLed = std::exchange(Wrapper::VTScanAPISetStatusLED, NoteStatusLed);
}

ClScanResult::~ClScanResult() {
  if (s_pfnBeep != nullptr) Wrapper::VTScanAPIBeep = std::exchange(s_pfnBeep, nullptr);
  Wrapper::VTScanAPISetStatusLED = s_pfnSetStatusLed;
}

long ClScanResult::Last() {
  return s_nLast;
}
