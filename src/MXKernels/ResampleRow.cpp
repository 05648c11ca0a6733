// The row functions of resizing by weighted windows.
#include "MXKernels/ResampleRow.h"

namespace MXKernels {

namespace {

uint8_t ClippedQuotient(int32_t nSum, int32_t nDivisor) noexcept {
  const int32_t nValue = nSum / nDivisor;
  return static_cast<uint8_t>(nValue < 0 ? 0 : nValue > 255 ? 255 : nValue);
}

}  // namespace

void ResampleRow(const uint8_t* pIn, const ResampleWindow* pWindows, const int32_t* pWeights, size_t nCount,
                 uint8_t* pOut) noexcept {
  for (size_t i = 0; i < nCount; ++i) {
    const ResampleWindow& o = pWindows[i];
    const uint8_t* pSample = pIn + o.m_nFirst;
    const int32_t* pWeight = pWeights + o.m_nWeights;
    int32_t nSum = 0;
    for (int32_t n = 0; n < o.m_nCount; ++n) nSum += pWeight[n] * pSample[n];
    pOut[i] = ClippedQuotient(nSum, o.m_nDivisor);
  }
}

void AddWeightedRow(const uint8_t* pRow, int32_t nWeight, int32_t* pSums, size_t nCount) noexcept {
  for (size_t i = 0; i < nCount; ++i) pSums[i] += nWeight * pRow[i];
}

void DivideRow(const int32_t* pSums, int32_t nDivisor, uint8_t* pOut, size_t nCount) noexcept {
  for (size_t i = 0; i < nCount; ++i) pOut[i] = ClippedQuotient(pSums[i], nDivisor);
}

}  // namespace MXKernels
