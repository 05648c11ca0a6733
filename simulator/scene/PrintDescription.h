// What a scene says about a print: a seed and a pattern, or a file.
#pragma once

#include <cstdint>
#include <string>
#include <tuple>

namespace Simulator {

enum EPattern {
  ePatternLeftLoop,
  ePatternRightLoop,
  ePatternWhorl,
  ePatternArch,
  ePatternTentedArch,
  ePatternDoubleLoop,
  ePatternAny  ///< one of the others, as often as populations show it
};
constexpr int cnPatterns = ePatternAny;

/// What the finger is made of. Imitations have no pores: a cast whose ridges are soft, one whose ridges are
/// all alike and flat, a picture that a printer has made of dots.
enum EMaterial { eMaterialSkin, eMaterialSoftCast, eMaterialFlatCast, eMaterialHalftone };

/// How old the skin is. Children have the same pattern on a smaller finger with finer ridges; with age ridges
/// become flatter, wear off in patches and are crossed by many fine creases.
enum ESkin { eSkinAdult, eSkinChild, eSkinElderly };

struct ClPrintDescription {
  std::string sFile;  ///< PNG file; empty for a generated print
  uint64_t nSeed = 1;
  EPattern ePattern = ePatternWhorl;
  double dWidthMm = 16.0;
  double dHeightMm = 23.0;
  double dRidgePeriodMm = 0.0;  ///< mean over the finger; 0: by seed and skin
  double dPores = 0.5;          ///< share of the possible pores that exist, 0 to 1
  EMaterial eMaterial = eMaterialSkin;
  ESkin eSkin = eSkinAdult;
  int nCreases = -1;  ///< fine white lines; -1: by seed and skin
  int nScars = 0;     ///< healed wounds, across which ridges don't meet
  int nCuts = 0;      ///< fresh ones, straight and sharp

  /// All that tells one print from another.
  auto Key() const {
    return std::tie(sFile, nSeed, ePattern, dWidthMm, dHeightMm, dRidgePeriodMm, dPores, eMaterial, eSkin,
                    nCreases, nScars, nCuts);
  }
};

/// The pattern of a description, or the one that its seed chooses.
EPattern PatternOf(const ClPrintDescription& oDescription);

/// The mean ridge period in millimetres.
double RidgePeriodOf(const ClPrintDescription& oDescription);

}  // namespace Simulator
