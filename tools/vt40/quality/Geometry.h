// How straight, and at which distances from each other, the lines of the grid are shown.
#pragma once

#include "quality/Sheets.h"

/// One direction of the grid: bars that are crossed to the right (upright ones), or down.
///
/// dAcross   the 99th percentile, over all pairs of bars at most 38.1 mm apart, of the difference between
///           distance in the picture and distance on the sheet, as a part of what is allowed: 17.8
///           micrometres, or a hundredth of the distance where that is more.
/// dAlong    the 99th percentile, over all bars and pairs of points at most 38.1 mm apart on one, of the
///           difference of their positions across it, in micrometres.
struct StGeometry {
  bool bAlongX;
  double dAcross;
  double dAcrossMicrometres;  ///< the largest difference of distances
  double dAlong;
  double dRmsMicrometres;  ///< of all points' positions, after the sheet's place and turn
};

StGeometry MeasureGeometry(const StView& oView, const StSheetPlace& oPlace, bool bAlongX);
