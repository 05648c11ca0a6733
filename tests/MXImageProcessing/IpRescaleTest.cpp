// Tests of resizing: every mode against a plain version, hand-made numbers, parameters and errors.
#include "MXImageProcessing/IpRescale.h"

#include <cmath>

#include "TestImages.h"

namespace {

constexpr auto eBiLinear = ClIpRescale::ModeBiLinear;
constexpr auto eNearest = ClIpRescale::ModeNearestNeighbour;
constexpr auto eWhole = ClIpRescale::ModeWholeNumbered;
constexpr auto eCubic = ClIpRescale::ModeBiCubic;
constexpr auto eFantMar = ClIpRescale::ModeBiLinearFantMar;

int64_t StepOf(int64_t nSize, int64_t nNewSize, int64_t nPels, int64_t nNewPels) {
  return nPels > 0 && nNewPels > 0 ? (nPels << 12) / nNewPels : (nSize << 12) / nNewSize;
}

/// The mean of stretch n of nStep / 4096 samples; after the last stretch that has samples, the mean of that
/// one.
template <typename TSample>
int64_t StretchMean(int64_t n, int64_t nStep, int64_t nSize, const TSample& fnSample) {
  const int64_t nFrom = std::min(n, (nSize * 4096 - 1) / nStep) * nStep;
  const int64_t nTo = std::min(nFrom + nStep, nSize * 4096);
  int64_t nSum = 0;
  for (int64_t i = nFrom / 4096; i * 4096 < nTo; ++i)
    nSum += (std::min(nTo, (i + 1) * 4096) - std::max(nFrom, i * 4096)) * fnSample(i);
  return nSum / (nTo - nFrom);
}

/// Where sample n of an axis that grows from nSize to nNew lies, in 4096ths; the ends alone in its
/// margins.
int64_t BlendPosition(int64_t n, int64_t nSize, int64_t nNew) {
  const float fRatio = static_cast<float>(nNew) / static_cast<float>(nSize);
  const auto nMargin = static_cast<int64_t>(fRatio * 0.5 + 0.5);
  if (n < nMargin) return 0;
  if (n > nNew - nMargin - 1) return (nSize - 1) << 12;
  const int64_t nStep = (nSize << 12) / nNew;
  const double dFirst = (-0.5 * fRatio + 0.5 + static_cast<double>(nMargin)) * static_cast<double>(nStep);
  return static_cast<int64_t>(dFirst) + (n - nMargin) * nStep;
}

/// A blend of the four samples fnSample(i, j) round a position in 4096ths.
template <typename TSample>
int64_t BlendOfFour(int64_t nX, int64_t nY, const TSample& fnSample) {
  const int64_t fx = nX & 4095, fy = nY & 4095, i = nX >> 12, j = nY >> 12;
  const int64_t nRight = fx > 0 ? i + 1 : i, nBelow = fy > 0 ? j + 1 : j;
  return (((4096 - fx) * (4096 - fy) >> 12) * fnSample(i, j) +
          (fx * (4096 - fy) >> 12) * fnSample(nRight, j) + ((4096 - fx) * fy >> 12) * fnSample(i, nBelow) +
          (fx * fy >> 12) * fnSample(nRight, nBelow)) >>
         12;
}

/// The mode that the system uses and the plainest one, sample by sample.
template <typename T>
void ExpectRescaled(const ClImage& oIn, const ClImage& oOut, bool bNearest) {
  const int64_t w = oIn.Width(), h = oIn.Height(), nW = oOut.Width(), nH = oOut.Height();
  const int64_t nStepX = StepOf(w, nW, oIn.PelsX(), oOut.PelsX());
  const int64_t nStepY = StepOf(h, nH, oIn.PelsY(), oOut.PelsY());
  ExpectSamples<T>(oOut, [&](int x, int y, int k) {
    const auto In = [&](int64_t i, int64_t j) {
      return int64_t{oIn.Row<T>(static_cast<int>(j))[i * oIn.Planes() + k]};
    };
    if (bNearest) return In(std::min(x * nStepX >> 12, w - 1), std::min(y * nStepY >> 12, h - 1));
    const auto AlongX = [&](int64_t i, int64_t j) {
      return nW < w ? StretchMean(i, nStepX, w, [&](int64_t n) { return In(n, j); }) : In(i, j);
    };
    const auto Shrunk = [&](int64_t i, int64_t j) {
      return nH < h ? StretchMean(j, nStepY, h, [&](int64_t n) { return AlongX(i, n); }) : AlongX(i, j);
    };
    if (nW < w && nH < h) return Shrunk(x, y);
    return BlendOfFour(BlendPosition(x, std::min(w, nW), nW), BlendPosition(y, std::min(h, nH), nH), Shrunk);
  });
}

template <typename T>
std::vector<T> Rescaled(const std::vector<T>& aRow, int nWidth, ClIpRescale::eProcessingMode eMode) {
  ClImage oIn, oOut;
  SetImage<T>(oIn, static_cast<int>(aRow.size()), 1, aRow);
  oIn.SetPels(0, 0);
  ClIpRescale oRescale;
  EXPECT_EQ(oRescale.ApplyParamSize(oIn, oOut, nWidth, 1, eMode), 0);
  return Samples<T>(oOut);
}

}  // namespace

TYPED_TEST(EveryByteType, AreaMeansBlendsAndPicksEqualThePlainVersion) {
  std::mt19937 oRandom(41);
  ClIpRescale oRescale;
  for (int nCase = 0; nCase < 1200; ++nCase) {
    SCOPED_TRACE(nCase);
    const auto Number = [&](unsigned nMost) { return 1 + static_cast<int>(oRandom() % nMost); };
    ClImage oIn, oOut;
    SetRandom<TypeParam>(oIn, Number(40), Number(40), oRandom, nCase % 4 == 3 ? 3 : 1);
    const auto eMode = nCase % 2 == 0 ? eBiLinear : eNearest;
    if (nCase % 3 == 2) oIn.SetPels(0, 0);
    // Resolutions of down to a third and up to the threefold, else sizes.
    ASSERT_EQ(nCase % 3 == 0
                  ? oRescale.ApplyParamPels(oIn, oOut, 6600 + Number(50000), 3300 + Number(25000), eMode)
                  : oRescale.ApplyParamSize(oIn, oOut, Number(40), Number(40), eMode),
              0);
    if (oOut.HasSize(oIn.Width(), oIn.Height())) continue;
    ExpectRescaled<TypeParam>(oIn, oOut, eMode == eNearest);
    const auto aExpected = Samples<TypeParam>(oOut);
    ASSERT_EQ(oRescale.ApplyParam(oIn, oIn, eMode), 0);
    ASSERT_EQ(Samples<TypeParam>(oIn), aExpected) << "in place";
  }
}

TEST(Rescale, HandMadeRows) {
  // 5 samples to 2: the boundary divides the third one in halves.
  EXPECT_EQ(Rescaled<uint8_t>({10, 20, 30, 40, 51}, 2, eBiLinear), (Bytes{18, 42}));
  EXPECT_EQ(Rescaled<int8_t>({-1, -2}, 1, eBiLinear), (std::vector<int8_t>{-1})) << "cut toward zero";
  // The first and last half sample have one neighbour only; between them 1/4 and 3/4.
  EXPECT_EQ(Rescaled<uint8_t>({0, 100}, 4, eBiLinear), (Bytes{0, 25, 75, 100}));
  EXPECT_EQ(Rescaled<uint8_t>({1, 2, 3}, 6, eNearest), (Bytes{1, 1, 2, 2, 3, 3}));
  EXPECT_EQ(Rescaled<uint8_t>({10, 20, 30, 40}, 2, eFantMar), (Bytes{15, 35}));
  EXPECT_EQ(Rescaled<uint8_t>({10, 30}, 4, eFantMar), (Bytes{10, 20, 30, 30}));
}

TEST(Rescale, WholeFactorsRepeatOrAverageAndTheTailRepeatsTheLast) {
  ClImage oIn, oOut;
  SetImage<uint8_t>(oIn, 5, 2, {1, 2, 3, 4, 9, 11, 12, 13, 14, 19});
  oIn.SetPels(1000, 1000);
  ClIpRescale oRescale;
  // 2.6 times is rounded up to 3; 13 columns have no room for all of 15. 0.5 halves the rows.
  ASSERT_EQ(oRescale.ApplyParamPels(oIn, oOut, 2600, 500, eWhole), 0);
  EXPECT_EQ(Samples<uint8_t>(oOut), (Bytes{6, 6, 6, 7, 7, 7, 8, 8, 8, 9, 9, 9, 14}));
  EXPECT_EQ(oOut.PelsX(), 2600);
  // 2.5 times is 2: ten samples for 13 positions, the last one repeated.
  ASSERT_EQ(oRescale.ApplyParamPels(oIn, oOut, 2500, 1000, eWhole), 0);
  ASSERT_TRUE(oOut.HasSize(13, 2));
  EXPECT_EQ(Bytes(oOut.Row<uint8_t>(0), oOut.Row<uint8_t>(0) + 13),
            (Bytes{1, 1, 2, 2, 3, 3, 4, 4, 9, 9, 9, 9, 9}));
  // A factor of -2; the last run has one sample.
  ASSERT_EQ(oRescale.ApplyParamPels(oIn, oOut, 500, 1000, eWhole), 0);
  EXPECT_EQ(Samples<uint8_t>(oOut), (Bytes{1, 3, 9, 11, 13, 19}));
}

TEST(Rescale, CubicWeightsAreThoseOfTheDistanceInThePlaneOrOnTheAxes) {
  std::mt19937 oRandom(42);
  ClImage oIn, oExact, oFast;
  SetRandom<uint8_t>(oIn, 9, 7, oRandom);
  ClIpRescale oRescale;
  ASSERT_EQ(oRescale.ApplyParamSize(oIn, oExact, 14, 5, eCubic), 0);
  SetParameter(oRescale, "dConvParameter1", "0.75");
  ASSERT_EQ(oRescale.ApplyParamSize(oIn, oFast, 14, 5, eCubic), 0);
  const auto Weight = [](double r) {
    const double a = -0.75;
    if (r <= 1) return (a + 2) * r * r * r - (a + 3) * r * r + 1;
    return r <= 2 ? a * r * r * r - 5 * a * r * r + 8 * a * r - 4 * a : 0.0;
  };
  for (int y = 0; y < 5; ++y) {
    for (int x = 0; x < 14; ++x) {
      const double dX = (x + 0.5) * 9 / 14 - 0.5, dY = (y + 0.5) * 7 / 5 - 0.5;
      double dPlane = 0, dAxes = 0;
      for (int j = -3; j < 11; ++j) {
        for (int i = -3; i < 13; ++i) {
          const int nPixel = oIn.Row<uint8_t>(std::clamp(j, 0, 6))[std::clamp(i, 0, 8)];
          dPlane += std::hypot(i - dX, j - dY) < 2 ? Weight(std::hypot(i - dX, j - dY)) * nPixel : 0;
          dAxes += Weight(std::fabs(i - dX)) * Weight(std::fabs(j - dY)) * nPixel;
        }
      }
      EXPECT_NEAR(oExact.Row<uint8_t>(y)[x], std::clamp(dPlane - 0.5, 0.0, 255.0), 0.51);
      EXPECT_NEAR(oFast.Row<uint8_t>(y)[x], std::clamp(dAxes - 0.5, 0.0, 255.0), 0.9);
    }
  }
  EXPECT_EQ(SetParameter(oRescale, "dConvParameter1", "0"), "-0.75") << "the fast form negates its parameter";
}

TEST(Rescale, FlatImagesStayFlatInTheModesThatNoPlainVersionHolds) {
  for (const auto eMode : {eFantMar, eCubic}) {
    for (const auto& [nW, nH] : {std::pair(3, 40), {40, 3}, {2, 2}, {29, 31}, {1, 1}}) {
      ClIpRescale oRescale;
      SetParameter(oRescale, "dConvParameter1", "0.5");
      ClImage oIn(11, 13, 1, 0, 0), oOut;
      oIn = static_cast<unsigned char>(255);
      ASSERT_EQ(oRescale.ApplyParamSize(oIn, oOut, nW, nH, eMode), 0);
      EXPECT_EQ(Samples<uint8_t>(oOut), Bytes(static_cast<size_t>(nW * nH), 255)) << eMode;
    }
  }
}

TEST(Rescale, SizesAndResolutionsFollowEachOther) {
  ClImage oIn, oOut;
  SetImage<uint16_t>(oIn, 4, 3, std::vector<uint16_t>(12, 500));
  ClIpRescale oRescale;
  ASSERT_EQ(oRescale.ApplyParamSize(oIn, oOut, 4, 3, eBiLinear), 0);
  EXPECT_EQ(Samples<uint16_t>(oOut), Samples<uint16_t>(oIn)) << "its own size is a copy of any type";
  ASSERT_EQ(oRescale.ApplyParamPels(oIn, oOut, 19685, 9842, eBiLinear), 0);
  EXPECT_TRUE(oOut.HasSize(4, 3));
  SetImage<uint8_t>(oIn, 4, 3, Bytes(12, 50));
  ASSERT_EQ(oRescale.ApplyParamPels(oIn, oOut, 9842, 9843, eBiLinear), 0);
  // 4 * 9842 / 19685 is 1.9999, and 3 * 9843 / 9842 is 3.0003.
  EXPECT_TRUE(oOut.HasSize(2, 4));
  ASSERT_EQ(oRescale.ApplyParamSize(oIn, oOut, 3, 7, eBiLinear), 0);
  EXPECT_EQ(oOut.PelsX(), 19685 * 3 / 4);
  EXPECT_EQ(oOut.PelsY(), 9842 * 7 / 3);
}

TEST(Rescale, ErrorsHaveTheirNumbers) {
  ClAnyImages o;
  ClImage &oIn = o.m_oByte, &oBlank = o.m_oEmpty, &oOut = o.m_oOut;
  ClIpRescale oRescale;
  EXPECT_EQ(oRescale.ApplyParam(oIn, oOut, eBiLinear), -101);
  EXPECT_EQ(oRescale.Apply(), -10);
  EXPECT_EQ(oRescale.ApplyParamSize(oIn, oOut, 5, 5, eWhole), -101);
  EXPECT_EQ(oRescale.ApplyParamSize(oIn, oOut, 0, 5, eBiLinear), -35);
  EXPECT_EQ(oRescale.ApplyParamSize(oBlank, oOut, 5, 5, eBiLinear), -35);
  EXPECT_EQ(oRescale.ApplyParamPels(oBlank, oOut, 5, 5, eBiLinear), -13);
  EXPECT_EQ(oRescale.ApplyParamPels(oIn, oOut, INT32_MAX, 1, eBiLinear), 0) << "218 thousand columns";
  oIn.SetPels(1, 1);
  EXPECT_EQ(oRescale.ApplyParamPels(oIn, oOut, INT32_MAX, 1, eBiLinear), -35);
  EXPECT_EQ(NumberOf([&] { oRescale.ApplyParamSize(o.m_oWord, oOut, 5, 5, eBiLinear); }), -101);
  SetImage<uint8_t>(oOut, 1, 1, {42});
  EXPECT_EQ(oRescale.ApplyParamSize(oIn, oOut, 5, 5, static_cast<ClIpRescale::eProcessingMode>(5)), 0);
  EXPECT_EQ(Samples<uint8_t>(oOut), (Bytes{42})) << "an unknown mode does nothing";
  EXPECT_EQ(Summary(oRescale), "W5 H5 InvalidMode");
}
