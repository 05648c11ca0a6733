// A fault of a function that does not exist would never strike, and nobody would notice.
#include "scene/ScanFunctions.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr const char* caNames[] = {"VTScanAPIInitialize",
                                   "VTScanAPIUninitialize",
                                   "VTScanAPIQueryDevices",
                                   "VTScanAPIGetDeviceSerial",
                                   "VTScanAPIGetVersion",
                                   "VTScanAPIGetHandleSerial",
                                   "VTScanAPICreateHandle",
                                   "VTScanAPIDestroyHandle",
                                   "VTScanAPIGetDeviceIndex",
                                   "VTScanAPIGetPlugStatus",
                                   "VTScanAPISetCaptureSequence",
                                   "VTScanAPISetStatusLED",
                                   "VTScanAPISetResolution",
                                   "VTScanAPIGetResolution",
                                   "VTScanAPISetVSYNC",
                                   "VTScanAPISetGlobalGain",
                                   "VTScanAPISetGain",
                                   "VTScanAPIGetImage",
                                   "VTScanAPIListEPROMFile",
                                   "VTScanAPIReadEPROMFile",
                                   "VTScanAPISetPropertyA",
                                   "VTScanAPISetPropertyW",
                                   "VTScanAPIGetPropertyA",
                                   "VTScanAPIGetPropertyW",
                                   "VTScanAPIGetErrorDescriptionA",
                                   "VTScanAPIGetErrorDescriptionW",
                                   "VTScanAPIEnableCapture",
                                   "VTScanAPIGetImageSequence",
                                   "VTScanAPIBeep",
                                   "VTScanAPISetLED",
                                   "VTScanAPISetLEDEx",
                                   "VTScanAPIApplyInternalCommand",
                                   "VTScanAPISetCaptureSequenceEx",
                                   "VTScanAPIGetImageEx",
                                   "VTScanAPILockRawSequence",
                                   "VTScanAPIReleaseRawSequence",
                                   "VTScanAPISetCaptureMode",
                                   "VTScanAPIGetPropertyLongA",
                                   "VTScanAPISetPropertyLongA",
                                   "VTScanAPISetPropertyDoubleA",
                                   "VTScanAPIGetPropertyDoubleA"};

}  // namespace

bool Simulator::IsScanFunction(const std::string& sName) {
  return std::find(std::begin(caNames), std::end(caNames), sName) != std::end(caNames);
}
