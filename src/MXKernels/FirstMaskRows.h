// Row functions of the first finger mask: windows of sums that slide along a row and are compared.
#pragma once

#include "MXKernels/Kernel.h"

namespace MXKernels {

/// In all of these a window begins at pSums + i and takes nWidth columns: rows of sums begin with as many
/// columns as a window reaches before its pixel, and end with as many beyond. What lies outside the image
/// counts 0.

/// pOut[i] = the sum of the window < pLimits[i] ? 255 : 0; whether any is 255.
///
/// Domain  the sums of windows and the limits are below 2^31. No limit is above nWidth * nColumnLimit.
/// Cost    less where all columns reach nColumnLimit.
/// pWork has room for 80 numbers.
extern const TpKernel<bool(const uint32_t* pSums, size_t nWidth, const uint32_t* pLimits,
                           uint32_t nColumnLimit, uint32_t* pWork, uint8_t* pOut, size_t nCount) noexcept>
    BelowLimitRow;

/// pPrefix[i] = the sum of pSums[0, i), for i in [0, nCount]. Any four sums in a row make less than 2^16.
extern const TpKernel<OneRow<uint16_t, uint32_t>> PrefixSumsRow;

/// The windows of FogRow. A factor is 2 / area of the window in it, and an area is 2^14 at most.
struct FogWindows {
  const uint16_t* m_pNear;  ///< sums of columns; those of a window make less than 2^16
  size_t m_nNearWidth;
  const float* m_pNearFactors;
  const uint32_t* m_pFar;  ///< prefix sums of columns
  size_t m_nFarWidth;
  const float* m_pFarFactors;
};

/// pMask[i] = 0 unless near * 100 > far * nFog, where near and far are twice the mean of each window,
/// truncated. |nFog| <= 1 << 20; means are below 128.
extern const TpKernel<void(const FogWindows& oWindows, int32_t nFog, uint8_t* pMask, size_t nCount) noexcept>
    FogRow;

/// pCounts[i] += (pEnter[i] == 0) - (pLeave[i] == 0).
extern const TpKernel<TwoRows<uint8_t>> MoveZerosRow;

/// pOut[i] = the sum of the window <= pLimits[i] ? 255 : 0.
///
/// Domain  limits below 255; sums of 3 columns are at most 255.
/// pWork has room for nCount + nWidth numbers.
extern const TpKernel<void(const uint8_t* pCounts, size_t nWidth, const uint8_t* pLimits, uint8_t* pWork,
                           uint8_t* pOut, size_t nCount) noexcept>
    FewZerosRow;

}  // namespace MXKernels
