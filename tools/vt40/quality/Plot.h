// Curves as a picture.
#pragma once

#include <string>
#include <vector>

#include "Picture.h"

/// One curve: points in the units of the axes, from dark (0) to light grey, dashed or not, and its name in
/// capitals, digits, full stops and blanks.
struct StCurve {
  std::string sName;
  std::vector<double> aX;
  std::vector<double> aY;
  unsigned char nGrey = 0;
  bool bDashed = false;
};

/// A picture of 720 by 480 pixels with the axes from 0 to the given ends, and the curves' names below each
/// other.
ClPicture DrawCurves(const std::vector<StCurve>& aCurves, double dEndX, double dStepX, double dEndY,
                     double dStepY);
