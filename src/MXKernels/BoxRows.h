// Row functions of the mean filter and threshold: the sliding window mean over column sums.
#pragma once

#include "MXKernels/Kernel.h"

namespace MXKernels {

template <typename TSum, typename T>
using MeanRow = void(const TSum* pSums, size_t nCount, size_t nHalf, uint32_t nRows, TSum* pPrefix,
                     T* pOut) noexcept;

/// pOut[x] = sum of pSums[x - nHalf .. x + nHalf] / (nRows * columns), truncated; the window is
/// clipped to [0, nCount) and columns is the number of columns left in it.
///
/// Domain  each column sum is at most nRows times the largest sample; the sum of a whole window
///         fits 32 bits; nRows >= 1. A window of 16-bit sums has 256 pixels at most.
/// pPrefix is scratch of nCount + 1 words. Nothing else is written but pOut[0, nCount).
extern const TpKernel<MeanRow<uint32_t, uint8_t>, MeanRow<uint32_t, uint16_t>, MeanRow<uint16_t, uint8_t>>
    SlidingMeanRow;

/// The window of AboveMeanRow, [x - m_nLeft, x + m_nRight], and what is made of its mean.
struct WindowThreshold {
  size_t m_nLeft;
  size_t m_nRight;
  uint32_t m_nRows;
  int32_t m_nOffset;  ///< added to the sample before it is compared; -256 to 256
  uint8_t m_nAbove;
  uint8_t m_nBelow;
};

template <typename TSum>
using ThresholdByMeanRow = void(const uint8_t* pIn, const TSum* pSums, size_t nCount,
                                const WindowThreshold& oWindow, TSum* pPrefix, uint8_t* pOut) noexcept;

/// pOut[x] = pIn[x] + offset > sum of pSums over the window / (rows * columns) ? above : below, compared
/// without a division; the window is clipped to [0, nCount) and columns is the number of columns left in it.
///
/// Domain  each column sum is at most 255 times the rows, of which there is one at least; the sum of a whole
///         window fits the type of the sums.
/// Cost    16-bit sums are the faster ones where the offset is not negative and 255 with it, times the pixels
///         of the window, fits 16 bits too; elsewhere they are the slower ones.
/// pPrefix is scratch of nCount + 1 words. Nothing else is written but pOut[0, nCount).
extern const TpKernel<ThresholdByMeanRow<uint32_t>, ThresholdByMeanRow<uint16_t>> AboveMeanRow;

}  // namespace MXKernels
