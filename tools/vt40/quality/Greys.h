// Noise, evenness, linearity and range of the greys of a picture.
#pragma once

#include "quality/Sheets.h"

/// Grey values along the steps' light: the line that fits them best, and how far the farthest step is off.
struct StLinearity {
  std::vector<StPoint> aSteps;  ///< light as a share of the brightest, grey
  double dOffset;
  double dSlope;
  double dWorst;
};
StLinearity MeasureLinearity(const StView& oView, const StSheetPlace& oPlace);

/// An even picture, in independent areas of a quarter of an inch.
struct StEvenness {
  double dMean;
  double dNoise;      ///< the largest standard deviation of an area
  double dLeastArea;  ///< mean of the darkest area
  double dMostArea;   ///< and of the brightest
  double dRows;       ///< 99th percentile of the differences of neighbouring rows of an area
  double dColumns;    ///< the same of its columns
  double
      dWithin;  ///< share of pixels that stay within dPixel grey values of their area's mean, of the worst area
};
StEvenness MeasureEvenness(const StView& oView, double dPixel);

/// How many grey values five pixels or more of a picture have.
unsigned int CountGreys(const ClPicture& oPicture);
