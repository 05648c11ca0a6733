// The functions of the scan library, as the recorder exports them.
#include <dlfcn.h>

#include <cstdio>
#include <mutex>
#include <string>

#include "record/RealLibrary.h"
#include "record/RecordedCall.h"

using namespace Recording;

namespace {

/// Never destroyed, since applications may call while the process ends.
struct StScan : StRecordedLibrary {
  StScanFunctions oReal;
  bool bSimulated = false;
  std::string sReason;  // why there is no library
};

/// Ends the recording when the process ends in good order.
struct ClAtEnd {
  ClRecorder* pRecorder;
  ~ClAtEnd() {
    if (pRecorder != nullptr) pRecorder->Finish();
  }
};

std::string Facts(const StScan& oScan, const StRecorderSettings& oSettings) {
  return "recorder=" RECORDER_VERSION "\nscanLibrary=" + std::string(cszScanLibrary) +
         "\nwordSize=" + std::to_string(8 * sizeof(void*)) + "\nsimulated=" + (oScan.bSimulated ? "1" : "0") +
         "\nblurred=" + (oSettings.bBlur ? "1" : "0") + "\n";
}

StScan* Load() {
  auto* pScan = new StScan;
  void* pLibrary = OpenRealLibrary(cszScanLibrary, pScan->sReason);
  if (pLibrary == nullptr) {
    std::fprintf(stderr, "vt40 recorder: %s\n", pScan->sReason.c_str());
    return pScan;
  }
  pScan->oReal.Bind(pLibrary);
  pScan->bLoaded = true;
  pScan->bSimulated = dlsym(pLibrary, "VTSimLoadScene") != nullptr;
  const StRecorderSettings oSettings = StRecorderSettings::OfEnvironment();
  if (oSettings.sFile.empty()) {
    std::fputs("vt40 recorder: KELVARIN_VT40_RECORD_FILE names no file; nothing is recorded\n", stderr);
    return pScan;
  }
  pScan->pRecorder = new ClRecorder(oSettings, pScan->bSimulated);
  pScan->pRecorder->RecordFacts(Facts(*pScan, oSettings));
  static const ClAtEnd s_oAtEnd{pScan->pRecorder};
  return pScan;
}

StScan& Library() {
  static StScan& s_oScan = *Load();
  return s_oScan;
}

void NotePlanes(long nResult, void* hDevice, uint32_t nPlanes) {
  if (nResult != 0) return;
  StShape oShape = Library().oDevices.ShapeOf(hDevice);
  oShape.nPlanes = nPlanes;
  Library().oDevices.SetShape(hDevice, oShape);
}

/// Notes the size of the frames from now on, and enters it.
void NoteMode(ClCallRecord& oCall, long nResult, void* hDevice, uint32_t nMode) {
  StScan& oScan = Library();
  unsigned int nWidth = 0;
  unsigned int nHeight = 0;
  // The library knows the sizes of its modes; a table of them would be read past the end of other scanners'
  // frames.
  if (nResult != 0 || oScan.oReal.VTScanAPIGetResolution == nullptr ||
      oScan.oReal.VTScanAPIGetResolution(hDevice, &nWidth, &nHeight) != 0)
    nWidth = nHeight = 0;
  oScan.oDevices.SetShape(hDevice, {nWidth, nHeight, oScan.oDevices.ShapeOf(hDevice).nPlanes, nMode});
  if (nWidth == 0) return;
  oCall.AddNumber(eAddedWidth, eGot, nWidth);
  oCall.AddNumber(eAddedHeight, eGot, nHeight);
  oCall.AddNumber(eAddedMode, eGot, nMode);
}

void AddFrames(ClCallRecord& oCall, size_t nArgument, const void* pFrames, const StShape& oShape) {
  if (oShape.Bytes() == 0) return oCall.SetDataDropped();
  oCall.AddFrames(nArgument, eGot, pFrames, oShape.Bytes(), oShape.nWidth, oShape.nHeight);
  oCall.AddNumber(eAddedWidth, eGot, oShape.nWidth);
  oCall.AddNumber(eAddedHeight, eGot, oShape.nHeight);
  oCall.AddNumber(eAddedPlanes, eGot, oShape.nPlanes);
  oCall.AddNumber(eAddedMode, eGot, oShape.nMode);
}

/// The image that the library wrote after a header and its palette, whose rows have no padding.
void AddImage(ClCallRecord& oCall, long nResult, void* hDevice, const tagBITMAPINFOHEADER* pHeader) {
  if (nResult != 0 || pHeader == nullptr || pHeader->biWidth <= 0 || pHeader->biWidth % 4 != 0 ||
      pHeader->biHeight == INT32_MIN || pHeader->biBitCount != 8)
    return;
  const size_t nPalette = pHeader->biClrUsed != 0 ? pHeader->biClrUsed : 256;
  const auto nHeight = static_cast<uint32_t>(pHeader->biHeight < 0 ? -pHeader->biHeight : pHeader->biHeight);
  AddFrames(oCall, 1, reinterpret_cast<const uint8_t*>(pHeader) + pHeader->biSize + 4 * nPalette,
            {static_cast<uint32_t>(pHeader->biWidth), nHeight, 1, Library().oDevices.ShapeOf(hDevice).nMode});
}

}  // namespace

namespace Recording {

template <>
struct TpMore<eVTScanAPISetCaptureMode> {
  static void Add(ClCallRecord& oCall, long nResult, void* hDevice, int eMode, unsigned int nCount,
                  unsigned long long*, unsigned int) {
    NotePlanes(nResult, hDevice, nCount);
    NoteMode(oCall, nResult, hDevice, static_cast<uint32_t>(eMode));
  }
};

template <>
struct TpMore<eVTScanAPISetResolution> {
  static void Add(ClCallRecord& oCall, long nResult, void* hDevice, int eMode) {
    NoteMode(oCall, nResult, hDevice, static_cast<uint32_t>(eMode));
  }
};

template <>
struct TpMore<eVTScanAPISetCaptureSequence> {
  static void Add(ClCallRecord&, long nResult, void* hDevice, unsigned char nCount, unsigned char*,
                  unsigned char*) {
    NotePlanes(nResult, hDevice, nCount);
  }
};

template <>
struct TpMore<eVTScanAPISetCaptureSequenceEx> {
  static void Add(ClCallRecord&, long nResult, void* hDevice, unsigned int nCount, unsigned int*) {
    NotePlanes(nResult, hDevice, nCount);
  }
};

template <>
struct TpMore<eVTScanAPIGetImage> {
  static void Add(ClCallRecord& oCall, long nResult, void* hDevice, const tagBITMAPINFOHEADER* pHeader,
                  unsigned char, char) {
    AddImage(oCall, nResult, hDevice, pHeader);
  }
};

template <>
struct TpMore<eVTScanAPIGetImageEx> {
  static void Add(ClCallRecord& oCall, long nResult, void* hDevice, const tagBITMAPINFOHEADER* pHeader, int) {
    AddImage(oCall, nResult, hDevice, pHeader);
  }
};

template <>
struct TpMore<eVTScanAPIGetImageSequence> {
  static void Add(ClCallRecord& oCall, long nResult, void* hDevice, void* pBuffer, unsigned int nBytes,
                  unsigned int) {
    const StShape oShape = Library().oDevices.ShapeOf(hDevice);
    if (nResult == 0 && pBuffer != nullptr && oShape.Bytes() <= nBytes) AddFrames(oCall, 1, pBuffer, oShape);
  }
};

template <>
struct TpMore<eVTScanAPILockRawSequence> {
  static void Add(ClCallRecord& oCall, long nResult, void* hDevice, void** ppSequence) {
    if (nResult == 0 && ppSequence != nullptr && *ppSequence != nullptr)
      AddFrames(oCall, 1, *ppSequence, Library().oDevices.ShapeOf(hDevice));
  }
};

}  // namespace Recording

KLV_RECORDED_SCAN_FUNCTIONS(KLV_EXPORT_RECORDED)

/// Why nothing can be recorded; "" when all is well.
extern "C" __attribute__((visibility("default"))) const char* VTRecLastError() {
  return Library().sReason.c_str();
}

/// 1 when the scanner that is recorded is a simulated one.
extern "C" __attribute__((visibility("default"))) int VTRecIsSimulated() {
  return Library().bSimulated ? 1 : 0;
}

/// 1 when an application has called the scan library through this recorder.
extern "C" __attribute__((visibility("default"))) int VTRecIsUsed() {
  return Library().bUsed ? 1 : 0;
}

/// Ends the recording, for processes that end without their destructors.
extern "C" __attribute__((visibility("default"))) void VTRecFinish() {
  if (Library().pRecorder != nullptr) Library().pRecorder->Finish();
}

/// The recorder of this process, for the recorder of the liveness library of the same version; NULL for
/// another one.
extern "C" __attribute__((visibility("default"))) void* VTRecRecorder(const char* szVersion) {
  return std::string(szVersion) == RECORDER_VERSION ? Library().pRecorder : nullptr;
}
