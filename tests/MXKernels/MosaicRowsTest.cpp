// Tests of the local white balance's kernels: their tails, and that their floats divide exactly.
#include "KernelRows.h"
#include "Pace.h"

using namespace MXKernels;

namespace {

/// Two rows of samples: one row leaves the windows of the lower.
struct StPair {
  explicit StPair(size_t nCount) : aEnter(2, Words(nCount)), aSums(2, std::vector<uint32_t>(nCount)) {
    aPerArea.assign(nCount, 1.0F);
    aIn.assign(2, Bytes(nCount));
  }
  void SetSum(size_t nCell, size_t nPhase, uint32_t nSum) {
    aSums[nPhase / 2][2 * nCell + nPhase % 2] = nSum;
  }
  void ExpectLikeReference() const {
    const size_t nCount = aPerArea.size();
    const Words aNone(nCount);
    ::ExpectLikeReference(
        [&](auto* pUpperSums, auto* pLowerSums, auto* pUpper, auto* pLower) {
          BalancePairRow({{aEnter[0].data(), aEnter[1].data()},
                          {aNone.data(), aEnter[0].data()},
                          {pUpperSums, pLowerSums},
                          aPerArea.data(),
                          {aIn[0].data(), aIn[1].data()},
                          {pUpper, pLower}},
                         nCount);
        },
        aSums[0], aSums[1], Bytes(nCount), Bytes(nCount));
  }

  std::vector<Words> aEnter;
  std::vector<std::vector<uint32_t>> aSums;
  std::vector<float> aPerArea;
  std::vector<Bytes> aIn;
};

}  // namespace

TEST(PhaseSumsRow, EveryLevelEqualsTheReferenceForEveryTailAndWidth) {
  ForEveryLevelAndTail([](size_t nCount, ClSamples& oSamples) {
    const size_t nSamples = 2 * nCount,
                 nHalf = oSamples.Number(nCount < 125 ? static_cast<unsigned>(nCount) + 2 : 127U);
    const Bytes aIn = oSamples.Row<uint8_t>(nSamples);
    Words aWork(nSamples + 4 * nHalf + 2);
    ExpectLikeReference([&](auto* pSums) { PhaseSumsRow(aIn.data(), nSamples, nHalf, aWork.data(), pSums); },
                        Words(nSamples));
  });
}

TEST(BalancePairRow, EveryLevelEqualsTheReferenceForEveryTail) {
  ForEveryLevelAndTail([](size_t nCount, ClSamples& oSamples) {
    StPair oPair(2 * nCount);
    for (size_t i = 0; i < 2 * nCount; ++i)
      oPair.aPerArea[i] = 1.0F / static_cast<float>(1000 + oSamples.Number(1601));
    for (const size_t n : {size_t{0}, size_t{1}}) {
      oPair.aEnter[n] = oSamples.Row<uint16_t>(2 * nCount, n == 0 ? 100 : 13005);
      oPair.aSums[n] = oSamples.Row<uint32_t>(2 * nCount, 240000);
      for (uint32_t& nSum : oPair.aSums[n]) nSum += 100;
      oPair.aIn[n] = oSamples.Row<uint8_t>(2 * nCount);
    }
    oPair.ExpectLikeReference();
  });
}

TEST(BalancePairRow, EveryLevelTruncatesTheMeansOfAllAreasExactly) {
  // A mean on a multiple of the area and one just below the next. It shows in the target, to which a black
  // sample among black ones is drawn: the other means make the sum one that changes the target if this mean
  // is one less, or one more.
  ForEveryLevel([] {
    for (int nArea = 1; nArea <= cnMaxBalanceArea && !testing::Test::HasFailure(); nArea += cnSlowness) {
      StPair oPair(2 * 512);
      oPair.aPerArea.assign(2 * 512, 1.0F / static_cast<float>(nArea));
      for (uint32_t n = 0; n < 512; ++n) {
        const uint32_t nMean = n / 2, nUnit = static_cast<uint32_t>(nArea);
        oPair.SetSum(n, 0, nMean * nUnit + (n % 2 == 0 ? 0 : nUnit - 1));
        oPair.SetSum(n, 2, ((n % 2 == 0 ? 4 : 7) - nMean % 4) % 4 * nUnit);
      }
      oPair.ExpectLikeReference();
    }
  });
}

TEST(BalancePairRow, EveryLevelDividesAllOperandsExactly) {
  // Windows of one sample: the first phase has the mean, the others bring the sum to four times the target.
  ForEveryLevel([] {
    for (int nMean = 1; nMean <= 256 && !testing::Test::HasFailure(); nMean += cnSlowness) {
      StPair oPair(2 * 65536);
      for (int n = 0; n < 65536; ++n) {
        int nRest = std::min(std::max(4 * (n / 256 + 1) - nMean, 3), 768);
        oPair.SetSum(static_cast<size_t>(n), 0, static_cast<uint32_t>(nMean - 1));
        for (const int nPhase : {1, 2, 3}) {
          const int nOther = std::min(nRest - (3 - nPhase), 256);
          oPair.SetSum(static_cast<size_t>(n), static_cast<size_t>(nPhase),
                       static_cast<uint32_t>(nOther - 1));
          nRest -= nOther;
        }
        oPair.aIn[0][2 * static_cast<size_t>(n)] = static_cast<uint8_t>(n);
      }
      oPair.ExpectLikeReference();
    }
  });
}
