// Row functions that look for runs of equal samples.
#pragma once

#include <cstddef>
#include <cstdint>

namespace MXKernels {

/// Bit i % 64 of pBits[i / 64] tells whether pIn[i] is 0, for i in [0, nCount).
///
/// pBits has (nCount + 63) / 64 words; the bits from nCount on are 0.
void ZeroBitsRow(const uint8_t* pIn, uint64_t* pBits, size_t nCount) noexcept;

}  // namespace MXKernels
