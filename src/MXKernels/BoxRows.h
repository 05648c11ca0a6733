// Row functions of the mean filter and threshold: column sums and the sliding window mean over them.
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

/// The window of AboveMeanRow, [x - m_nLeft, x + m_nRight], and what is made of its mean.
struct WindowThreshold {
  size_t m_nLeft;
  size_t m_nRight;
  uint32_t m_nRows;
  int32_t m_nOffset;  ///< added to the sample before it is compared; -256 to 256
  uint8_t m_nAbove;
  uint8_t m_nBelow;
};

/// pOut[x] = pIn[x] + offset > sum of pSums over the window / (rows * columns) ? above : below, compared
/// without a division; the window is clipped to [0, nCount) and columns is the number of columns left in it.
///
/// Domain  each column sum is at most 255 times the rows, of which there is one at least.
/// pPrefix is scratch of nCount + 1 words. Nothing else is written but pOut[0, nCount).
void AboveMeanRow(const uint8_t* pIn, const uint32_t* pSums, size_t nCount, const WindowThreshold& oWindow,
                  uint32_t* pPrefix, uint8_t* pOut) noexcept;

}  // namespace MXKernels
