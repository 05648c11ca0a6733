// Tests of the finger mask's kernels.
#include <numeric>

#include "KernelRows.h"

using namespace MXKernels;

TEST(MaskRows, EveryLevelEqualsTheReferenceForEveryTail) {
  const uint8_t aClasses[16] = {0, 1, 1, 2, 1, 5, 2, 3, 1, 2, 5, 3, 2, 3, 3, 4};
  ForEveryLevelAndTail([&](size_t nCount, ClSamples& oSamples) {
    // Few grey levels, so that equal neighbours occur.
    const Bytes aAbove = oSamples.Row<uint8_t>(nCount, 3), aBelow = oSamples.Row<uint8_t>(nCount, 3);
    const Bytes aCentre = oSamples.Row<uint8_t>(nCount + 2, nCount % 2 ? 3 : 255);
    EXPECT_LIKE_REFERENCE(
        TextureClassRow,
        [&](auto pfn, auto* pOut) {
          pfn(aAbove.data(), aCentre.data() + 1, aBelow.data(), pOut, nCount, aClasses);
        },
        Bytes(nCount));
    const Words aDistance = oSamples.Row<uint16_t>(nCount);
    const Bytes aNear = oSamples.Row<uint8_t>(nCount), aFar = oSamples.Row<uint8_t>(nCount);
    const auto nLimit = static_cast<uint16_t>(oSamples.Number(65535));
    const int32_t nFog = static_cast<int32_t>(oSamples.Number(200)) - 20;
    EXPECT_LIKE_REFERENCE(
        FingerRow,
        [&](auto pfn, auto* pOut) {
          pfn(aDistance.data(), aNear.data(), aFar.data(), pOut, nCount, nLimit, nFog);
        },
        Bytes(nCount));
  });
}

TEST(AddSquaredDistanceRow, EveryLevelDividesExactlyForEveryDifference) {
  Bytes aShare(256);
  std::iota(aShare.begin(), aShare.end(), uint8_t{0});
  ForEveryLevelAndTail([&](size_t nCount, ClSamples& oSamples) {
    const size_t nAll = nCount % 8 == 0 ? 256 : nCount;
    const auto nReference = static_cast<uint8_t>(nCount == 0 ? 255 : oSamples.Number(255));
    EXPECT_LIKE_REFERENCE(
        AddSquaredDistanceRow, [&](auto pfn, auto* pSums) { pfn(aShare.data(), nReference, pSums, nAll); },
        oSamples.Row<uint16_t>(nAll));
  });
}

TEST(FingerRow, TheLimitsThemselvesAreNoFinger) {
  // 80 * 100 is not above 100 * 80, 81 * 100 is.
  const Words aDistance{8199, 8200, 8199};
  const Bytes aNear{81, 81, 80}, aFar{100, 100, 100};
  Bytes aMask(3);
  FingerRow(aDistance.data(), aNear.data(), aFar.data(), aMask.data(), 3, 8200, 80);
  EXPECT_EQ(aMask, (Bytes{255, 0, 0}));
}

TEST(DecideByBrightnessRow, TheLimitsThemselvesAreLeftToTheTexture) {
  Words aRoot(65536, 4711);
  const Bytes aSignal = {13, 14, 64, 65};
  Words aDistance = {1, 2, 65535, 4};
  DecideByBrightnessRow(aSignal.data(), aDistance.data(), 4, {14, 64, 8847, aRoot.data()});
  EXPECT_EQ(aDistance, (Words{8847, 4711, 4711, 0}));
}
