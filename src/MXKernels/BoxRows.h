// Row functions of the mean filter: column sums and the sliding window mean over them.
#pragma once

#include <cstddef>
#include <cstdint>

namespace MXKernels {

/// pSums[i] += pRow[i].
void AddToColumnSumsU8(const uint8_t* pRow, uint32_t* pSums, size_t nCount) noexcept;
void AddToColumnSumsU16(const uint16_t* pRow, uint32_t* pSums, size_t nCount) noexcept;

/// pSums[i] -= pRow[i].
void TakeFromColumnSumsU8(const uint8_t* pRow, uint32_t* pSums, size_t nCount) noexcept;
void TakeFromColumnSumsU16(const uint16_t* pRow, uint32_t* pSums, size_t nCount) noexcept;

/// pSums[i] += pEnter[i] - pLeave[i]: the window moves on by one row.
void MoveColumnSumsU8(const uint8_t* pEnter, const uint8_t* pLeave, uint32_t* pSums, size_t nCount) noexcept;
void MoveColumnSumsU16(const uint16_t* pEnter, const uint16_t* pLeave, uint32_t* pSums,
                       size_t nCount) noexcept;

/// pOut[x] = sum of pSums[x - nHalf .. x + nHalf] / (nRows * columns), truncated; the window is
/// clipped to [0, nCount) and columns is the number of columns left in it.
///
/// Domain  each column sum is at most nRows times the largest sample; the sum of a whole window
///         fits 32 bits; nRows >= 1.
/// pPrefix is scratch of nCount + 1 words. Nothing else is written but pOut[0, nCount).
void SlidingMeanRowU8(const uint32_t* pSums, size_t nCount, size_t nHalf, uint32_t nRows, uint32_t* pPrefix,
                      uint8_t* pOut) noexcept;
void SlidingMeanRowU16(const uint32_t* pSums, size_t nCount, size_t nHalf, uint32_t nRows, uint32_t* pPrefix,
                       uint16_t* pOut) noexcept;

}  // namespace MXKernels
