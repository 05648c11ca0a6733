// Tests of single kernels against numbers worked out by hand.
#include "KernelRows.h"

using namespace MXKernels;

TEST(SquaredDifference, EveryLevelEqualsTheReferenceForEveryTail) {
  ForEveryLevelAndTail([](size_t nCount, ClSamples& oSamples) {
    const Bytes aA = oSamples.Row<uint8_t>(nCount), aB = oSamples.Row<uint8_t>(nCount);
    ExpectLikeReference([&](auto* pSum) { *pSum = SquaredDifference(aA.data(), aB.data(), nCount); },
                        std::vector<uint64_t>(1));
  });
}

TEST(SquaredDifference, TheLongestRowsDoNotWrapALane) {
  // One sample more than the 32-bit lanes of the widest vector can hold between two foldings.
  constexpr size_t cnCount = (size_t{64} << 14) + 1;
  const Bytes aWhite(cnCount, 255), aBlack(cnCount, 0);
  ForEveryLevel([&] {
    EXPECT_EQ(SquaredDifference(aWhite.data(), aBlack.data(), cnCount), uint64_t{65025} * cnCount);
    EXPECT_EQ(SquaredDifference(aBlack.data(), aWhite.data(), cnCount), uint64_t{65025} * cnCount);
  });
}

TEST(HistogramRow, CountsEachSample) {
  const Bytes aIn = {0, 3, 3, 255, 3};
  std::vector<int32_t> aBins(256, 1);
  HistogramRow(aIn.data(), 5, aBins.data());
  EXPECT_EQ((std::vector<int32_t>{aBins[0], aBins[3], aBins[255], aBins[4]}),
            (std::vector<int32_t>{2, 4, 2, 1}));
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
