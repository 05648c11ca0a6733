// Row functions that treat each sample by itself: difference, distance, limits, threshold, look-up, blend and such.
#pragma once

#include <cstddef>
#include <cstdint>

namespace MXKernels {

/// Common to all kernels of this header: any alignment; pOut may equal any input, but must not
/// overlap one otherwise; nothing but [0, nCount) is read or written.

/// pOut[i] = pLit[i] > pDark[i] ? pLit[i] - pDark[i] : 0.
void SubtractSaturated(const uint8_t* pLit, const uint8_t* pDark, uint8_t* pOut, size_t nCount) noexcept;

/// pOut[i] = |pA[i] - pB[i]|.
void AbsoluteDifferenceRow(const uint8_t* pA, const uint8_t* pB, uint8_t* pOut, size_t nCount) noexcept;

/// pOut[i] = pA[i] & pB[i].
void AndRow(const uint8_t* pA, const uint8_t* pB, uint8_t* pOut, size_t nCount) noexcept;

/// pOut[i] = pIn[i] limited to nLower and nUpper; nLower <= nUpper.
void ClampRow(const uint8_t* pIn, uint8_t* pOut, size_t nCount, uint8_t nLower, uint8_t nUpper) noexcept;

/// pOut[i] = pIn[i] < nThreshold ? nBelow : nAbove.
void ThresholdRow(const uint8_t* pIn, uint8_t* pOut, size_t nCount, uint8_t nThreshold, uint8_t nBelow,
                  uint8_t nAbove) noexcept;

/// pOut[i] = pIn[i] == nValue ? 255 : 0.
void EqualRow(const uint8_t* pIn, uint8_t* pOut, size_t nCount, uint8_t nValue) noexcept;

/// pOut[i] = pTable[pIn[i]] for a table of 256 entries.
void LookUpRow(const uint8_t* pIn, uint8_t* pOut, size_t nCount, const uint8_t* pTable) noexcept;

/// pOut[i] = 255 - pIn[i] * pMask[i] / 255, the division truncated.
void InvertedBlendRow(const uint8_t* pIn, const uint8_t* pMask, uint8_t* pOut, size_t nCount) noexcept;

/// Adds 1 to pBins[pIn[i]] for each i; 256 bins.
void HistogramRow(const uint8_t* pIn, size_t nCount, int32_t* pBins) noexcept;

}  // namespace MXKernels
