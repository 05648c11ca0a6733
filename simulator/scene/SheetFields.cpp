// What is printed on the sheets that image quality is measured with.
#include <cmath>

#include "portable/Math.h"
#include "scene/Sheet.h"

namespace Simulator {
namespace {

constexpr double cdBlockPitch = 22.0;  // of the nine places
constexpr double cdCell = 4.0;         // of a wave
constexpr int cnCellsAcross = 5;
constexpr int cnWaves = 10;
constexpr double cdMarkPlace = 35.5, cdMarkDiameter = 3.0;
constexpr double cdCodePlace = -36.0, cdCodePitch = 3.5, cdCodeSide = 2.0;
constexpr double cdEdgeSide = 4.0, cdEdgePitch = 6.7, cdEdgeTurn = 5.0;
constexpr double cdLinePitch = 4.0, cdLineWidth = 0.5, cdLineReach = 32.0;
constexpr int cnStepsAcross = 4;
constexpr double cdStepSide = 16.0;

ClSheetField Grey(double dX, double dY, double dWidth, double dHeight, double dLight) {
  ClSheetField o;
  o.dX = dX;
  o.dY = dY;
  o.dWidth = dWidth;
  o.dHeight = dHeight;
  o.dHigh = dLight;
  return o;
}

/// Four discs round the sheet give its position and its turn; squares along its upper edge, whose first is
/// always there, give its kind as a binary number.
void Mark(ESheet eKind, std::vector<ClSheetField>& aFields) {
  for (const double dX : {-cdMarkPlace, cdMarkPlace}) {
    for (const double dY : {-cdMarkPlace, cdMarkPlace}) {
      ClSheetField o = Grey(dX, dY, cdMarkDiameter, cdMarkDiameter, cdSheetDark);
      o.eKind = ClSheetField::eDisc;
      aFields.push_back(o);
    }
  }
  for (int n = 0; n < 4; ++n) {
    if (n > 0 && (static_cast<int>(eKind) >> (n - 1) & 1) == 0) continue;
    aFields.push_back(Grey((n - 1.5) * cdCodePitch, cdCodePlace, cdCodeSide, cdCodeSide, cdSheetDark));
  }
}

/// Ten waves to the right, ten down, and bright and dark areas between them.
void Waves(ClSheetField::EKind eKind, double dX, double dY, std::vector<ClSheetField>& aFields) {
  for (int n = 0; n < cnCellsAcross * cnCellsAcross; ++n) {
    ClSheetField o = Grey(dX + cdCell * (n % cnCellsAcross - 2), dY + cdCell * (n / cnCellsAcross - 2),
                          cdCell, cdCell, n % 2 == 0 ? cdSheetBright : cdSheetDark);
    if (n < 2 * cnWaves) {
      o.eKind = eKind;
      o.dHigh = cdSheetBright;
      o.dFrequency = 1 + n % cnWaves;
      o.bAlongX = n < cnWaves;
    }
    aFields.push_back(o);
  }
}

/// Nine squares in three rows, turned together. Their edges lie at many different positions against the
/// pixels, and what a picture makes of an edge depends on that.
void Squares(double dX, double dY, std::vector<ClSheetField>& aFields) {
  const double dTurn = cdEdgeTurn * Portable::cdPi / 180.0;
  const double dCos = Portable::Cos(dTurn), dSin = Portable::Sin(dTurn);
  for (int n = 0; n < 9; ++n) {
    const double dU = cdEdgePitch * (n % 3 - 1), dV = cdEdgePitch * (n / 3 - 1);
    aFields.push_back(
        Grey(dX + dU * dCos + dV * dSin, dY + dV * dCos - dU * dSin, cdEdgeSide, cdEdgeSide, cdSheetDark));
    aFields.back().dTurn = cdEdgeTurn;
  }
}

void Lines(std::vector<ClSheetField>& aFields) {
  // Dark lines that cross would be twice as dark: the lines down are made of pieces between those across.
  const double dLength = 2 * cdLineReach + cdLineWidth;
  const int nGaps = static_cast<int>(std::lround(2 * cdLineReach / cdLinePitch));
  for (int n = 0; n <= nGaps; ++n) {
    const double d = n * cdLinePitch - cdLineReach;
    aFields.push_back(Grey(0, d, dLength, cdLineWidth, cdSheetDark));
    for (int nGap = 0; nGap < nGaps; ++nGap) {
      const double dMiddle = (nGap + 0.5) * cdLinePitch - cdLineReach;
      aFields.push_back(Grey(d, dMiddle, cdLineWidth, cdLinePitch - cdLineWidth, cdSheetDark));
    }
  }
}

/// Sixteen greys in an order in which position and grey have little to do with each other.
void Steps(std::vector<ClSheetField>& aFields) {
  constexpr int cnCount = cnStepsAcross * cnStepsAcross;
  for (int n = 0; n < cnCount; ++n) {
    const double dLight = (1 + n * 7 % cnCount) / static_cast<double>(cnCount);
    aFields.push_back(Grey(cdStepSide * (n % cnStepsAcross - 1.5), cdStepSide * (n / cnStepsAcross - 1.5),
                           cdStepSide, cdStepSide, dLight));
  }
}

}  // namespace

std::vector<ClSheetField> SheetFields(ESheet eKind) {
  std::vector<ClSheetField> aFields;
  if (eKind == eSheetBright || eKind == eSheetDark) return aFields;
  Mark(eKind, aFields);
  if (eKind == eSheetGrid) Lines(aFields);
  if (eKind == eSheetSteps) Steps(aFields);
  for (int n = 0; n < 9 && eKind <= eSheetEdges; ++n) {
    const double dX = cdBlockPitch * (n % 3 - 1), dY = cdBlockPitch * (n / 3 - 1);
    if (eKind == eSheetEdges) {
      Squares(dX, dY, aFields);
    } else {
      Waves(eKind == eSheetSine ? ClSheetField::eSine : ClSheetField::eBars, dX, dY, aFields);
    }
  }
  return aFields;
}

}  // namespace Simulator
