// Row functions that put rolled prints together and compare their frames.
#pragma once

#include <cstddef>
#include <cstdint>

namespace MXKernels {

/// Common to all kernels of this header: any alignment; nothing but [0, nCount) is read or written.

/// pInOut[i] = (pIn[i] * pWeight[i] + pInOut[i] * (255 - pWeight[i])) / 255, the division truncated.
void WeightedBlendRow(const uint8_t* pIn, const uint8_t* pWeight, uint8_t* pInOut, size_t nCount) noexcept;

/// pOut[i] = pIn[i] < pLimit[i] ? 255 : 0. pOut may equal any input.
void BelowRow(const uint8_t* pIn, const uint8_t* pLimit, uint8_t* pOut, size_t nCount) noexcept;

/// Number of i for which both pA[i] and pB[i] are below 255.
size_t CountBothBelowWhite(const uint8_t* pA, const uint8_t* pB, size_t nCount) noexcept;

/// What SquaredDifferenceWhere has added up.
struct MaskedDifference {
  uint64_t m_nSum = 0;    ///< of (pA[i] - pB[i])^2
  uint64_t m_nCount = 0;  ///< of the i that took part
};

/// Adds the i for which both pFirstMask[i] and pSecondMask[i] are 255.
void SquaredDifferenceWhere(const uint8_t* pA, const uint8_t* pB, const uint8_t* pFirstMask,
                            const uint8_t* pSecondMask, size_t nCount, MaskedDifference& rTotal) noexcept;

}  // namespace MXKernels
