// Tests of the finger mask's kernels.
#include "KernelRows.h"

using namespace MXKernels;

namespace {
using Bytes = std::vector<uint8_t>;
const uint8_t g_aClasses[16] = {0, 1, 1, 2, 1, 5, 2, 3, 1, 2, 5, 3, 2, 3, 3, 4};
}  // namespace

TEST(TextureClassRow, EveryLevelEqualsTheReferenceForEveryTail) {
  ForEveryLevelAndTail([](size_t nCount, ClSamples& oSamples) {
    // Few grey levels, so that equal neighbours occur.
    const Bytes aAbove = oSamples.Row<uint8_t>(nCount, 3), aBelow = oSamples.Row<uint8_t>(nCount, 3);
    const Bytes aCentre = oSamples.Row<uint8_t>(nCount + 2, nCount % 2 ? 3 : 255);
    TpGuardedRow<uint8_t> oOut(nCount), oExpected(nCount);
    Reference::TextureClassRow(aAbove.data(), aCentre.data() + 1, aBelow.data(), oExpected.Data(), nCount,
                               g_aClasses);
    TextureClassRow(aAbove.data(), aCentre.data() + 1, aBelow.data(), oOut.Data(), nCount, g_aClasses);
    ExpectSameAndGuarded(oOut, oExpected);
  });
}

TEST(TextureClassRow, EachNeighbourOwnsItsBitAndEqualOnesAreNotBrighter) {
  uint8_t aPattern[16];
  for (int n = 0; n < 16; ++n) aPattern[n] = static_cast<uint8_t>(n);
  const auto PatternOf = [&](uint8_t nAbove, uint8_t nRight, uint8_t nBelow, uint8_t nLeft) {
    const uint8_t aCentre[3] = {nLeft, 100, nRight};
    uint8_t nOut = 99;
    TextureClassRow(&nAbove, aCentre + 1, &nBelow, &nOut, 1, aPattern);
    return int{nOut};
  };
  EXPECT_EQ(PatternOf(101, 100, 100, 100), 1);
  EXPECT_EQ(PatternOf(100, 101, 100, 0), 2);
  EXPECT_EQ(PatternOf(99, 100, 255, 100), 4);
  EXPECT_EQ(PatternOf(100, 100, 100, 101), 8);
  EXPECT_EQ(PatternOf(100, 100, 100, 100), 0);
}

TEST(AddSquaredDistanceRow, EveryLevelDividesExactlyForEveryDifference) {
  Bytes aShare(256);
  for (int n = 0; n < 256; ++n) aShare[static_cast<size_t>(n)] = static_cast<uint8_t>(n);
  ForEveryLevelAndTail([&](size_t nCount, ClSamples& oSamples) {
    const size_t nAll = nCount % 8 == 0 ? 256 : nCount;
    const auto nReference = static_cast<uint8_t>(nCount == 0 ? 255 : oSamples.Number(255));
    TpGuardedRow<uint16_t> oOut(oSamples.Row<uint16_t>(nAll)), oExpected(oOut);
    Reference::AddSquaredDistanceRow(aShare.data(), nReference, oExpected.Data(), nAll);
    AddSquaredDistanceRow(aShare.data(), nReference, oOut.Data(), nAll);
    ExpectSameAndGuarded(oOut, oExpected);
  });
}

TEST(AddSquaredDistanceRow, ASixthIsTakenOfEachSquareBeforeItIsAdded) {
  const Bytes aShare = {49, 0, 255};
  std::vector<uint16_t> aDistance = {10, 10, 10};
  AddSquaredDistanceRow(aShare.data(), 44, aDistance.data(), 3);
  EXPECT_EQ(aDistance, (std::vector<uint16_t>{14, 332, 7430}));  // 25 / 6, 1936 / 6, 44521 / 6
}

TEST(FingerRow, EveryLevelEqualsTheReferenceForEveryTail) {
  ForEveryLevelAndTail([](size_t nCount, ClSamples& oSamples) {
    const auto aDistance = oSamples.Row<uint16_t>(nCount);
    const Bytes aNear = oSamples.Row<uint8_t>(nCount), aFar = oSamples.Row<uint8_t>(nCount);
    const auto nLimit = static_cast<uint16_t>(oSamples.Number(65535));
    const int32_t nFog = static_cast<int32_t>(oSamples.Number(200)) - 20;
    TpGuardedRow<uint8_t> oOut(nCount), oExpected(nCount);
    Reference::FingerRow(aDistance.data(), aNear.data(), aFar.data(), oExpected.Data(), nCount, nLimit, nFog);
    FingerRow(aDistance.data(), aNear.data(), aFar.data(), oOut.Data(), nCount, nLimit, nFog);
    ExpectSameAndGuarded(oOut, oExpected);
  });
}

TEST(DecideByBrightnessRow, TheLimitsThemselvesAreLeftToTheTexture) {
  std::vector<uint16_t> aRoot(65536, 4711);
  const Bytes aSignal = {13, 14, 64, 65};
  std::vector<uint16_t> aDistance = {1, 2, 65535, 4};
  DecideByBrightnessRow(aSignal.data(), aDistance.data(), 4, {14, 64, 8847, aRoot.data()});
  EXPECT_EQ(aDistance, (std::vector<uint16_t>{8847, 4711, 4711, 0}));
}
