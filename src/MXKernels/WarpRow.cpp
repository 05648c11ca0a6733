// Vector variants of the warp's kernels: sixteen products a sample, the sums of four samples added at once.
#include "MXKernels/WarpRow.h"

#include <cstring>

#include "KernelTargets.h"
#include "MXKernels/Reference.h"

#define HWY_TARGET_INCLUDE "WarpRow.cpp"
#include <hwy/foreach_target.h>

#include "Elementwise-inl.h"

#if MXKERNELS_VECTOR_TARGET
HWY_BEFORE_NAMESPACE();
namespace MXKernels::HWY_NAMESPACE {

using Bytes16 = hn::FixedTag<uint8_t, 16>;
using Words4 = hn::FixedTag<int32_t, 4>;

template <typename T>
HWY_INLINE T LoadNumber(const void* p) {
  T nNumber;
  std::memcpy(&nNumber, p, sizeof(nNumber));
  return nNumber;
}

/// The 4 by 4 window as 16 bytes, row after row.
HWY_INLINE hn::Vec<Bytes16> LoadWindow(const uint8_t* pWindow, size_t nRowBytes) {
  const hn::FixedTag<uint32_t, 4> d32;
  const hn::FixedTag<uint64_t, 2> d64;
  const auto vRow0 = hn::Set(d32, LoadNumber<uint32_t>(pWindow));
  const auto vRow1 = hn::Set(d32, LoadNumber<uint32_t>(pWindow + nRowBytes));
  const auto vRow2 = hn::Set(d32, LoadNumber<uint32_t>(pWindow + 2 * nRowBytes));
  const auto vRow3 = hn::Set(d32, LoadNumber<uint32_t>(pWindow + 3 * nRowBytes));
  const auto vUpper = hn::BitCast(d64, hn::InterleaveLower(d32, vRow0, vRow1));
  const auto vLower = hn::BitCast(d64, hn::InterleaveLower(d32, vRow2, vRow3));
  return hn::BitCast(Bytes16(), hn::InterleaveLower(d64, vUpper, vLower));
}

/// Four partial sums that together are the weighted sum of the window.
HWY_INLINE hn::Vec<Words4> PartialSums(const uint8_t* pWindow, size_t nRowBytes, const int16_t* pWeights) {
  const Words4 d32;
  const hn::FixedTag<int16_t, 8> d16;
  const hn::Half<Bytes16> dHalf;
  const auto vWindow = LoadWindow(pWindow, nRowBytes);
  auto vHigh = hn::Zero(d32);
  auto vSums = hn::ReorderWidenMulAccumulate(d32, hn::PromoteTo(d16, hn::LowerHalf(dHalf, vWindow)),
                                             hn::LoadU(d16, pWeights), hn::Zero(d32), vHigh);
  vSums = hn::ReorderWidenMulAccumulate(d32, hn::PromoteTo(d16, hn::UpperHalf(dHalf, vWindow)),
                                        hn::LoadU(d16, pWeights + 8), vSums, vHigh);
  return vSums + vHigh;
}

/// In each block the totals of the blocks of four vectors.
template <typename V>
HWY_INLINE V TotalsOf(V vA, V vB, V vC, V vD) {
  const hn::DFromV<V> d32;
  const hn::RepartitionToWide<decltype(d32)> d64;
  const auto vAB = hn::InterleaveLower(d32, vA, vB) + hn::InterleaveUpper(d32, vA, vB);
  const auto vCD = hn::InterleaveLower(d32, vC, vD) + hn::InterleaveUpper(d32, vC, vD);
  return hn::BitCast(d32, hn::InterleaveLower(d64, hn::BitCast(d64, vAB), hn::BitCast(d64, vCD))) +
         hn::BitCast(d32, hn::InterleaveUpper(d64, hn::BitCast(d64, vAB), hn::BitCast(d64, vCD)));
}

/// Stores the samples of weighted sums.
template <typename V>
HWY_INLINE void StoreSamples(V vSums, uint8_t* pOut) {
  const hn::DFromV<V> d32;
  const hn::Rebind<uint8_t, decltype(d32)> d8;
  hn::StoreU(LimitToBytes(d8, hn::ShiftRight<10>(vSums + hn::Set(d32, 1023))), d8, pOut);
}

void WarpRow(const WarpMapEntry* pMap, size_t nCount, const uint8_t* pSource, size_t nRowBytes,
             const int16_t (*pWeights)[4][4], uint8_t nBackground, uint8_t* pOut) noexcept {
  const auto SumsOf = [=](const WarpMapEntry& oEntry) HWY_ATTR {
    if (oEntry.m_nOffset < 0) return hn::Zero(Words4());
    return PartialSums(pSource + oEntry.m_nOffset, nRowBytes, &pWeights[oEntry.m_nPhase][0][0]);
  };
  size_t i = 0;
  for (; i + 4 <= nCount; i += 4) {
    const WarpMapEntry* p = pMap + i;
    StoreSamples(TotalsOf(SumsOf(p[0]), SumsOf(p[1]), SumsOf(p[2]), SumsOf(p[3])), pOut + i);
    if (HWY_UNLIKELY((p[0].m_nOffset | p[1].m_nOffset | p[2].m_nOffset | p[3].m_nOffset) < 0)) {
      for (size_t k = 0; k < 4; ++k) {
        if (p[k].m_nOffset < 0) pOut[i + k] = nBackground;
      }
    }
  }
  Reference::WarpRow(pMap + i, nCount - i, pSource, nRowBytes, pWeights, nBackground, pOut + i);
}

/// For windows that begin 0 to 4 columns after the first: picks their 4 bytes of each of two rows of 8, with
/// zeros between, as 16-bit numbers.
struct WindowPicks {
  alignas(64) uint8_t m_aPicks[5][32];
};
constexpr WindowPicks MakeWindowPicks() {
  WindowPicks oPicks = {};
  for (int nColumn = 0; nColumn < 5; ++nColumn) {
    for (int n = 0; n < 32; ++n) {
      const int nAt = n % 16 / 2;
      oPicks.m_aPicks[nColumn][n] = static_cast<uint8_t>(n % 2 != 0 ? 0x80 : nColumn + nAt % 4 + nAt / 4 * 8);
    }
  }
  return oPicks;
}
constexpr WindowPicks g_oPicks = MakeWindowPicks();

#if HWY_TARGET <= HWY_AVX2
using GroupBytes = hn::FixedTag<uint8_t, 32>;
#else
using GroupBytes = Bytes16;
#endif

/// Eight bytes of two neighbouring rows in each block: of the upper two rows and, where there is a second
/// block, of the lower two.
HWY_INLINE hn::Vec<GroupBytes> LoadRows(const uint8_t* p, size_t nRowBytes) {
  const hn::Repartition<uint64_t, GroupBytes> d64;
  const auto Row = [=](size_t n) HWY_ATTR { return hn::Set(d64, LoadNumber<uint64_t>(p + n * nRowBytes)); };
  const auto vUpper = hn::OddEven(Row(1), Row(0));
#if HWY_TARGET <= HWY_AVX2
  return hn::BitCast(GroupBytes(), hn::ConcatUpperLower(d64, hn::OddEven(Row(3), Row(2)), vUpper));
#else
  return hn::BitCast(GroupBytes(), vUpper);
#endif
}

/// The weighted rows of the sample k.
HWY_INLINE auto WeightedRows(hn::Vec<GroupBytes> vRows, const WarpGroup& oGroup, size_t k,
                             const uint8_t* pWeights) {
  const hn::Repartition<int16_t, GroupBytes> d16;
  const hn::Repartition<int32_t, GroupBytes> d32;
  const auto vPick = hn::Load(GroupBytes(), &g_oPicks.m_aPicks[0][0] + oGroup.m_aSteps[k]);
  const auto vWindow = hn::BitCast(d16, hn::TableLookupBytesOr0(vRows, vPick));
  const auto vWeights = hn::BitCast(d16, hn::LoadU(GroupBytes(), pWeights + oGroup.m_aWeights[k]));
  auto vNone = hn::Zero(d32);
  return hn::ReorderWidenMulAccumulate(d32, vWindow, vWeights, hn::Zero(d32), vNone);
}

/// The weighted sums of a group whose windows lie side by side.
HWY_INLINE hn::Vec<Words4> GroupSums(const WarpGroup& oGroup, const uint8_t* pSource, size_t nRowBytes,
                                     const uint8_t* pWeights) {
  const uint8_t* pRows = pSource + oGroup.m_nBase;
  const auto vRows = LoadRows(pRows, nRowBytes);
#if HWY_TARGET <= HWY_AVX2
  const auto Sums = [&](size_t k) HWY_ATTR { return WeightedRows(vRows, oGroup, k, pWeights); };
  const auto vTotals = TotalsOf(Sums(0), Sums(1), Sums(2), Sums(3));
  const Words4 d;
  return hn::LowerHalf(d, vTotals) + hn::UpperHalf(d, vTotals);
#else
  constexpr size_t cnUpperBytes = sizeof(int16_t[2][4]);
  const auto vLower = LoadRows(pRows + 2 * nRowBytes, nRowBytes);
  const auto Sums = [&](size_t k) HWY_ATTR {
    return WeightedRows(vRows, oGroup, k, pWeights) +
           WeightedRows(vLower, oGroup, k, pWeights + cnUpperBytes);
  };
  return TotalsOf(Sums(0), Sums(1), Sums(2), Sums(3));
#endif
}

void WarpGroupsRow(const WarpGroup* pMap, size_t nCount, const uint8_t* pSource, size_t nRowBytes,
                   const int16_t (*pWeights)[4][4], uint8_t nBackground, uint8_t* pOut) noexcept {
  const auto* pTable = reinterpret_cast<const uint8_t*>(pWeights);
  for (; nCount >= 4; nCount -= 4, ++pMap, pOut += 4) {
    if (HWY_LIKELY(pMap->m_nBase < cnLooseGroup)) {
      StoreSamples(GroupSums(*pMap, pSource, nRowBytes, pTable), pOut);
      continue;
    }
    WarpMapEntry aEntries[4];
    for (size_t k = 0; k < 4; ++k) aEntries[k] = EntryOf(*pMap, k, nRowBytes);
    WarpRow(aEntries, 4, pSource, nRowBytes, pWeights, nBackground, pOut);
  }
  Reference::WarpGroupsRow(pMap, nCount, pSource, nRowBytes, pWeights, nBackground, pOut);
}

}  // namespace MXKernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
#endif

#if HWY_ONCE
namespace MXKernels {

MXKERNELS_KERNEL(WarpRow);
MXKERNELS_KERNEL(WarpGroupsRow);

}  // namespace MXKernels
#endif
