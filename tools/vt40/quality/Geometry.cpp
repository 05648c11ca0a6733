// Middles of the grid's lines between its crossings.
#include "quality/Geometry.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double cdSegment = 38.1;          // millimetres
constexpr double cdLeastAllowed = 0.01778;  // millimetres: 0.0007 inch
constexpr double cdAllowedPart = 0.01;
constexpr double cdAcrossHalf = 1.2, cdAlongHalf = 1.2;
constexpr int cnGaps = cnLines - 1;

double LineAt(int n) {
  return -cdLineReach + n * cdLinePitch;
}

/// By how much the line lies off its position near the middle of a gap, in millimetres.
double OffsetOf(const StView& oView, const StSheetPlace& oPlace, int nLine, int nGap, bool bAlongX) {
  const double dLine = LineAt(nLine), dGap = LineAt(nGap) + cdLinePitch / 2;
  const StPoint oMiddle = bAlongX ? StPoint{dLine, dGap} : StPoint{dGap, dLine};
  const auto aSamples = SamplesIn(oView, oPlace, oMiddle, bAlongX ? cdAcrossHalf : cdAlongHalf,
                                  bAlongX ? cdAlongHalf : cdAcrossHalf);
  double dPaper = 0, nPaper = 0, dSum = 0, dDarkness = 0;
  for (const StSample& o : aSamples) {
    if (std::fabs(bAlongX ? o.dX : o.dY) < 0.8) continue;
    dPaper += o.dGrey;
    ++nPaper;
  }
  dPaper = nPaper > 0 ? dPaper / nPaper : 0;
  for (const StSample& o : aSamples) {
    const double dAt = bAlongX ? o.dX : o.dY;
    if (std::fabs(dAt) >= 0.8) continue;
    dDarkness += dPaper - o.dGrey;
    dSum += (dPaper - o.dGrey) * dAt;
  }
  // Where no line is seen it is as far off as it can be.
  return dDarkness > 0 ? std::clamp(dSum / dDarkness, -1.0, 1.0) : 1.0;
}

}  // namespace

StGeometry MeasureGeometry(const StView& oView, const StSheetPlace& oPlace, bool bAlongX) {
  double adOff[cnLines][cnGaps];
  double dSquares = 0, dMean = 0, dLargest = 0;
  for (int n = 0; n < cnLines; ++n) {
    for (int g = 0; g < cnGaps; ++g) {
      adOff[n][g] = OffsetOf(oView, oPlace, n, g, bAlongX);
      dMean += adOff[n][g] / (cnLines * cnGaps);
    }
  }
  std::vector<double> aAcross, aAlong;
  for (int n = 0; n < cnLines; ++n) {
    for (int g = 0; g < cnGaps; ++g) {
      dSquares += (adOff[n][g] - dMean) * (adOff[n][g] - dMean);
      for (int k = n + 1; k < cnLines && (k - n) * cdLinePitch <= cdSegment; ++k) {
        const double dError = std::fabs(adOff[k][g] - adOff[n][g]);
        dLargest = std::max(dLargest, dError);
        aAcross.push_back(dError / std::max(cdLeastAllowed, cdAllowedPart * (k - n) * cdLinePitch));
      }
      for (int k = g + 1; k < cnGaps && (k - g) * cdLinePitch <= cdSegment; ++k)
        aAlong.push_back(1000 * std::fabs(adOff[n][k] - adOff[n][g]));
    }
  }
  return {bAlongX, Percentile99(aAcross), 1000 * dLargest, Percentile99(aAlong),
          1000 * std::sqrt(dSquares / (cnLines * cnGaps))};
}
