// The dots of the calibration target, and stored calibration data, as the library's own classes judge them.
#pragma once

#include <string>
#include <vector>

#include "Picture.h"

/// The three calibration blocks; an empty one is not there. A scanner must have geometry and brightness, a
/// folder geometry.
struct StCalibrationBlocks {
  bool bOfScanner = false;
  std::vector<unsigned char> aGeometry;
  std::vector<unsigned char> aBrightness;
  std::vector<unsigned char> aGains;
};

/// How far each of the 64 dots lies off a straight grid of 10 mm pitch that was laid onto them by shift and
/// turn. Micrometres, column after column from left to right, each from top to bottom.
struct StResidual {
  std::vector<double> aX;
  std::vector<double> aY;

  double Of(size_t nDot) const;
  double Rms() const;
  double Most() const;
};

struct StCalibration {
  std::vector<unsigned char> aRecord;  ///< a GEOCAL block
  StResidual oBefore;                  ///< of the dots in the raw picture
  StResidual oAfter;  ///< of the dots in the picture that the library makes of it with the record
};

/// Finds the target's dots in a picture of the full sensor and makes the calibration record from them.
///
/// Errors  ClToolError eExitNegative with the library's text when there is no good grid, eExitFile for a
///         picture of another size.
StCalibration CalibrateFrom(const ClPicture& oRaw, const std::string& sSerial);

/// What the library says of one block.
struct StBlockVerdict {
  const char* szFile;          ///< its name in a folder of calibration data
  std::string sReason;         ///< why it is refused; empty when it is good
  unsigned int nRepaired = 0;  ///< points so far off that their position was derived from their neighbours
};

/// The verdicts on the blocks that must be there, and on any others that are there. The serial number decides
/// how strict the library is.
///
/// Errors  ClToolError eExitUsage for a serial number that is none.
std::vector<StBlockVerdict> JudgeBlocks(const StCalibrationBlocks& oBlocks, const std::string& sSerial);
