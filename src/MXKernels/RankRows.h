// Row functions of the minimum and maximum filters.
#pragma once

#include <cstddef>
#include <cstdint>

namespace MXKernels {

/// pOut[i] = the smaller (larger) of pA[i] and pB[i]. pOut may equal either input.
void MinRows(const uint8_t* pA, const uint8_t* pB, uint8_t* pOut, size_t nCount) noexcept;
void MaxRows(const uint8_t* pA, const uint8_t* pB, uint8_t* pOut, size_t nCount) noexcept;

/// pOut[x] = the smallest (largest) of pIn[x - nHalf .. x + nHalf], the window clipped to
/// [0, nCount). pOut may equal pIn.
///
/// pWork is scratch of nCount + 2 * nHalf bytes.
/// Cost   some log2 of the window width passes over the row.
void MinWindowRow(const uint8_t* pIn, size_t nCount, size_t nHalf, uint8_t* pWork, uint8_t* pOut) noexcept;
void MaxWindowRow(const uint8_t* pIn, size_t nCount, size_t nHalf, uint8_t* pWork, uint8_t* pOut) noexcept;

}  // namespace MXKernels
