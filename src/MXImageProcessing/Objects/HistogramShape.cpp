// Smoothing of a histogram, walks over its hills, and the threshold between its two clusters.
#include <algorithm>
#include <iterator>
#include <limits>

#include "MXImageProcessing/Histogram.h"
#include "portable/Math.h"

namespace {

constexpr int cnLastBin = 255;

int Rounded(double dValue) {
  return static_cast<int>(std::trunc(dValue + 0.5));
}

/// The density of a normal distribution with the factors that the comparison of two needs. A cluster of one
/// grey value has all its density there.
double Density(double dX, double dMean, double dDeviation) {
  constexpr double cdTwoPi = 6.283185307179586;
  if (dDeviation <= 0.0) return dX == dMean ? std::numeric_limits<double>::infinity() : 0.0;
  const double dDistance = (dX - dMean) / dDeviation;
  return Portable::Exp(-0.5 * dDistance * dDistance) / (dDeviation * dDeviation * cdTwoPi);
}

}  // namespace

void ClHistogram::LowPass() {
  LowPass(3);
  LowPass(3);
}

void ClHistogram::LowPass(int nWidth) {
  const int nHalf = std::clamp(nWidth / 2, 0, cnLastBin);
  int32_t aOld[256];
  std::copy(std::begin(m_aCounts), std::end(m_aCounts), aOld);
  int64_t nSum = 0;
  for (int i = 0; i < nHalf; ++i) nSum += aOld[i];
  for (int i = 0; i <= cnLastBin; ++i) {
    if (i + nHalf <= cnLastBin) nSum += aOld[i + nHalf];
    if (i - nHalf > 0) nSum -= aOld[i - nHalf - 1];
    const int nBins = std::min(i + nHalf, cnLastBin) - std::max(i - nHalf, 0) + 1;
    m_aCounts[i] = static_cast<int32_t>(nSum / nBins);
  }
}

void ClHistogram::CalcFirstDerivation(int nWidth, double* pOut) const {
  if (nWidth < 1) return;
  for (int i = nWidth; i <= cnLastBin - nWidth; ++i) {
    double dSum = 0.0;
    for (int k = 1; k <= nWidth; ++k) {
      dSum += (static_cast<double>(m_aCounts[i + k]) - m_aCounts[i - k]) * 0.5 / k;
    }
    pOut[i] = dSum / nWidth;
  }
}

/// How much higher the window of nStep bins above the position is than the one below it.
int ClHistogram::Slope(int nPos, int nStep) const {
  const auto MidOf = [this](int nFirst, int nLast) {
    return GetMid(static_cast<unsigned char>(std::clamp(nFirst, 0, cnLastBin)),
                  static_cast<unsigned char>(std::clamp(nLast, 0, cnLastBin)));
  };
  return MidOf(nPos + 1, nPos + nStep) - MidOf(nPos - nStep, nPos - 1);
}

/// Goes on in the direction in which nSense times the slope is positive until it no longer is.
int ClHistogram::Walk(int nPos, int nStep, int nSense) const {
  const int nDirection = nSense * Slope(nPos, nStep) > 0 ? 1 : -1;
  const int nEnd = nDirection > 0 ? cnLastBin : 0;
  while (nPos != nEnd && nDirection * nSense * Slope(nPos, nStep) > 0) nPos += nDirection;
  return nPos - m_nOffset;
}

int ClHistogram::Climb(unsigned char nPos, unsigned char nStep) const {
  return Walk(nPos, nStep, 1);
}

int ClHistogram::Descend(unsigned char nPos, unsigned char nStep) const {
  return Walk(std::min(std::max<int>(nPos, nStep), cnLastBin - nStep), nStep, -1);
}

bool ClHistogram::IsUnimodal(unsigned char) const {
  constexpr int cnWindow = 10;
  int nPos = 15;
  while (nPos < cnLastBin && Slope(nPos, cnWindow) >= 0) ++nPos;
  nPos += 5;
  while (nPos < cnLastBin && Slope(nPos, cnWindow) <= 0) ++nPos;
  return nPos > 239;
}

unsigned int ClHistogram::TwoMeansClustering(double& rdMean1, double& rdMean2,
                                             unsigned int nThreshold) const {
  const int nLastLow = static_cast<int>(std::min(nThreshold, 255U));
  rdMean1 = MeanBin(0, nLastLow);
  rdMean2 = MeanBin(nLastLow + 1, cnLastBin);
  return static_cast<unsigned int>(Rounded((rdMean1 + rdMean2) * 0.5));
}

unsigned int ClHistogram::TwoMeansClustering(double& rdMean1, double& rdDeviation1, double& rdMean2,
                                             double& rdDeviation2, unsigned int nThreshold) const {
  const int nLastLow = static_cast<int>(std::min(nThreshold, 255U));
  rdMean1 = MeanBin(0, nLastLow);
  rdMean2 = MeanBin(nLastLow + 1, cnLastBin);
  rdDeviation1 = DeviationFrom(rdMean1, 0, nLastLow);
  rdDeviation2 = DeviationFrom(rdMean2, nLastLow + 1, cnLastBin);
  int nLevel = Rounded(rdMean1);
  const int nEnd = Rounded(rdMean2);
  while (nLevel < nEnd &&
         !(Density(nLevel, rdMean2, rdDeviation2) > Density(nLevel, rdMean1, rdDeviation1))) {
    ++nLevel;
  }
  return static_cast<unsigned int>(nLevel);
}

int ClHistogram::TwoMeansClustering(bool bGaussian) const {
  constexpr int cnMaxRounds = 100;
  constexpr unsigned int cnEnd = 255;
  auto nThreshold = static_cast<unsigned int>(Rounded(MeanBin(0, cnLastBin)));
  for (int n = 0; n < cnMaxRounds && nThreshold < cnEnd; ++n) {
    double dMean1, dDeviation1, dMean2, dDeviation2;
    const unsigned int nNext = bGaussian
                                   ? TwoMeansClustering(dMean1, dDeviation1, dMean2, dDeviation2, nThreshold)
                                   : TwoMeansClustering(dMean1, dMean2, nThreshold);
    if (nNext == nThreshold) break;
    nThreshold = nNext;
  }
  return static_cast<int>(std::min(nThreshold, cnEnd)) - m_nOffset;
}
