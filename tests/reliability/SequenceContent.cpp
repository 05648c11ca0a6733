// Scenes, arguments and failures of sequences, and the numbers that are answers to them.
#include "SequenceContent.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace Reliability {
namespace {

using namespace Interface;

constexpr const char* caszSerials[] = {"VT40-AB0001", "VT40-AB0002"};

/// Two scanners; prints are small and optics without faults, so that they are drawn quickly.
std::string Scene(const std::string& sFirst) {
  return R"({"scanners": [{"serial": "VT40-AB0001", "noise": 0, "optics": {"blur": 0})" + sFirst +
         R"(}, {"serial": "VT40-AB0002", "noise": 0}]})";
}

constexpr long canFailures[] = {-60, -101, -50, -2, -777, -43, -102, -1};
constexpr const char* caszScanFunctions[] = {"VTScanAPIInitialize",         "VTScanAPIUninitialize",
                                             "VTScanAPIQueryDevices",       "VTScanAPIGetDeviceSerial",
                                             "VTScanAPIGetVersion",         "VTScanAPIGetHandleSerial",
                                             "VTScanAPICreateHandle",       "VTScanAPIDestroyHandle",
                                             "VTScanAPISetCaptureSequence", "VTScanAPISetStatusLED",
                                             "VTScanAPISetResolution",      "VTScanAPIGetResolution",
                                             "VTScanAPISetVSYNC",           "VTScanAPISetGain",
                                             "VTScanAPIReadEPROMFile",      "VTScanAPIGetPropertyA",
                                             "VTScanAPIEnableCapture",      "VTScanAPIBeep",
                                             "VTScanAPISetLEDEx",           "VTScanAPIApplyInternalCommand",
                                             "VTScanAPILockRawSequence",    "VTScanAPIReleaseRawSequence",
                                             "VTScanAPISetCaptureMode",     "VTScanAPIGetPropertyLongA"};
constexpr const char* caszLivenessFunctions[] = {"FD_VT40Initialize", "FD_VT40CreateFakeDetectionVT40Handle",
                                                 "FD_VT40GetFakeFingerDetectionScore"};
constexpr const char* caszEpromFiles[] = {"GEOCAL", "BRGHTCAL", "GAINSET"};

/// What the simulated scanner answers by itself, besides failures that were ordered.
constexpr long canOwn[] = {-2, -39, -43, -44, -50, -60, -61, -101, -102, -103, -106, -200, -206, -701, -702};

template <typename T, size_t cnCount>
const T& One(const T (&aOf)[cnCount], unsigned n) {
  return aOf[n % cnCount];
}

}  // namespace

const std::string& SceneOf(unsigned n) {
  static const std::string s_aScenes[] = {
      Scene(""),
      Scene(R"(, "fingers": [{"print": {"seed": 3, "width": 12, "height": 14}}])"),
      Scene(
          R"(, "fingers": [{"print": {"seed": 3, "width": 12, "height": 14}, "touch": 0.1, "lift": 0.9,
               "settle": {"seconds": 0.3, "x": 2, "y": 1, "turn": 3, "pressure": 0.2}, "repeat": 1.4}])"),
      Scene(
          R"(, "fingers": [{"print": {"seed": 3, "width": 20, "height": 12}, "touch": 0.1, "touchSeconds": 0.05,
               "lift": 0.75, "liftSeconds": 0.05, "roll": {"width": 9, "path": [{"at": 0.1, "strip": -4},
               {"at": 0.6, "strip": 4}]}, "repeat": 0.9}])"),
      Scene(R"(, "pen": {"strokes": [{"at": 0, "line": "straight", "speed": 60,
               "points": [[10, 20], [70, 30], [10, 40], [70, 50]]}]})"),
      Scene(
          R"(, "dirt": [{"x": 20, "y": 30, "width": 4}], "ambient": [{"at": 1, "level": 3}, {"at": 2, "level": 60}])"),
      R"({"scanners": [{"serial": "VT40-AB0002"}]})",
      Scene(R"(, "usbPowered": true, "eprom": {"form": "legacy"}, "planeOrder": "lit-first")")};
  return One(s_aScenes, n);
}

bool LosesFirst(unsigned n) {
  // Other calibration files are another scanner.
  const std::string& sScene = SceneOf(n);
  return sScene.find(caszSerials[0]) == std::string::npos || sScene.find("legacy") != std::string::npos;
}

const char* SerialOf(bool bSecond) {
  return caszSerials[bSecond];
}

const char* NameOf(unsigned n) {
  static const std::string s_sLong(300, 'n');
  static const char* const s_aszNames[] = {"nAutoCaptureBeep",
                                           "nRolledPostProcess",
                                           "dSignatureFilterSigma",
                                           "dSignatureDetectTime",
                                           "nSignatureSensorMode",
                                           "nResetImage",
                                           "STATUS_LED",
                                           "Version",
                                           "version",
                                           "NAUTOCAPTUREBEEP",
                                           "",
                                           "none",
                                           "dSignatureFilterSigma",
                                           "nSignatureSensorMode",
                                           s_sLong.c_str(),
                                           nullptr};
  return One(s_aszNames, n);
}

const char* TextOf(unsigned n) {
  static const std::string s_sLong(4095, '9');
  static const char* const s_aszTexts[] = {
      caszSerials[0], caszSerials[1], "1",           "0x10", "2.0", "1.9",           "-1",   "0.7", "",
      "nan",          "1e999",        "VT40-AB0003", "0",    "3",   s_sLong.c_str(), nullptr};
  return One(s_aszTexts, n);
}

double NumberOf(unsigned n) {
  static const double s_adNumbers[] = {0.0,   1.0,  0.5,   0.3,    2.0, 100.0,
                                       101.0, -1.0, 1e308, -1e308, NAN, INFINITY};
  return One(s_adNumbers, n);
}

int64_t WholeOf(unsigned n, const StType& oType) {
  if (n == 255) return oType.nHigh;
  if (n == 254) return oType.nLow;
  return n < 128 ? n % 8 : (n - 128) * int64_t{0x0801};
}

size_t ImageBytesOf(const std::string& sFunction) {
  return sFunction == "LS_VT40GetImage" ? 1600 * 1600 : 800 * 800;
}

unsigned SizeOf(unsigned n) {
  static constexpr unsigned s_anSizes[] = {64, 0, 1, 10, 11, 16, 32, 33, 255, 256};
  return One(s_anSizes, n);
}

const char* ScanFunctionOf(unsigned n) {
  return One(caszScanFunctions, n);
}

const char* LivenessFunctionOf(unsigned n) {
  return One(caszLivenessFunctions, n);
}

const char* EpromFileOf(unsigned n) {
  return One(caszEpromFiles, n);
}

long FailureOf(unsigned n) {
  return One(canFailures, n);
}

bool IsDocumented(const StFunction& oFunction, long nNumber) {
  if (nNumber == 0 || nNumber == -102 || nNumber == -721) return true;
  bool bOwn = false;
  for (const long nDocumented : oFunction.aNumbers) {
    if (nDocumented == nNumber && nDocumented != cnOwn) return true;
    bOwn = bOwn || nDocumented == cnOwn;
  }
  for (const StArgument& oArgument : oFunction.aArguments) {
    const bool bHandle = oArgument.eRole == eHandle || oArgument.eRole == eClose;
    if (bHandle && (nNumber == -2 || nNumber == -42 || nNumber == -43)) return true;
    if (nNumber == oArgument.nNull || nNumber == oArgument.nRefused) return true;
  }
  const auto Holds = [nNumber](const auto& aNumbers) {
    return std::find(std::begin(aNumbers), std::end(aNumbers), nNumber) != std::end(aNumbers);
  };
  return bOwn && (Holds(canOwn) || Holds(canFailures));
}

void Require(bool bHolds, const std::string& sRule) {
  if (bHolds) return;
  std::fprintf(stderr, "broken rule: %s\n", sRule.c_str());
  std::abort();
}

}  // namespace Reliability
