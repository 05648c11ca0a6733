// Vector variants of the kernels that look for runs.
#include "MXKernels/RunRows.h"

#include "KernelTargets.h"
#include "MXKernels/Reference.h"

#define HWY_TARGET_INCLUDE "RunRows.cpp"
#include <hwy/foreach_target.h>

#include "Elementwise-inl.h"

#if MXKERNELS_VECTOR_TARGET
HWY_BEFORE_NAMESPACE();
namespace MXKernels::HWY_NAMESPACE {

/// The bits of the 64 samples from pIn on.
HWY_INLINE uint64_t BitsBelow(const uint8_t* pIn, uint8_t nLimit) {
  const Bytes d;
  // A vector has 16, 32 or 64 samples; their bits fill the bytes of the word from the lowest on.
  uint8_t aBytes[64];
  for (size_t k = 0; k < 64; k += hn::Lanes(d)) {
    hn::StoreMaskBits(d, hn::LoadU(d, pIn + k) < hn::Set(d, nLimit), aBytes + k / 8);
  }
  uint64_t nBits = 0;
  __builtin_memcpy(&nBits, aBytes, 8);
  return nBits;
}

void BelowBitsRow(const uint8_t* pIn, uint64_t* pBits, size_t nCount, uint8_t nLimit) noexcept {
  if (nCount < 64) return Reference::BelowBitsRow(pIn, pBits, nCount, nLimit);
  const size_t nWords = nCount / 64;
  for (size_t w = 0; w < nWords; ++w) pBits[w] = BitsBelow(pIn + 64 * w, nLimit);
  // The last 64 samples, less those that have their bits already.
  if (nCount % 64 != 0) pBits[nWords] = BitsBelow(pIn + nCount - 64, nLimit) >> (64 - nCount % 64);
}

}  // namespace MXKernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
#endif

#if HWY_ONCE
namespace MXKernels {

MXKERNELS_KERNEL(BelowBitsRow);

}  // namespace MXKernels
#endif
