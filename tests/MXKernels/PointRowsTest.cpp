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

TEST(RollRows, DifferencesAreTakenWhereBothBitsAre) {
  ForEveryLevelAndTail([](size_t nCount, ClSamples& oSamples) {
    const Bytes aA = oSamples.Row<uint8_t>(nCount), aB = oSamples.Row<uint8_t>(nCount);
    std::vector<uint64_t> aBits[2], aActual(1);
    uint64_t nExpected = 0;
    const Bytes aTaken = oSamples.Row<uint8_t>(nCount, 3);
    for (const unsigned n : {1U, 2U}) {
      Bytes aRow(nCount);
      for (size_t i = 0; i < nCount; ++i) aRow[i] = (aTaken[i] & n) != 0 ? 0 : 255;
      aBits[n - 1].resize((nCount + 63) / 64);
      BelowBitsRow(aRow.data(), aBits[n - 1].data(), nCount, 7);
      Bytes aBack(nCount);
      BytesOfBitsRow(aBits[n - 1].data(), aBack.data(), nCount);
      for (uint8_t& nSample : aBack) nSample = static_cast<uint8_t>(~nSample);
      EXPECT_EQ(aBack, aRow);
    }
    for (size_t i = 0; i < nCount; ++i)
      nExpected += aTaken[i] == 3 ? static_cast<uint64_t>((aA[i] - aB[i]) * (aA[i] - aB[i])) : 0;
    EXPECT_EQ(SquaredDifferenceWhere(aA.data(), aB.data(), aBits[0].data(), aBits[1].data(), nCount),
              nExpected);
  });
}
