// What a scene says about a print: a seed and a pattern, or a file.
#pragma once

#include <cstdint>
#include <string>

namespace Simulator {

enum EPattern { ePatternLeftLoop, ePatternRightLoop, ePatternWhorl, ePatternArch };

/// What the finger is made of. Imitations have no pores: a cast whose ridges are soft, one whose ridges are
/// all alike and flat, a picture that a printer has made of dots.
enum EMaterial { eMaterialSkin, eMaterialSoftCast, eMaterialFlatCast, eMaterialHalftone };

struct ClPrintDescription {
  std::string sFile;  ///< PNG file; empty for a generated print
  uint64_t nSeed = 1;
  EPattern ePattern = ePatternWhorl;
  double dWidthMm = 16.0;
  double dHeightMm = 23.0;
  double dRidgePeriodMm = 0.457;  ///< 9 pixels at 500 dots per inch
  double dPores = 0.5;            ///< share of the possible pores that exist, 0 to 1
  EMaterial eMaterial = eMaterialSkin;
};

}  // namespace Simulator
