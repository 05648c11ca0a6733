// Resizing against its definition.
#include <array>
#include <cmath>

#include "CallersBlock.h"
#include "MXLiveScannerTools/TpIpSubsampleFilter.h"
#include "TestImages.h"

namespace {

using ClFilter = ClIpSubsampleFilter<ClFilterLanczos2>;

void FillRandom(ClImage& oImage, int nWidth, int nHeight) {
  std::mt19937 oRandom(5);
  SetRandom<uint8_t>(oImage, nWidth, nHeight, oRandom);
  oImage.SetPels(4000, 3000);
}

/// Sample j of an axis by its definition, of nIn samples fnSample(i) and nOut new ones.
template <typename TSample>
int SlowSample(int j, int nIn, int nOut, const TSample& fnSample) {
  if (nIn == nOut) return fnSample(j);
  const double c = static_cast<double>(nIn) * j / nOut, w = 2.0 * nIn / nOut, dPi = std::acos(-1.0);
  if (w < 2.0) return fnSample(static_cast<int>(std::max(0.0, c - w)));
  int nSum = 0, nWeights = 0;
  const int nLast = std::min(nIn - 1, static_cast<int>(c + w) + 1);
  for (int i = std::max(0, static_cast<int>(c - w) - 1); i <= nLast; ++i) {
    const double x = 2 * (i - c) / w;
    double dWeight = std::fabs(x) < w ? 1 : 0;
    if (x != 0) dWeight *= std::sin(dPi * x) * std::sin(dPi * x * 0.5) / (dPi * dPi * x * x * 0.5);
    nSum += static_cast<int>(dWeight * 1024) * fnSample(i);
    nWeights += static_cast<int>(dWeight * 1024);
  }
  return std::min(255, std::max(0, nSum / nWeights));
}

void ExpectResized(int nWidth, int nHeight, int nNewWidth, int nNewHeight) {
  ClImage oIn, oOut;
  FillRandom(oIn, nWidth, nHeight);
  ASSERT_EQ(ClFilter().ApplyParam(oIn, oOut, nNewWidth, nNewHeight), 0);
  ASSERT_TRUE(oOut.HasSize(nNewWidth, nNewHeight));
  EXPECT_EQ(oOut.PelsX(), 4000 * nNewWidth / nWidth);
  EXPECT_EQ(oOut.PelsY(), 3000 * nNewHeight / nHeight);
  ExpectSamples<uint8_t>(oOut, [&](int x, int y, int) {
    return SlowSample(x, nWidth, nNewWidth, [&](int i) {
      return SlowSample(y, nHeight, nNewHeight, [&](int j) { return int{oIn.Row<uint8_t>(j)[i]}; });
    });
  });
}

TEST(SubsampleFilter, EachWayOfResizingEqualsItsDefinition) {
  ExpectResized(96, 20, 64, 20);
  ExpectResized(61, 9, 17, 9);
  ExpectResized(33, 50, 33, 21);
  ExpectResized(40, 60, 20, 30);
  ExpectResized(47, 31, 13, 29);
  ExpectResized(30, 30, 20, 45);
  ExpectResized(20, 40, 50, 30);
}

TEST(SubsampleFilter, AFilterIsUsedForImagesOfSeveralSizesInPlace) {
  ClFilter oFilter;
  ClImage oImage, oExpected;
  // Each pair of sizes has the first extents or the last ones in common with the pair before.
  for (const auto& [nWidth, nNewWidth, nHeight, nNewHeight] :
       {std::array{60, 32, 40, 20}, {60, 30, 40, 22}, {50, 30, 44, 22}}) {
    FillRandom(oImage, nWidth, nHeight);
    ClFilter().ApplyParam(oImage, oExpected, nNewWidth, nNewHeight);
    oFilter.ApplyParam(oImage, oImage, nNewWidth, nNewHeight);
    ASSERT_TRUE(oImage.HasSize(nNewWidth, nNewHeight));
    EXPECT_EQ(Samples<uint8_t>(oImage), Samples<uint8_t>(oExpected));
  }
}

TEST(SubsampleFilter, LetsGoOfABlockThatItsCallerLentForOneRun) {
  ClFilter oAcross, oBoth;
  ExpectTheCallersBlockIsLetGo({"across", [&](ClImage& o) { return oAcross.ApplyParam(o, o, 17, 16); }});
  ExpectTheCallersBlockIsLetGo({"both", [&](ClImage& o) { return oBoth.ApplyParam(o, o, 16, 20); }});
}

TEST(SubsampleFilter, RefusesWhatItCannotResize) {
  ClAnyImages o;
  ClImage oIn;
  FillRandom(oIn, 300, 40);
  const auto Number = [&](ClImage& oFrom, int nWidth, int nHeight) {
    return NumberOf([&] { ClFilter().ApplyParam(oFrom, o.m_oOut, nWidth, nHeight); });
  };
  EXPECT_EQ(Number(oIn, 300, 40), -44) << "the size that it has";
  EXPECT_EQ(Number(oIn, 301, 40), -44);
  EXPECT_EQ(Number(oIn, 0, 40), -44);
  EXPECT_EQ(Number(oIn, 30, -1), -44);
  EXPECT_EQ(Number(oIn, 5, 40), -44) << "more taps than there is room for";
  EXPECT_EQ(Number(oIn, 10, 40), 0);
  for (ClImage* pIn : {&o.m_oColor, &o.m_oWord, &o.m_oEmpty}) EXPECT_EQ(Number(*pIn, 1, 1), -44);
}

}  // namespace
