// Row functions that follow pictures over time: how much changed, sums of the last frames, what stands out.
#pragma once

#include <cstddef>
#include <cstdint>

namespace MXKernels {

/// Common to all kernels of this header: any alignment; nothing but [0, nCount) is read or written.

/// Sum over i of (pA[i] - pB[i])^2.
uint64_t SquaredDifference(const uint8_t* pA, const uint8_t* pB, size_t nCount) noexcept;

/// pSums[i] += pRow[i], modulo 2^16.
void AddToSumsRow(const uint8_t* pRow, uint16_t* pSums, size_t nCount) noexcept;

/// pSums[i] -= pRow[i], modulo 2^16.
void TakeFromSumsRow(const uint8_t* pRow, uint16_t* pSums, size_t nCount) noexcept;

/// pOut[i] = |pIn[i] - pMean[i]| > nLimit ? 255 : 0. pOut overlaps no input.
void DeviationRow(const uint16_t* pIn, const uint16_t* pMean, uint8_t* pOut, size_t nCount,
                  uint16_t nLimit) noexcept;

/// Takes the mean of the last eight pictures from pPicture, which then replaces the oldest of them:
/// mean = pSums[i] / 8; pSums[i] += pPicture[i] - pOldest[i], modulo 2^16; pOldest[i] = pPicture[i];
/// pPicture[i] = pPicture[i] > mean ? pPicture[i] - mean : 0. No overlap.
void RemoveBackgroundRow(uint8_t* pPicture, uint8_t* pOldest, uint16_t* pSums, size_t nCount) noexcept;

}  // namespace MXKernels
