// The row functions of resizing by weighted windows.
#pragma once

#include <cstddef>
#include <cstdint>

namespace MXKernels {

/// The window of one output sample: m_nCount input samples from m_nFirst on, their weights from m_nWeights on
/// in a shared array, and the divisor.
struct ResampleWindow {
  int32_t m_nFirst;
  int32_t m_nCount;
  int32_t m_nWeights;
  int32_t m_nDivisor;
};

/// pOut[i] = clip(sum of weight * sample over window i / its divisor), the division truncated.
///
/// Domain  windows lie inside the row; divisors are not 0; sums fit 32 bits. pOut doesn't overlap pIn.
void ResampleRow(const uint8_t* pIn, const ResampleWindow* pWindows, const int32_t* pWeights, size_t nCount,
                 uint8_t* pOut) noexcept;

/// pSums[i] += nWeight * pRow[i].
void AddWeightedRow(const uint8_t* pRow, int32_t nWeight, int32_t* pSums, size_t nCount) noexcept;

/// pOut[i] = clip(pSums[i] / nDivisor), the division truncated.
void DivideRow(const int32_t* pSums, int32_t nDivisor, uint8_t* pOut, size_t nCount) noexcept;

}  // namespace MXKernels
