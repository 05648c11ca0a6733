// The plain twins of the kernels that treat samples one by one, and the kernels that have no other form.
#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "MXKernels/Reference.h"
#include "portable/Math.h"

namespace MXKernels {

void HistogramRow(const uint8_t* pIn, size_t nCount, int32_t* pBins) noexcept {
  // There are two sets of bins: in a run of equal samples each count would otherwise wait for the last store.
  int32_t aOdd[256];
  std::memset(aOdd, 0, sizeof(aOdd));
  size_t i = 0;
  for (; i + 2 <= nCount; i += 2) {
    ++pBins[pIn[i]];
    ++aOdd[pIn[i + 1]];
  }
  if (i < nCount) ++pBins[pIn[i]];
  for (int n = 0; n < 256; ++n) pBins[n] += aOdd[n];
}

namespace Reference {

void SubtractSaturated(const uint8_t* pLit, const uint8_t* pDark, uint8_t* pOut, size_t nCount) noexcept {
  for (size_t i = 0; i < nCount; ++i) {
    pOut[i] = static_cast<uint8_t>(pLit[i] > pDark[i] ? pLit[i] - pDark[i] : 0);
  }
}

void AbsoluteDifferenceRow(const uint8_t* pA, const uint8_t* pB, uint8_t* pOut, size_t nCount) noexcept {
  for (size_t i = 0; i < nCount; ++i) pOut[i] = static_cast<uint8_t>(std::abs(pA[i] - pB[i]));
}

void AndRow(const uint8_t* pA, const uint8_t* pB, uint8_t* pOut, size_t nCount) noexcept {
  for (size_t i = 0; i < nCount; ++i) pOut[i] = pA[i] & pB[i];
}

void ClampRow(const uint8_t* pIn, uint8_t* pOut, size_t nCount, uint8_t nLower, uint8_t nUpper) noexcept {
  for (size_t i = 0; i < nCount; ++i) pOut[i] = std::min(std::max(pIn[i], nLower), nUpper);
}

void ThresholdRow(const uint8_t* pIn, uint8_t* pOut, size_t nCount, uint8_t nThreshold, uint8_t nBelow,
                  uint8_t nAbove) noexcept {
  for (size_t i = 0; i < nCount; ++i) pOut[i] = pIn[i] < nThreshold ? nBelow : nAbove;
}

void EqualRow(const uint8_t* pIn, uint8_t* pOut, size_t nCount, uint8_t nValue) noexcept {
  for (size_t i = 0; i < nCount; ++i) pOut[i] = pIn[i] == nValue ? 255 : 0;
}

void AdjustBrightnessRow(const uint8_t* pIn, const uint8_t* pReference, uint8_t* pOut, size_t nCount,
                         uint8_t nValue, uint8_t nMinimum) noexcept {
  for (size_t i = 0; i < nCount; ++i) {
    const int nResult = pIn[i] * nValue / std::max(pReference[i], nMinimum);
    pOut[i] = static_cast<uint8_t>(std::min(nResult, 255));
  }
}

uint64_t SquaredDifference(const uint8_t* pA, const uint8_t* pB, size_t nCount) noexcept {
  uint64_t nSum = 0;
  for (size_t i = 0; i < nCount; ++i) {
    const int nDifference = pA[i] - pB[i];
    nSum += static_cast<uint64_t>(nDifference * nDifference);
  }
  return nSum;
}

void DeviationRow(const uint16_t* pIn, const uint16_t* pMean, uint8_t* pOut, size_t nCount,
                  uint16_t nLimit) noexcept {
  for (size_t i = 0; i < nCount; ++i) pOut[i] = std::abs(pIn[i] - pMean[i]) > nLimit ? 255 : 0;
}

void RemoveBackgroundRow(uint8_t* pPicture, uint8_t* pOldest, uint16_t* pSums, size_t nCount) noexcept {
  for (size_t i = 0; i < nCount; ++i) {
    const uint8_t nNew = pPicture[i];
    const int nMean = pSums[i] / 8;
    pSums[i] = static_cast<uint16_t>(pSums[i] - pOldest[i] + nNew);
    pOldest[i] = nNew;
    pPicture[i] = static_cast<uint8_t>(std::max(nNew - nMean, 0));
  }
}

void WeightedBlendRow(const uint8_t* pIn, const uint8_t* pWeight, uint8_t* pInOut, size_t nCount) noexcept {
  for (size_t i = 0; i < nCount; ++i) {
    pInOut[i] = static_cast<uint8_t>((pIn[i] * pWeight[i] + pInOut[i] * (255 - pWeight[i])) / 255);
  }
}

uint64_t SquaredDifferenceWhere(const uint8_t* pA, const uint8_t* pB, const uint64_t* pBitsA,
                                const uint64_t* pBitsB, size_t nCount) noexcept {
  uint64_t nSum = 0;
  for (size_t i = 0; i < nCount; ++i) {
    const int nDifference = ((pBitsA[i / 64] & pBitsB[i / 64]) >> (i % 64) & 1) != 0 ? pA[i] - pB[i] : 0;
    nSum += static_cast<uint64_t>(nDifference * nDifference);
  }
  return nSum;
}

namespace {

inline double SplineBasis(double dX, SplinePoint oPoint) noexcept {
  const double dBetween = dX - oPoint.m_dX;
  const double dDistance = dBetween * dBetween + oPoint.m_dSquaredY;
  return dDistance * Portable::Log(dDistance);
}

}  // namespace

void AddSplineBasisRow(const double* pX, size_t nCount, SplinePoint oPoint, double dWeight,
                       double* pSum) noexcept {
  for (size_t i = 0; i < nCount; ++i) pSum[i] += dWeight * SplineBasis(pX[i], oPoint);
}

void AddSplineBasisPairRow(const double* pX, size_t nCount, SplinePoint oPoint, double dWeightA,
                           double dWeightB, double* pSumA, double* pSumB) noexcept {
  for (size_t i = 0; i < nCount; ++i) {
    const double dBasis = SplineBasis(pX[i], oPoint);
    pSumA[i] += dWeightA * dBasis;
    pSumB[i] += dWeightB * dBasis;
  }
}

}  // namespace Reference
}  // namespace MXKernels
