// Means, deviations and counts.
#include "quality/Greys.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

namespace {

constexpr double cdAreaMm = 6.35;
constexpr double cdStepHalf = 6;
constexpr unsigned int cnLeastPixels = 5;

double MeanOf(const std::vector<double>& a) {
  return std::accumulate(a.begin(), a.end(), 0.0) / static_cast<double>(a.size());
}

void AddDifferences(const std::vector<double>& aMeans, std::vector<double>& aDifferences) {
  for (size_t n = 1; n < aMeans.size(); ++n) aDifferences.push_back(std::fabs(aMeans[n] - aMeans[n - 1]));
}

}  // namespace

StLinearity MeasureLinearity(const StView& oView, const StSheetPlace& oPlace) {
  StLinearity o{{}, 0, 0, 0};
  double dX = 0, dY = 0, dXX = 0, dXY = 0;
  constexpr int cnCount = cnStepsAcross * cnStepsAcross;
  for (int n = 0; n < cnCount; ++n) {
    const StPoint oMiddle{cdStepSide * (n % cnStepsAcross - 1.5), cdStepSide * (n / cnStepsAcross - 1.5)};
    double dSum = 0;
    const auto aSamples = SamplesIn(oView, oPlace, oMiddle, cdStepHalf, cdStepHalf);
    for (const StSample& oSample : aSamples) dSum += oSample.dGrey;
    const double dLight = StepLight(n),
                 dGrey = dSum / std::max<double>(1, static_cast<double>(aSamples.size()));
    o.aSteps.push_back({dLight, dGrey});
    dX += dLight;
    dY += dGrey;
    dXX += dLight * dLight;
    dXY += dLight * dGrey;
  }
  o.dSlope = (cnCount * dXY - dX * dY) / (cnCount * dXX - dX * dX);
  o.dOffset = (dY - o.dSlope * dX) / cnCount;
  for (const StPoint& oStep : o.aSteps)
    o.dWorst = std::max(o.dWorst, std::fabs(oStep.dY - o.dOffset - o.dSlope * oStep.dX));
  return o;
}

StEvenness MeasureEvenness(const StView& oView, double dPixel) {
  const ClPicture& oPicture = *oView.pPicture;
  const unsigned int nSide = static_cast<unsigned int>(std::lround(cdAreaMm * oView.dPixelsPerMm));
  const unsigned int nColumns = oPicture.nWidth / nSide, nRows = oPicture.nHeight / nSide;
  const unsigned int nLeft = (oPicture.nWidth - nColumns * nSide) / 2,
                     nTop = (oPicture.nHeight - nRows * nSide) / 2;
  StEvenness o{0, 0, 255, 0, 0, 0, 1};
  std::vector<double> aRowSteps, aColumnSteps;
  for (unsigned int nArea = 0; nArea < nColumns * nRows; ++nArea) {
    const unsigned int nX = nLeft + nSide * (nArea % nColumns), nY = nTop + nSide * (nArea / nColumns);
    std::vector<double> aRow(nSide), aColumn(nSide);
    double dSquares = 0;
    for (unsigned int y = 0; y < nSide; ++y) {
      for (unsigned int x = 0; x < nSide; ++x) {
        const double dGrey = oPicture.Row(nY + y)[nX + x];
        aRow[y] += dGrey / nSide;
        aColumn[x] += dGrey / nSide;
        dSquares += dGrey * dGrey;
      }
    }
    const double dCount = static_cast<double>(nSide) * nSide, dMean = MeanOf(aRow);
    double dWithin = 0;
    for (unsigned int y = 0; y < nSide; ++y)
      for (unsigned int x = 0; x < nSide; ++x)
        dWithin += std::fabs(oPicture.Row(nY + y)[nX + x] - dMean) <= dPixel;
    o.dMean += dMean / (nColumns * nRows);
    o.dNoise = std::max(o.dNoise, std::sqrt(std::max(0.0, dSquares / dCount - dMean * dMean)));
    o.dLeastArea = std::min(o.dLeastArea, dMean);
    o.dMostArea = std::max(o.dMostArea, dMean);
    o.dWithin = std::min(o.dWithin, dWithin / dCount);
    AddDifferences(aRow, aRowSteps);
    AddDifferences(aColumn, aColumnSteps);
  }
  o.dRows = Percentile99(aRowSteps);
  o.dColumns = Percentile99(aColumnSteps);
  return o;
}

unsigned int CountGreys(const ClPicture& oPicture) {
  std::array<unsigned int, 256> anCount{};
  for (const unsigned char n : oPicture.aPixels) ++anCount[n];
  return static_cast<unsigned int>(
      std::count_if(anCount.begin(), anCount.end(), [](unsigned int n) { return n >= cnLeastPixels; }));
}
