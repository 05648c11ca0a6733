// Tests of the finger mask's kernels, which look at windows of sums.
#include <cmath>

#include "KernelRows.h"

using namespace MXKernels;

namespace {

/// What the texture kernels work on: rows of classes, and their counts with room for a window on both sides.
struct ClTexture {
  ClTexture(size_t nColumns, ClSamples& oSamples)
      : nCount(nColumns),
        aSignal(oSamples.Row<uint8_t>(nColumns, 90)),
        aInner(nColumns + 64),
        aFactors(nColumns + 64),
        aTriples(cnCountedClasses * nStride) {
    // Windows of the least and of the largest size, and some pixels that have no class.
    for (uint16_t& nFactor : aFactors) {
      const unsigned nArea = (8 + oSamples.Number(7)) * (8 + oSamples.Number(7));
      nFactor = TextureFactor(nArea);
    }
    for (uint8_t& nTriple : aTriples) nTriple = static_cast<uint8_t>(oSamples.Number(2));
    for (uint8_t& nInner : aInner) nInner = static_cast<uint8_t>(50 + oSamples.Number(14));
  }

  TextureWindows Windows() const {
    return {aTriples.data(), nStride, aInner.data(), aFactors.data(), aReference};
  }

  static constexpr size_t nStride = 320;
  const uint8_t aReference[6] = {36, 49, 92, 44, 23, 11};
  size_t nCount;
  Bytes aSignal, aInner;
  Words aFactors;
  Bytes aTriples;
};

}  // namespace

TEST(TextureRows, SharesAreExactForEveryWindowAndCount) {
  for (uint32_t nRows = 8; nRows <= 15; ++nRows) {
    for (uint32_t nColumns = 8; nColumns <= 15; ++nColumns) {
      const uint32_t nArea = nRows * nColumns;
      for (uint32_t n = 0; n <= nArea; ++n) {
        ASSERT_EQ(n * 4 * TextureFactor(nArea) >> 16, 255 * n / nArea) << n << " of " << nArea;
      }
    }
  }
}

TEST(TextureRows, EveryLevelEqualsTheReferenceForEveryTail) {
  ForEveryLevelAndTail([](size_t nCount, ClSamples& oSamples) {
    const ClTexture o(nCount, oSamples);
    ExpectLikeReference(
        [&](auto* pOut) {
          TextureDistanceRow(o.Windows(), o.aSignal.data(), {14, 64, 8847}, pOut, nCount);
        },
        Words(nCount));
    const Bytes aEnter = oSamples.Row<uint8_t>(nCount, 6), aLeave = oSamples.Row<uint8_t>(nCount, 6);
    ExpectLikeReference(
        [&](auto* pCounts, auto* pTriples) {
          MoveClassCountsRow(aEnter.data(), aLeave.data(), pCounts + 64, pTriples, o.nStride, nCount);
        },
        o.aTriples, Bytes(o.aTriples.size()));
  });
}

TEST(TextureRows, RootsAreTruncatedForEveryDistance) {
  // Windows without a class have the sum of the squared references for a distance, each divided by 6.
  const Bytes aNothing(400), aSignal(40, 20);
  const Words aFactors(40, TextureFactor(225));
  ForEveryLevel([&] {
    for (uint32_t nDistance = 0; nDistance < 33000; ++nDistance) {
      uint8_t aReference[6] = {};
      uint32_t nRest = nDistance;
      for (uint8_t& n : aReference) {
        n = static_cast<uint8_t>(std::min(std::sqrt(6.0 * nRest + 5.0), 255.0));
        nRest -= uint32_t{n} * n / 6;
      }
      ASSERT_EQ(nRest, 0U) << nDistance;
      Words aRoots(40);
      TextureDistanceRow({aNothing.data(), 60, aNothing.data(), aFactors.data(), aReference}, aSignal.data(),
                         {14, 64, 8847}, aRoots.data(), aRoots.size());
      const uint64_t nRoot = aRoots[0], nSquare = uint64_t{nDistance} << 16;
      ASSERT_TRUE(nRoot * nRoot <= nSquare && nSquare < (nRoot + 1) * (nRoot + 1)) << nDistance;
      ASSERT_EQ(aRoots, Words(40, aRoots[0]));
    }
  });
}

TEST(FirstMaskRows, EveryLevelEqualsTheReferenceForEveryTail) {
  ForEveryLevelAndTail([](size_t nCount, ClSamples& oSamples) {
    const bool bFits = oSamples.Number(3) != 0;
    const size_t nWidth = bFits ? 15 : 1, nMask = bFits ? 21 : 1;
    // Half of the rows begin with columns that no limit exceeds.
    auto aSums = oSamples.Row<uint32_t>(nCount + nWidth, 3);
    if (nCount % 2 == 0) std::fill_n(aSums.begin(), nCount / 2, 3U);
    const auto aLimits = oSamples.Row<uint32_t>(nCount, static_cast<unsigned>(3 * nWidth));
    const auto aCounts = oSamples.Row<uint8_t>(nCount + nMask, 21),
               aMost = oSamples.Row<uint8_t>(nCount, 200);
    std::vector<uint32_t> aWork(80);
    Bytes aByteWork(nCount + nMask);
    ExpectLikeReference(
        [&](auto* pBelow, auto* pAny, auto* pFew) {
          *pAny =
              BelowLimitRow(aSums.data(), nWidth, aLimits.data(), 3, aWork.data(), pBelow, nCount) ? 1 : 0;
          FewZerosRow(aCounts.data(), nMask, aMost.data(), aByteWork.data(), pFew, nCount);
        },
        Bytes(nCount), Bytes(1), Bytes(nCount));
    ExpectLikeReference([&](auto* pSums, auto* pPrefix) { PrefixSumsRow(pSums, pPrefix, nCount); },
                        oSamples.Row<uint16_t>(nCount, 16383), std::vector<uint32_t>(nCount + 1));
  });
}

TEST(FirstMaskRows, FogIsTestedWithTruncatedMeansOfEveryArea) {
  ForEveryLevelAndTail([](size_t nCount, ClSamples& oSamples) {
    Words aNear(nCount + 11);
    std::vector<uint32_t> aFar(nCount + 101);
    std::vector<float> aNearFactors(nCount), aFarFactors(nCount);
    const uint32_t nNearArea = 121, nFarArea = 51 * (51 + oSamples.Number(50));
    // The sums of windows are multiples of their areas or one less; a far window has one sum in 101.
    for (size_t i = 0; i < nCount; ++i) {
      aNearFactors[i] = 2.0F / nNearArea;
      aFarFactors[i] = 2.0F / static_cast<float>(nFarArea);
      aFar[i + 101] = aFar[i] + nFarArea * (1 + oSamples.Number(126)) - oSamples.Number(1);
    }
    for (uint16_t& nSum : aNear) nSum = static_cast<uint16_t>(oSamples.Number(11 * 127));
    ExpectLikeReference(
        [&](auto* pMask) {
          FogRow({aNear.data(), 11, aNearFactors.data(), aFar.data(), 101, aFarFactors.data()}, 80, pMask,
                 nCount);
        },
        oSamples.Row<uint8_t>(nCount, 1));
  });
  // Near and far equal 2 * n / area, truncated, at each multiple of an area and one below it.
  ForEveryLevel([] {
    for (const uint32_t nArea : {1U, 36U, 121U, 2601U, 10201U}) {
      for (uint32_t nMean = 1; nMean <= 127; ++nMean) {
        const std::vector<float> aFactors(64, 2.0F / static_cast<float>(nArea));
        for (const uint32_t nLess : {0U, 1U}) {
          std::vector<uint32_t> aFar(65);
          for (size_t i = 0; i < 64; ++i) aFar[i + 1] = aFar[i] + nMean * nArea - nLess;
          const Words aNear(64, static_cast<uint16_t>(nMean));
          Bytes aMask(64, 255);
          const std::vector<float> aOwn(64, 2.0F);
          FogRow({aNear.data(), 1, aOwn.data(), aFar.data(), 1, aFactors.data()}, 100, aMask.data(), 64);
          const bool bClear = 2 * nMean > 2 * (nMean * nArea - nLess) / nArea;
          ASSERT_EQ(aMask, Bytes(64, bClear ? 255 : 0)) << nMean << " in " << nArea << ", less " << nLess;
        }
      }
    }
  });
}

TEST(SmoothRows, MeansAreExactForEveryWindowAndSum) {
  for (uint32_t nRows = 4; nRows <= 7; ++nRows) {
    for (uint32_t nColumns = 4; nColumns <= 7; ++nColumns) {
      const uint32_t nArea = nRows * nColumns;
      for (uint32_t n = 0; n <= 255 * nArea; ++n) {
        ASSERT_EQ(n * MeanFactor(nArea) >> 19, n / nArea) << n << " in " << nArea;
      }
    }
  }
}

TEST(SmoothRows, EveryLevelEqualsTheReferenceForEveryTail) {
  ForEveryLevelAndTail([](size_t nCount, ClSamples& oSamples) {
    // Every second row is black or nearly black: samples outside it must not show.
    const auto aIn = oSamples.Row<uint8_t>(7 * nCount, nCount % 2 == 0 ? 255 : 1);
    const uint8_t* apRows[7];
    for (size_t k = 0; k < 7; ++k) apRows[k] = aIn.data() + k * nCount;
    const auto aSums = oSamples.Row<uint16_t>(nCount + 6, 7 * 255);
    const Words aFactors(nCount, MeanFactor(49));
    Bytes aWork(nCount + 6);
    ExpectLikeReference(
        [&](auto* pLeast, auto* pMost, auto* pMean, auto* pFaded) {
          FadeRow(pFaded, FadeFactor(7, 20), nCount);
          MinOf7RowsRow(apRows, aWork.data(), pLeast, nCount);
          MaxOf7RowsRow(apRows, aWork.data(), pMost, nCount);
          MeanOf7Row(aSums.data(), aFactors.data(), pMean, nCount);
        },
        Bytes(nCount), Bytes(nCount), Bytes(nCount), oSamples.Row<uint8_t>(nCount));
  });
}

TEST(SmoothRows, FadesAreExactForEverySample) {
  for (uint32_t nDenominator = 1; nDenominator <= 256; ++nDenominator) {
    for (uint32_t n = 0; n < nDenominator; ++n) {
      const uint32_t nFactor = FadeFactor(n, nDenominator);
      for (uint32_t nSample = 0; nSample < 256; ++nSample) {
        ASSERT_EQ(nSample * nFactor >> 16, nSample * n / nDenominator) << n << " of " << nDenominator;
      }
    }
  }
}

TEST(ComposeRows, SharesOfTheSmallWindowAreExactForEveryWindowAndCount) {
  for (uint32_t nRows = 4; nRows <= 7; ++nRows) {
    for (uint32_t nColumns = 4; nColumns <= 7; ++nColumns) {
      const uint32_t nArea = nRows * nColumns;
      for (uint32_t n = 0; n <= nArea; ++n) {
        ASSERT_EQ(n * 16 * SoftFactor(nArea) >> 16, 255 * n / nArea) << n << " of " << nArea;
      }
    }
  }
}

TEST(ComposeRows, EveryLevelEqualsTheReferenceForEveryTail) {
  ForEveryLevelAndTail([](size_t nCount, ClSamples& oSamples) {
    const auto aZeros = oSamples.Row<uint8_t>(nCount + 8, 7), aMask = oSamples.Row<uint8_t>(nCount, 1);
    const Bytes aAreas(2 * nCount, 49), aDoubledAreas(2 * nCount, 225);
    const Words aFactors(2 * nCount, SoftFactor(49)), aDoubledFactors(2 * nCount, TextureFactor(225));
    const SoftWindows oSmall{aZeros.data(), aAreas.data(), aFactors.data()};
    const SoftWindows oDoubled{aZeros.data(), aDoubledAreas.data(), aDoubledFactors.data()};
    const auto aSignal = oSamples.Row<uint8_t>(nCount), aEnvelope = oSamples.Row<uint8_t>(nCount);
    ExpectLikeReference(
        [&](auto* pSoft, auto* pDoubled, auto* pSums, auto* pFlat) {
          SoftRow(oSmall, pSoft, nCount);
          DoubledSoftRow(oDoubled, pDoubled, nCount);
          DoubleZerosRow(aZeros.data(), aMask.data(), pSums, nCount);
          FlattenRow(aSignal.data(), aEnvelope.data(), pFlat, pFlat, nCount);
        },
        Bytes(nCount), Bytes(2 * nCount), Bytes(nCount), oSamples.Row<uint8_t>(nCount));
  });
}
