// Vector variants of the kernels that put rolled prints together.
#include "MXKernels/RollRows.h"

#include "KernelTargets.h"
#include "MXKernels/Reference.h"

#define HWY_TARGET_INCLUDE "RollRows.cpp"
#include <hwy/foreach_target.h>

#include "Elementwise-inl.h"

#if MXKERNELS_VECTOR_TARGET
HWY_BEFORE_NAMESPACE();
namespace MXKernels::HWY_NAMESPACE {

void WeightedBlendRow(const uint8_t* pIn, const uint8_t* pWeight, uint8_t* pInOut, size_t nCount) noexcept {
  const auto Half = [=](HalfBytes d, size_t i) HWY_ATTR {
    const hn::Rebind<uint16_t, HalfBytes> d16;
    const auto vWeight = hn::PromoteTo(d16, hn::LoadU(d, pWeight + i));
    // A blend of bytes is 65025 at most.
    return NarrowToBytes(
        d, DivideBy255(hn::PromoteTo(d16, hn::LoadU(d, pIn + i)) * vWeight +
                       hn::PromoteTo(d16, hn::LoadU(d, pInOut + i)) * (hn::Set(d16, 255) - vWeight)));
  };
  if (!ForEachVector(Bytes(), ByHalves(Half), pInOut, nCount)) {
    Reference::WeightedBlendRow(pIn, pWeight, pInOut, nCount);
  }
}

uint64_t SquaredDifferenceWhere(const uint8_t* pA, const uint8_t* pB, const uint64_t* pBitsA,
                                const uint64_t* pBitsB, size_t nCount) noexcept {
  const Bytes d8;
  const hn::RepartitionToWide<Bytes> d16;
  const hn::RebindToSigned<decltype(d16)> dSigned16;
  const hn::RepartitionToWide<decltype(dSigned16)> d32;
  // A 32-bit lane gets 16 squares of a word at most: it holds those of 4096 words.
  constexpr size_t cnBlock = size_t{64} * 4096;
  const size_t nWhole = nCount - nCount % 64;
  uint64_t nSum = 0;
  for (size_t nFrom = 0; nFrom < nWhole; nFrom += cnBlock) {
    auto vLow = hn::Zero(d32), vHigh = hn::Zero(d32);
    for (size_t i = nFrom; i < HWY_MIN(nWhole, nFrom + cnBlock); i += 64) {
      const uint64_t nBits = pBitsA[i / 64] & pBitsB[i / 64];
      if (nBits == 0) continue;
      uint8_t aBits[8];
      __builtin_memcpy(aBits, &nBits, 8);
      for (size_t k = 0; k < 64; k += hn::Lanes(d8)) {
        const auto vA = hn::LoadU(d8, pA + i + k), vB = hn::LoadU(d8, pB + i + k);
        const auto vDistance =
            hn::IfThenElseZero(hn::LoadMaskBits(d8, aBits + k / 8), hn::Max(vA, vB) - hn::Min(vA, vB));
        const auto vEven = hn::BitCast(dSigned16, hn::BitCast(d16, vDistance) & hn::Set(d16, 255));
        const auto vOdd = hn::BitCast(dSigned16, hn::ShiftRight<8>(hn::BitCast(d16, vDistance)));
        vLow = hn::ReorderWidenMulAccumulate(d32, vEven, vEven, vLow, vHigh);
        vLow = hn::ReorderWidenMulAccumulate(d32, vOdd, vOdd, vLow, vHigh);
      }
    }
    HWY_ALIGN int32_t aLanes[HWY_MAX_BYTES / sizeof(int32_t)];
    for (const auto vSums : {vLow, vHigh}) {
      hn::Store(vSums, d32, aLanes);
      for (size_t i = 0; i < hn::Lanes(d32); ++i) nSum += static_cast<uint32_t>(aLanes[i]);
    }
  }
  return nSum + Reference::SquaredDifferenceWhere(pA + nWhole, pB + nWhole, pBitsA + nWhole / 64,
                                                  pBitsB + nWhole / 64, nCount - nWhole);
}

}  // namespace MXKernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
#endif

#if HWY_ONCE
namespace MXKernels {

MXKERNELS_KERNEL(WeightedBlendRow);
MXKERNELS_KERNEL(SquaredDifferenceWhere);

}  // namespace MXKernels
#endif
