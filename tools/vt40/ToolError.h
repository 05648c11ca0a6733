// What the tool ends with.
#pragma once

#include <stdexcept>
#include <string>

/// The table of the manual page; each code means one thing.
enum EExitCode {
  eExitOk = 0,
  eExitNegative = 1,  ///< the verdict on a capture or on calibration data is negative
  eExitUsage = 2,
  eExitNoScanner = 3,
  eExitBusy = 4,
  eExitTimeout = 5,
  eExitLost = 6,
  eExitFile = 7,           ///< a file, or the standard output
  eExitCalibration = 8,    ///< the scanner's calibration data is damaged
  eExitScanLibrary = 9,    ///< missing, too old, not to be trusted, or it does not start
  eExitLiveness = 10,      ///< the liveness library is missing
  eExitFailure = 11,       ///< the scanner or the library refused, for no reason of this table
  eExitInterrupted = 130,  ///< SIGINT
  eExitTerminated = 143    ///< SIGTERM
};

/// A failure with what the user can do about it, the tool's exit code, and the library's number where the
/// library has refused.
class ClToolError : public std::runtime_error {
 public:
  ClToolError(EExitCode eCode, const std::string& sText, long nNumber = 0)
      : std::runtime_error(sText), m_eCode(eCode), m_nNumber(nNumber) {}
  EExitCode Code() const { return m_eCode; }
  long Number() const { return m_nNumber; }

 private:
  EExitCode m_eCode;
  long m_nNumber;
};
