// A scanner as a service program has it, with the scan library in hand: its raw picture and what it stores.
#pragma once

#include <string>

#include <array>
#include <vector>

#include "Calibration.h"

/// What a sequence becomes on its way to the caller.
///
/// oRaw        lit less dark, as the sensor reads it: x is mirrored, pixels are merged.
/// oBalanced   the same after the white balance.
/// oWarped     rectified, right way round.
/// oRectified  the same in even light: what the mask gets.
/// oMasked     what the caller gets.
struct StStages {
  ClPicture oRaw, oBalanced, oWarped, oRectified, oMasked;
  unsigned int nMergeX = 1, nMergeY = 1;  ///< pixels of the full sensor in one of the raw frame
};

/// The points of the stored geometric calibration: in the picture of 500 dpi, right way round, and on the
/// full sensor. Units: pixels, whole numbers are pixel centres.
struct StGridPoints {
  std::vector<std::array<double, 2>> aPicture, aSensor;
};

class ClVT40SetupCalibrationData;

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
  /// A sequence of a preview, or of a capture, in every stage.
  StStages Stages(bool bPreview);
  StGridPoints GridPoints();

 private:
  struct StDevice;
  ClVT40SetupCalibrationData& Setup();

  const std::string m_sSerial;
  StDevice* m_pDevice;
};
