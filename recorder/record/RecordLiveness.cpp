// The functions of the liveness library, as the recorder exports them. They enter the recording of the scan
// library's recorder.
#include <dlfcn.h>

#include <cstdio>
#include <string>

#include "record/RealLibrary.h"
#include "record/RecordedCall.h"

using namespace Recording;

namespace {

/// Never destroyed, since applications may call while the process ends.
struct StLiveness : StRecordedLibrary {
  StLivenessFunctions oReal;
};

/// The recorder that the scan library's stand-in beside this one has made.
ClRecorder* SharedRecorder() {
  void* pScan = dlopen((OwnFolder() + cszScanLibrary).c_str(), RTLD_NOW | RTLD_LOCAL);
  void* pFunction = pScan != nullptr ? dlsym(pScan, "VTRecRecorder") : nullptr;
  if (pFunction == nullptr) return nullptr;
  return static_cast<ClRecorder*>(reinterpret_cast<void* (*)(const char*)>(pFunction)(RECORDER_VERSION));
}

StLiveness* Load() {
  auto* pLiveness = new StLiveness;
  std::string sReason;
  // The library is optional: without it applications are answered as if it were missing.
  void* pLibrary = OpenRealLibrary(cszLivenessLibrary, sReason);
  if (pLibrary == nullptr) return pLiveness;
  pLiveness->oReal.Bind(pLibrary);
  pLiveness->bLoaded = true;
  pLiveness->pRecorder = SharedRecorder();
  if (pLiveness->pRecorder != nullptr)
    pLiveness->pRecorder->RecordFacts("livenessLibrary=" + std::string(cszLivenessLibrary) + "\n");
  return pLiveness;
}

StLiveness& Library() {
  static StLiveness& s_oLiveness = *Load();
  return s_oLiveness;
}

}  // namespace

namespace Recording {

template <>
struct TpMore<eFD_VT40GetFakeFingerDetectionScore> {
  static void Add(ClCallRecord& oCall, long nResult, void*, unsigned int nWidth, unsigned int nHeight,
                  const void* pImage, const void* pMask, double*) {
    // The sides have been checked by the library when it succeeds.
    if (nResult != 0 || pImage == nullptr || pMask == nullptr) return;
    const uint64_t nBytes = uint64_t{nWidth} * nHeight;
    oCall.AddFrames(3, eGiven, pImage, nBytes, nWidth, nHeight);
    oCall.AddFrames(4, eGiven, pMask, nBytes, nWidth, nHeight);
  }
};

}  // namespace Recording

KLV_RECORDED_LIVENESS_FUNCTIONS(KLV_EXPORT_RECORDED)
