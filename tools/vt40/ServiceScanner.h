// A scanner as a service program has it, with the scan library in hand: its raw picture and what it stores.
#pragma once

#include <string>

#include "Calibration.h"

/// An open device of the scan library. The scanner must not be open otherwise.
///
/// Errors  ClToolError with the exit code that suits the scan library's number.
class ClServiceScanner {
 public:
  /// The library must be initialised as long as the object lives.
  explicit ClServiceScanner(const std::string& sSerial);
  ClServiceScanner(const ClServiceScanner&) = delete;
  ClServiceScanner& operator=(const ClServiceScanner&) = delete;
  ~ClServiceScanner();

  /// The calibration blocks; what the scanner lacks is left empty.
  StCalibrationBlocks Blocks() const;
  /// The full sensor, lit less dark, at the exposure and the gains that the library would set.
  ClPicture RawPicture() const;

 private:
  struct StDevice;
  const std::string m_sSerial;
  StDevice* m_pDevice;
};
