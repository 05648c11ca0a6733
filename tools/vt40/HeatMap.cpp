// Residuals of the target's dots as a picture.
#include "HeatMap.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr unsigned int cnCell = 100;  // pixels of a pitch
constexpr unsigned int cnCells = 7;
constexpr unsigned int cnSquare = cnCells * cnCell + 1;
constexpr unsigned int cnGap = 20;
constexpr unsigned int cnPelsPerMetre = 10000;

/// The residual at a position, counted in pixels from the first dot.
double Between(const StResidual& oResidual, unsigned int nX, unsigned int nY) {
  const unsigned int nColumn = std::min(nX / cnCell, cnCells - 1), nRow = std::min(nY / cnCell, cnCells - 1);
  const double dX = static_cast<double>(nX - nColumn * cnCell) / cnCell;
  const double dY = static_cast<double>(nY - nRow * cnCell) / cnCell;
  const auto At = [&](unsigned int nRight, unsigned int nDown) {
    return oResidual.Of((nColumn + nRight) * (cnCells + 1) + nRow + nDown);
  };
  return (At(0, 0) * (1 - dX) + At(1, 0) * dX) * (1 - dY) + (At(0, 1) * (1 - dX) + At(1, 1) * dX) * dY;
}

void DrawSquare(const StResidual& oResidual, unsigned int nLeft, ClPicture& oPicture) {
  const double dScale = 255 / std::max(oResidual.Most(), 1e-9);
  for (unsigned int y = 0; y < cnSquare; ++y) {
    unsigned char* pRow = oPicture.aPixels.data() + static_cast<size_t>(y) * oPicture.nWidth + nLeft;
    for (unsigned int x = 0; x < cnSquare; ++x)
      pRow[x] = static_cast<unsigned char>(std::lround(dScale * Between(oResidual, x, y)));
  }
}

}  // namespace

ClPicture DrawHeatMap(const StResidual& oBefore, const StResidual& oAfter) {
  ClPicture oPicture;
  oPicture.nWidth = 2 * cnSquare + cnGap;
  oPicture.nHeight = cnSquare;
  oPicture.nPelsX = oPicture.nPelsY = cnPelsPerMetre;
  oPicture.aPixels.assign(static_cast<size_t>(oPicture.nWidth) * oPicture.nHeight, 0);
  DrawSquare(oBefore, 0, oPicture);
  DrawSquare(oAfter, cnSquare + cnGap, oPicture);
  return oPicture;
}
