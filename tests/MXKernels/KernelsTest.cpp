// Every kernel at every level against its plain twin.
#include <type_traits>

#include "KernelRows.h"

using namespace MXKernels;

namespace {

/// An argument that a kernel reads: a row, the count or another number.
template <typename TValue>
struct TpInput {
  auto Get() const {
    if constexpr (std::is_arithmetic_v<TValue>) {
      return m_oValue;
    } else {
      return m_oValue.data();
    }
  }
  void ExpectSame(const TpInput&) const {}
  TValue m_oValue;
};

/// An argument of the type T: rows of nRead elements to read, and longer ones to write to. Every second trial
/// has few values, so that samples equal each other and the limits.
template <typename T>
auto Argument(size_t nCount, size_t nRead, ClSamples& oSamples) {
  const bool bFew = nCount % 2 != 0;
  if constexpr (std::is_pointer_v<T>) {
    using Element = std::remove_const_t<std::remove_pointer_t<T>>;
    constexpr bool cbReads = std::is_const_v<std::remove_pointer_t<T>>;
    const size_t nRow = cbReads ? nRead : 2 * nCount;
    const auto aRow = bFew ? oSamples.Row<Element>(nRow, 3) : oSamples.Row<Element>(nRow);
    return std::conditional_t<cbReads, TpInput<std::vector<Element>>, TpOutput<Element>>{aRow};
  } else if constexpr (std::is_same_v<T, size_t>) {
    return TpInput<size_t>{nCount};
  } else {
    const int nLeast = std::is_signed_v<T> ? -20 : 1;
    return TpInput<T>{static_cast<T>(nLeast + static_cast<int>(oSamples.Number(bFew ? 2 : 254)))};
  }
}

template <typename TResult, typename... T>
void ExpectKernelLikeReference(const TpKernel<TResult(T...) noexcept>& oKernel, size_t nCount, size_t nRead,
                               ClSamples& oSamples) {
  ExpectSameResults(oKernel, std::tuple{Argument<T>(nCount, nRead, oSamples)...});
}

template <typename... TRows>
void ExpectKernelLikeReference(const TpKernel<TRows...>& oKernel, size_t nCount, size_t nRead,
                               ClSamples& oSamples) {
  (ExpectKernelLikeReference(static_cast<const TpKernel<TRows>&>(oKernel), nCount, nRead, oSamples), ...);
}

/// Kernels for any arguments, which read nRead samples a count.
template <typename... TKernel>
void ExpectEachLikeReference(size_t nRead, const TKernel&... oKernels) {
  ForEveryLevelAndTail([&](size_t nCount, ClSamples& oSamples) {
    (ExpectKernelLikeReference(oKernels, nCount, nRead * nCount, oSamples), ...);
  });
}

}  // namespace

TEST(Kernels, EveryLevelEqualsTheReferenceForEveryTail) {
  ExpectEachLikeReference(1, SubtractSaturated, AbsoluteDifferenceRow, AndRow, ThresholdRow, EqualRow);
  ExpectEachLikeReference(1, WeightedBlendRow, AdjustBrightnessRow, MinRows, MaxRows);
  ExpectEachLikeReference(1, AddToSumsRow, TakeFromSumsRow, MoveSumsRow, DeviationRow, RemoveBackgroundRow);
  ExpectEachLikeReference(1, MoveLimitedSumsRow, MoveZerosRow, BelowBitsRow, ReverseRow, ScaleUpRow);
  ExpectEachLikeReference(2, ScaleDownRow);
}

TEST(Kernels, EveryLevelEqualsTheReferenceInPlace) {
  ForEveryLevelAndTail([](size_t nCount, ClSamples& oSamples) {
    const Bytes aA = oSamples.Row<uint8_t>(nCount), aB = oSamples.Row<uint8_t>(nCount);
    for (const auto* pKernel : {&SubtractSaturated, &AbsoluteDifferenceRow, &AndRow, &MinRows, &MaxRows}) {
      ExpectLikeReference(
          [&](auto* pA, auto* pB) {
            (*pKernel)(pA, aB.data(), pA, nCount);
            (*pKernel)(aA.data(), pB, pB, nCount);
          },
          aA, aB);
    }
    const auto nLower = static_cast<uint8_t>(oSamples.Number(200));
    const auto nUpper = static_cast<uint8_t>(nLower + oSamples.Number(55));
    ExpectLikeReference(
        [&](auto* pClamped, auto* pBinary, auto* pEqual) {
          ClampRow(pClamped, pClamped, nCount, nLower, nUpper);
          ThresholdRow(pBinary, pBinary, nCount, nUpper, 7, 200);
          EqualRow(pEqual, pEqual, nCount, 255);
        },
        aA, aA, aA);
  });
}

TEST(Kernels, EveryLevelDividesExactlyForAllPairsOfSamples) {
  Bytes aA(65536), aB(65536);
  for (size_t i = 0; i < 65536; ++i) {
    aA[i] = static_cast<uint8_t>(i >> 8);
    aB[i] = static_cast<uint8_t>(i);
  }
  ForEveryLevel([&] {
    for (const int n : {0, 1, 30, 127, 200, 254, 255}) {
      const auto nNumber = static_cast<uint8_t>(n), nMinimum = static_cast<uint8_t>(256 - std::max(n, 1));
      Bytes aBlended(65536, nNumber), aAdjusted(65536), aFlat(65536, nNumber);
      WeightedBlendRow(aA.data(), aB.data(), aBlended.data(), 65536);
      AdjustBrightnessRow(aA.data(), aB.data(), aAdjusted.data(), 65536, nNumber, nMinimum);
      FlattenRow(aA.data(), aB.data(), aFlat.data(), aFlat.data(), 65536);
      for (size_t i = 0; i < 65536; ++i) {
        ASSERT_EQ(aBlended[i], (aA[i] * aB[i] + n * (255 - aB[i])) / 255);
        ASSERT_EQ(aAdjusted[i], std::min(aA[i] * n / std::max(aB[i], nMinimum), 255));
        ASSERT_EQ(aFlat[i], 255 - std::min(aA[i] * 255 / std::max<int>(aB[i], 1), 255) * n / 255);
      }
    }
  });
}
