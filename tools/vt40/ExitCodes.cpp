// Numbers by what they mean to whoever started the tool.
#include "ExitCodes.h"

#include "KelvarinLiveScannerVT40.h"

EExitCode ExitCodeOf(long nError) {
  switch (nError) {
    case KLV_ERROR_FILE_OPEN_FAIL:
      return eExitScanLibrary;
    case KLV_ERROR_DEVICE_OPEN_FAIL:
      return eExitBusy;
    case KLV_ERROR_DISCONNECTED:
      return eExitLost;
    case KLV_ERROR_OUT_OF_RANGE:
    case KLV_ERROR_INVALID_PARAMETER:
    case KLV_ERROR_READ_ONLY:
    case KLV_ERROR_UNKNOWN_PARAMETER:
      return eExitUsage;
    default:
      return eExitFailure;
  }
}

EExitCode ExitCodeOfOpening(long nError) {
  /// No mapping of the sensor can be made of the stored points.
  constexpr long cnNoMapping = -600;
  switch (nError) {
    case KLV_ERROR_DEVICE_OPEN_FAIL:
      return eExitBusy;
    case KLV_ERROR_DISCONNECTED:
      return eExitLost;
    case KLV_ERROR_UNSUPPORTED:
      return eExitScanLibrary;
    case KLV_ERROR_CORRUPT_DATA:
    case KLV_ERROR_UNEXPECTED_SIGNATURE:
    case KLV_ERROR_UNEXPECTED_END:
    // The scan library has not got the file.
    case KLV_ERROR_FILE_OPEN_FAIL:
    case KLV_ERROR_UNKNOWN_PARAMETER:
    case cnNoMapping:
      return eExitCalibration;
    default:
      return eExitFailure;
  }
}
