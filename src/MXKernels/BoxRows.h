// Row functions of the mean filter and threshold: the sliding window mean over column sums.
#pragma once

#include "MXKernels/Kernel.h"

namespace MXKernels {

template <typename T>
using MeanRow = void(const uint32_t* pSums, size_t nCount, size_t nHalf, uint32_t nRows, uint32_t* pPrefix,
                     T* pOut) noexcept;

/// pOut[x] = sum of pSums[x - nHalf .. x + nHalf] / (nRows * columns), truncated; the window is
/// clipped to [0, nCount) and columns is the number of columns left in it.
///
/// Domain  each column sum is at most nRows times the largest sample; the sum of a whole window
///         fits 32 bits; nRows >= 1.
/// pPrefix is scratch of nCount + 1 words. Nothing else is written but pOut[0, nCount).
extern const TpKernel<MeanRow<uint8_t>, MeanRow<uint16_t>> SlidingMeanRow;

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
extern const TpKernel<void(const uint8_t* pIn, const uint32_t* pSums, size_t nCount,
                           const WindowThreshold& oWindow, uint32_t* pPrefix, uint8_t* pOut) noexcept>
    AboveMeanRow;

}  // namespace MXKernels
