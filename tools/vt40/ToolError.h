// What the tool ends with.
#pragma once

#include <stdexcept>
#include <string>

enum EExitCode {
  eExitOk = 0,
  eExitNegative = 1,  ///< the verdict on a capture or on calibration data is negative
  eExitUsage = 2,
  eExitNoScanner = 3,
  eExitBusy = 4,
  eExitTimeout = 5,
  eExitLost = 6,
  eExitFile = 7
};

/// A failure with what the user can do about it, and the tool's exit code.
class ClToolError : public std::runtime_error {
 public:
  ClToolError(EExitCode eCode, const std::string& sText) : std::runtime_error(sText), m_eCode(eCode) {}
  EExitCode Code() const { return m_eCode; }

 private:
  EExitCode m_eCode;
};
