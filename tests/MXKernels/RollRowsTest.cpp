// Tests of the kernels that put rolled prints together.
#include "KernelRows.h"

using namespace MXKernels;

TEST(RollRows, EveryLevelEqualsTheReferenceForEveryTail) {
  ForEveryLevelAndTail([](size_t nCount, ClSamples& oSamples) {
    const Bytes aIn = oSamples.Row<uint8_t>(nCount), aWeight = oSamples.Row<uint8_t>(nCount);
    const auto fnCall = [&](auto pfn, auto* pOut) { pfn(aIn.data(), aWeight.data(), pOut, nCount); };
    EXPECT_LIKE_REFERENCE(WeightedBlendRow, fnCall, oSamples.Row<uint8_t>(nCount));
    EXPECT_LIKE_REFERENCE(BelowRow, fnCall, Bytes(nCount));
  });
}

TEST(WeightedBlendRow, DividesExactlyForEveryPairOfValuesAndWeight) {
  Bytes aIn(65536), aWeight(65536), aOut(65536), aExpected(65536);
  for (const int nUnder : {0, 1, 127, 254, 255}) {
    for (size_t i = 0; i < 65536; ++i) {
      aIn[i] = static_cast<uint8_t>(i >> 8);
      aWeight[i] = static_cast<uint8_t>(i);
      aOut[i] = static_cast<uint8_t>(nUnder);
      aExpected[i] = static_cast<uint8_t>((aIn[i] * aWeight[i] + nUnder * (255 - aWeight[i])) / 255);
    }
    WeightedBlendRow(aIn.data(), aWeight.data(), aOut.data(), aOut.size());
    ASSERT_EQ(aOut, aExpected) << nUnder;
  }
}

TEST(RollRows, CountAndDifferenceTakeOnlyWhatBothShow) {
  const Bytes aA{0, 254, 255, 10}, aB{0, 255, 254, 250};
  EXPECT_EQ(CountBothBelowWhite(aA.data(), aB.data(), 4), 2u);
  const Bytes aFirstMask{255, 254, 255, 255}, aSecondMask{255, 255, 0, 255};
  MaskedDifference oTotal;
  SquaredDifferenceWhere(aA.data(), aB.data(), aFirstMask.data(), aSecondMask.data(), 4, oTotal);
  EXPECT_EQ(oTotal.m_nSum, 240u * 240u);
  EXPECT_EQ(oTotal.m_nCount, 2u);
}
