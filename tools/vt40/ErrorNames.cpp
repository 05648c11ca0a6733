// The tables of names and of advice.
#include "ErrorNames.h"

#include <algorithm>
#include <iterator>
#include <nlohmann/json.hpp>

#include "KelvarinLiveScannerVT40.h"

namespace {

struct StName {
  long nNumber;
  const char* szName;
};

#define KLV_NAME(Number) \
  { Number, #Number }
constexpr StName caNames[] = {
    KLV_NAME(KLV_SUCCESS),
    KLV_NAME(KLV_ERROR_NOT_INITIALIZED),
    KLV_NAME(KLV_ERROR_NO_FINGER),
    KLV_NAME(KLV_ERROR_BUFFER_TOO_SMALL),
    KLV_NAME(KLV_ERROR_OUT_OF_RANGE),
    KLV_NAME(KLV_ERROR_CORRUPT_DATA),
    KLV_NAME(KLV_ERROR_UNEXPECTED_SIGNATURE),
    KLV_NAME(KLV_ERROR_NO_HANDLE),
    KLV_NAME(KLV_ERROR_INVALID_HANDLE),
    KLV_NAME(KLV_ERROR_INVALID_PARAMETER),
    KLV_NAME(KLV_ERROR_READ_ONLY),
    KLV_NAME(KLV_ERROR_INVALID_STATE),
    KLV_NAME(KLV_ERROR_DISCONNECTED),
    KLV_NAME(KLV_ERROR_DEVICE_OPEN_FAIL),
    KLV_NAME(KLV_ERROR_INTERNAL),
    KLV_NAME(KLV_ERROR_OUT_OF_MEMORY),
    KLV_NAME(KLV_ERROR_UNSUPPORTED),
    KLV_NAME(KLV_ERROR_NOT_IMPLEMENTED),
    KLV_NAME(KLV_ERROR_FILE_OPEN_FAIL),
    KLV_NAME(KLV_ERROR_UNEXPECTED_END),
    KLV_NAME(KLV_ERROR_UNKNOWN_PARAMETER),
    KLV_NAME(KLV_ERROR_BAD_POINTER),
    KLV_NAME(KLV_ERROR_SIZE_TOO_SMALL),
    KLV_NAME(KLV_VERDICT_SLIPPED),
    KLV_NAME(KLV_VERDICT_TOO_FAST),
    KLV_NAME(KLV_VERDICT_TURNED_BACK),
    KLV_NAME(KLV_VERDICT_TWISTED),
    KLV_NAME(KLV_VERDICT_TOO_SMALL),
};
#undef KLV_NAME

struct StExit {
  EExitCode eCode;
  const char* szName;
  const char* szAdvice;
};

constexpr StExit caExits[] = {
    {eExitOk, "OK", "Nothing is to be done."},
    {eExitNegative, "NEGATIVE_VERDICT", "Capture again, or make or repair what was judged."},
    {eExitUsage, "USAGE", "Correct the command; see vt40 --help."},
    {eExitNoScanner, "NO_SCANNER", "Connect the scanner and see vt40 list."},
    {eExitBusy, "SCANNER_BUSY", "End the program that has the scanner open."},
    {eExitTimeout, "TIMEOUT", "Try again, or wait longer with --timeout."},
    {eExitLost, "SCANNER_LOST", "Connect the scanner again and repeat the command."},
    {eExitFile, "FILE", "See that the file or folder exists, can be used, and that the disk has room."},
    {eExitCalibration, "CALIBRATION_DATA", "Have the scanner serviced; see vt40 calibrate --check."},
    {eExitScanLibrary, "SCAN_LIBRARY", "Install the scan library, or try the simulated scanner: --simulate."},
    {eExitLiveness, "LIVENESS_LIBRARY", "Install the liveness library, or use --mode auto."},
    {eExitFailure, "FAILURE", "Repeat the command; KELVARIN_SDK_LOG=1 shows what the library does."},
    {eExitInterrupted, "INTERRUPTED", "Repeat the command; what was captured before is written."},
    {eExitTerminated, "TERMINATED", "Repeat the command; what was captured before is written."},
};

const StExit& ExitOf(EExitCode eCode) {
  return *std::find_if(std::begin(caExits), std::end(caExits) - 1,
                       [=](const StExit& o) { return o.eCode == eCode; });
}

}  // namespace

const char* NameOfNumber(long nNumber) {
  const auto* pName = std::find_if(std::begin(caNames), std::end(caNames),
                                   [=](const StName& o) { return o.nNumber == nNumber; });
  return pName == std::end(caNames) ? nullptr : pName->szName;
}

const char* NameOfExit(EExitCode eCode) {
  return ExitOf(eCode).szName;
}

const char* AdviceFor(EExitCode eCode) {
  return ExitOf(eCode).szAdvice;
}

nlohmann::ordered_json ErrorOf(EExitCode eCode, const std::string& sText, long nNumber) {
  const char* szName = nNumber != 0 ? NameOfNumber(nNumber) : nullptr;
  return {{"number", nNumber != 0 ? nlohmann::ordered_json(nNumber) : nlohmann::ordered_json()},
          {"name", szName != nullptr ? szName : NameOfExit(eCode)},
          {"text", sText},
          {"advice", AdviceFor(eCode)}};
}
