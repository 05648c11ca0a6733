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

void ZeroBitsRow(const uint8_t* pIn, uint64_t* pBits, size_t nCount) noexcept {
  const hn::ScalableTag<uint8_t> d;
  const size_t nLanes = hn::Lanes(d);
  const size_t nWords = nCount / 64;
  for (size_t w = 0; w < nWords; ++w) {
    // A vector has 16, 32 or 64 samples; their bits fill the bytes of the word from the lowest on.
    uint8_t aBytes[64];
    for (size_t k = 0; k < 64; k += nLanes) {
      hn::StoreMaskBits(d, hn::Eq(hn::LoadU(d, pIn + 64 * w + k), hn::Zero(d)), aBytes + k / 8);
    }
    __builtin_memcpy(pBits + w, aBytes, 8);
  }
  Reference::ZeroBitsRow(pIn + 64 * nWords, pBits + nWords, nCount - 64 * nWords);
}

}  // namespace MXKernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
#endif

#if HWY_ONCE
namespace MXKernels {

MXKERNELS_KERNEL(ZeroBitsRow);

}  // namespace MXKernels
#endif
