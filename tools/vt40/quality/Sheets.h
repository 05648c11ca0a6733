// The sheets that image quality is measured with, and how they are found in a picture.
#pragma once

#include <optional>

#include "quality/View.h"

/// All sheets but the plain ones carry four dark discs 35.5 mm right, left, above and below their middle, and
/// along their upper edge, 36 mm above it, squares of 2 mm at -5.25, -1.75, 1.75 and 5.25 mm: the first is
/// always there, the others are the kind as a binary number, lowest digit first. docs/quality.md shows them.
enum ESheetKind { eSine, eBars, eEdges, eGrid, eSteps, eBright, eDark };
constexpr int cnSheetKinds = 7;
extern const char* const caszSheetNames[cnSheetKinds];

constexpr double cdBlockPitch = 22;  ///< of the nine places of waves and edges
constexpr double cdCellSide = 4;     ///< of a wave
constexpr int cnCellsAcross = 5;
constexpr int cnFrequencies = 10;
constexpr double cdEdgeHalf = 2;  ///< of a dark square
constexpr double cdEdgePitch = 6.7;
constexpr int cnSquares = 9;       ///< of a place, in three rows that are turned together
constexpr double cdEdgeTurn = 5;   ///< degrees
constexpr double cdLinePitch = 4;  ///< of the grid
constexpr double cdLineReach = 32;
constexpr int cnLines = 17;
constexpr int cnStepsAcross = 4;
constexpr double cdStepSide = 16;
constexpr double cdMarkPlace = 35.5;

/// Light from a grey step as a share of the brightest, in the order of its position.
double StepLight(int nStep);
StPoint BlockMiddle(int nBlock);
StPoint CellMiddle(int nBlock, int nCell);

struct StFoundSheet {
  ESheetKind eKind;
  StSheetPlace oPlace;
};

/// Finds the sheet in a rectified picture, which may be turned by any angle and shifted as far as its discs
/// stay on the platen. An even bright picture is the bright sheet, an even grey one the dark sheet; a bare
/// platen is darker.
std::optional<StFoundSheet> FindSheet(const StView& oView);
/// Where a disc's middle is found, in millimetres on the sheet, near the one that is expected there.
StPoint DiscMiddle(const StView& oView, const StSheetPlace& oPlace, const StPoint& oExpected);
