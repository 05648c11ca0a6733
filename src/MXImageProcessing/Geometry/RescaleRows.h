// The ways to bring a row of 8-bit samples to another length.
#pragma once

#include <algorithm>
#include <cstdint>

namespace RescaleRows {

/// Repeats each sample nFactor times, as far as there is room; the last one fills the rest.
template <typename T>
void Repeat(const T* pIn, int nIn, int nFactor, T* pOut, int nOut) {
  int x = 0;
  for (int n = 0; n < nIn && x < nOut; ++n) {
    for (const int nEnd = x + std::min(nFactor, nOut - x); x < nEnd; ++x) pOut[x] = pIn[n];
  }
  std::fill(pOut + x, pOut + nOut, pIn[nIn - 1]);
}

/// The truncated means of runs of nFactor samples; the last run may be shorter. The last mean fills the rest.
template <typename T>
void MeanOfRuns(const T* pIn, int nIn, int nFactor, T* pOut, int nOut) {
  int x = 0;
  for (int n = 0; n < nIn && x < nOut; ++x) {
    const int nLength = std::min(nFactor, nIn - n);
    int64_t nSum = 0;
    for (int k = 0; k < nLength; ++k) nSum += pIn[n++];
    pOut[x] = static_cast<T>(nSum / nLength);
  }
  std::fill(pOut + x, pOut + nOut, pOut[x - 1]);
}

/// The truncated means of stretches of nStep / 4096 samples, in which parts of samples count by their share.
/// A stretch that the row ends in is divided by what it covers; its mean fills the rest.
template <typename T>
void Integrate(const T* pIn, int nIn, int64_t nStep, T* pOut, int nOut) {
  constexpr int64_t cnSample = 4096;
  int64_t nSum = 0, nBoundary = nStep;
  int x = 0;
  for (int n = 0; n < nIn && x < nOut; ++n) {
    int64_t nStart = n * cnSample;
    const int64_t nEnd = nStart + cnSample;
    while (nEnd > nBoundary && x < nOut) {
      pOut[x++] = static_cast<T>((nSum + (nBoundary - nStart) * pIn[n]) / nStep);
      nSum = 0;
      nStart = nBoundary;
      nBoundary += nStep;
    }
    nSum += (nEnd - nStart) * pIn[n];
  }
  if (x == nOut) return;
  const int64_t nCovered = nIn * cnSample - (nBoundary - nStep);
  std::fill(pOut + x, pOut + nOut, static_cast<T>(nSum / nCovered));
}

/// Means over the input interpolated linearly between its samples, each output sample over the same length.
/// Fant, A Nonaliasing, Real-Time Spatial Transform Technique, IEEE CG&A 1986.
template <typename T>
void Fant(const T* pIn, int nIn, T* pOut, int nOut) {
  // Lengths count nOut parts of a sample, so that they are whole numbers, which a double holds exactly.
  const double dArea = static_cast<double>(nIn) * nOut;
  int64_t nInside = nOut;
  int n = 0;
  for (int x = 0; x < nOut; ++x) {
    int64_t nWanted = nIn;
    double dSum = 0;
    while (nWanted > 0) {
      const T nNext = pIn[std::min(n + 1, nIn - 1)];
      const int64_t nPart = std::min(nInside, nWanted);
      dSum += static_cast<double>(nInside * pIn[n] + (nOut - nInside) * nNext) * static_cast<double>(nPart);
      nInside -= nPart;
      nWanted -= nPart;
      if (nInside == 0) {
        nInside = nOut;
        n = std::min(n + 1, nIn - 1);
      }
    }
    pOut[x] = static_cast<T>(dSum / dArea);
  }
}

}  // namespace RescaleRows
