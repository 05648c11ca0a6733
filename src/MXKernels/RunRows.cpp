// Vector variants of the kernels that turn samples to bits and back.
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

void BytesOfBitsRow(const uint64_t* pBits, uint8_t* pOut, size_t nCount) noexcept {
  const Bytes d;
  const size_t nWhole = nCount - nCount % 64;
  for (size_t i = 0; i < nWhole; i += 64) {
    uint8_t aBits[8];
    __builtin_memcpy(aBits, pBits + i / 64, 8);
    for (size_t k = 0; k < 64; k += hn::Lanes(d)) {
      hn::StoreU(hn::VecFromMask(d, hn::LoadMaskBits(d, aBits + k / 8)), d, pOut + i + k);
    }
  }
  Reference::BytesOfBitsRow(pBits + nWhole / 64, pOut + nWhole, nCount - nWhole);
}

}  // namespace MXKernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
#endif

#if HWY_ONCE
namespace MXKernels {

MXKERNELS_KERNEL(BelowBitsRow);
MXKERNELS_KERNEL(BytesOfBitsRow);

}  // namespace MXKernels
#endif
