// Tests of resizing: every mode against a plain version, hand-made numbers, parameters and errors.
#include "MXImageProcessing/IpRescale.h"

#include <cmath>

#include "MXTools/ParameterContainer.h"
#include "MXTools/ProfileTimer.h"
#include "ParameterLists.h"
#include "TestImages.h"

namespace {

using Line = std::vector<int64_t>;
constexpr auto eBiLinear = ClIpRescale::ModeBiLinear;
constexpr auto eNearest = ClIpRescale::ModeNearestNeighbour;
constexpr auto eWhole = ClIpRescale::ModeWholeNumbered;
constexpr auto eCubic = ClIpRescale::ModeBiCubic;
constexpr auto eFantMar = ClIpRescale::ModeBiLinearFantMar;

/// A plane as columns or rows that are exchanged at will.
struct ClPlane {
  int64_t At(int64_t x, int64_t y) const { return m_aRows[static_cast<size_t>(y)][static_cast<size_t>(x)]; }
  ClPlane Turned() const {
    ClPlane oTurned{std::vector<Line>(m_aRows[0].size())};
    for (const Line& aRow : m_aRows)
      for (size_t x = 0; x < aRow.size(); ++x) oTurned.m_aRows[x].push_back(aRow[x]);
    return oTurned;
  }
  template <typename TCall>
  ClPlane EachRow(TCall&& fnRow) const {
    ClPlane oOut;
    for (const Line& aRow : m_aRows) oOut.m_aRows.push_back(fnRow(aRow));
    return oOut;
  }

  std::vector<Line> m_aRows;
};

int64_t SizeOf(const Line& aLine) {
  return static_cast<int64_t>(aLine.size());
}

/// The mean of each stretch of nStep / 4096 samples; behind the last stretch that has any, it is repeated.
Line SlowIntegrate(const Line& aIn, int64_t nStep, int64_t nOut) {
  Line aOut;
  for (int64_t x = 0; x < nOut; ++x) {
    const int64_t nFrom = x * nStep, nTo = std::min(nFrom + nStep, SizeOf(aIn) * 4096);
    if (nTo <= nFrom) {
      aOut.push_back(aOut.back());
      continue;
    }
    int64_t nSum = 0;
    for (int64_t n = 0; n < SizeOf(aIn); ++n) {
      const int64_t nShare = std::min(nTo, (n + 1) * 4096) - std::max(nFrom, n * 4096);
      nSum += std::max<int64_t>(nShare, 0) * aIn[static_cast<size_t>(n)];
    }
    aOut.push_back(nSum / (nTo - nFrom));
  }
  return aOut;
}

/// Inner part by four points, borders along one axis, corners as they are.
ClPlane SlowBilinear(const ClPlane& oIn, int64_t nW, int64_t nH) {
  const int64_t w = SizeOf(oIn.m_aRows[0]), h = static_cast<int64_t>(oIn.m_aRows.size());
  const float rx = static_cast<float>(nW) / static_cast<float>(w),
              ry = static_cast<float>(nH) / static_cast<float>(h);
  const auto mx = static_cast<int64_t>(rx * 0.5 + 0.5), my = static_cast<int64_t>(ry * 0.5 + 0.5);
  const int64_t Sx = (w << 12) / nW, Sy = (h << 12) / nH;
  const auto d = [](int64_t n) { return static_cast<double>(n); };
  const auto X0 = static_cast<int64_t>((-0.5 * rx + 0.5 + d(mx)) * d(Sx));
  const auto Y0 = static_cast<int64_t>((-0.5 * ry + 0.5 + d(my)) * d(Sy));
  ClPlane oOut{std::vector<Line>(static_cast<size_t>(nH))};
  for (int64_t y = 0; y < nH; ++y) {
    for (int64_t x = 0; x < nW; ++x) {
      const bool bX = x >= mx && x <= nW - mx - 1, bY = y >= my && y <= nH - my - 1;
      const int64_t X = X0 + (x - mx) * Sx, Y = Y0 + (y - my) * Sy, fx = X & 4095, fy = Y & 4095;
      const int64_t nEdgeX = x < mx ? 0 : w - 1, nEdgeY = y < my ? 0 : h - 1, i = X >> 12, j = Y >> 12;
      int64_t n;
      if (bX && bY) {
        n = (((4096 - fx) * (4096 - fy) >> 12) * oIn.At(i, j) + (fx * (4096 - fy) >> 12) * oIn.At(i + 1, j) +
             ((4096 - fx) * fy >> 12) * oIn.At(i, j + 1) + (fx * fy >> 12) * oIn.At(i + 1, j + 1)) >>
            12;
      } else if (bX) {
        n = ((4096 - fx) * oIn.At(i, nEdgeY) + fx * oIn.At(i + 1, nEdgeY)) >> 12;
      } else if (bY) {
        n = ((4096 - fy) * oIn.At(nEdgeX, j) + fy * oIn.At(nEdgeX, j + 1)) >> 12;
      } else {
        n = oIn.At(nEdgeX, nEdgeY);
      }
      oOut.m_aRows[static_cast<size_t>(y)].push_back(n);
    }
  }
  return oOut;
}

int64_t StepOf(int nSize, int nNewSize, int nPels, int nNewPels) {
  return nPels > 0 && nNewPels > 0 ? (int64_t{nPels} << 12) / nNewPels : (int64_t{nSize} << 12) / nNewSize;
}

/// The two modes that the system uses and the plainest one; the resolution of the output is in oOut.
ClPlane Slow(const ClPlane& oPlane, const ClImage& oIn, const ClImage& oOut,
             ClIpRescale::eProcessingMode eMode) {
  const int w = oIn.Width(), h = oIn.Height(), nW = oOut.Width(), nH = oOut.Height();
  const int64_t nStepX = StepOf(w, nW, oIn.PelsX(), oOut.PelsX()),
                nStepY = StepOf(h, nH, oIn.PelsY(), oOut.PelsY());
  const auto Pick = [](const Line& aIn, int64_t nStep, int64_t nOut) {
    Line aOut;
    for (int64_t x = 0; x < nOut; ++x)
      aOut.push_back(aIn[static_cast<size_t>(std::min(x * nStep >> 12, SizeOf(aIn) - 1))]);
    return aOut;
  };
  ClPlane o = oPlane;
  const bool bNearest = eMode == eNearest;
  if (nW < w || bNearest)
    o = o.EachRow(
        [&](const Line& a) { return bNearest ? Pick(a, nStepX, nW) : SlowIntegrate(a, nStepX, nW); });
  if (nH < h || bNearest)
    o = o.Turned()
            .EachRow(
                [&](const Line& a) { return bNearest ? Pick(a, nStepY, nH) : SlowIntegrate(a, nStepY, nH); })
            .Turned();
  return bNearest || (nW < w && nH < h) ? o : SlowBilinear(o, nW, nH);
}

template <typename T>
ClPlane PlaneOf(const ClImage& oImage, int nPlane) {
  ClPlane oPlane;
  for (int y = 0; y < oImage.Height(); ++y) {
    oPlane.m_aRows.emplace_back();
    for (int x = 0; x < oImage.Width(); ++x)
      oPlane.m_aRows.back().push_back(oImage.Row<T>(y)[x * oImage.Planes() + nPlane]);
  }
  return oPlane;
}

template <typename T>
void Compare() {
  std::mt19937 oRandom(41);
  ClIpRescale oRescale;
  for (int nCase = 0; nCase < 1200; ++nCase) {
    const auto Side = [&] { return 1 + static_cast<int>(oRandom() % 40); };
    ClImage oIn, oOut;
    SetRandom<T>(oIn, Side(), Side(), oRandom, nCase % 4 == 3 ? 3 : 1);
    const auto eMode = nCase % 2 == 0 ? eBiLinear : eNearest;
    const int nKind = nCase % 3;
    if (nKind == 2) oIn.SetPels(0, 0);
    // Resolutions of down to a third and up to the threefold, else sizes.
    long nResult = nKind == 0 ? oRescale.ApplyParamPels(oIn, oOut, 6600 + static_cast<int>(oRandom() % 50000),
                                                        3300 + static_cast<int>(oRandom() % 25000), eMode)
                              : oRescale.ApplyParamSize(oIn, oOut, Side(), Side(), eMode);
    ASSERT_EQ(nResult, 0) << nCase;
    if (oOut.HasSize(oIn.Width(), oIn.Height())) continue;
    for (int k = 0; k < oIn.Planes(); ++k) {
      ASSERT_EQ(PlaneOf<T>(oOut, k).m_aRows, Slow(PlaneOf<T>(oIn, k), oIn, oOut, eMode).m_aRows)
          << nCase << ": " << oIn.Width() << " x " << oIn.Height() << " to " << oOut.Width() << " x "
          << oOut.Height();
    }
    const auto aExpected = Samples<T>(oOut);
    ASSERT_EQ(oRescale.ApplyParam(oIn, oIn, eMode), 0);
    ASSERT_EQ(Samples<T>(oIn), aExpected) << "in place";
  }
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

using Row8 = std::vector<uint8_t>;

}  // namespace

TEST(Rescale, AreaMeansBlendsAndPicksEqualThePlainVersion) {
  Compare<uint8_t>();
  Compare<int8_t>();
}

TEST(Rescale, HandMadeRows) {
  // 5 samples to 2: the boundary cuts the third one in halves.
  EXPECT_EQ(Rescaled<uint8_t>({10, 20, 30, 40, 51}, 2, eBiLinear), (Row8{18, 42}));
  EXPECT_EQ(Rescaled<int8_t>({-1, -2}, 1, eBiLinear), (std::vector<int8_t>{-1})) << "cut toward zero";
  // The first and last half sample have one neighbour only; between them 1/4 and 3/4.
  EXPECT_EQ(Rescaled<uint8_t>({0, 100}, 4, eBiLinear), (Row8{0, 25, 75, 100}));
  EXPECT_EQ(Rescaled<uint8_t>({1, 2, 3}, 6, eNearest), (Row8{1, 1, 2, 2, 3, 3}));
  EXPECT_EQ(Rescaled<uint8_t>({10, 20, 30, 40}, 2, eFantMar), (Row8{15, 35}));
  EXPECT_EQ(Rescaled<uint8_t>({10, 30}, 4, eFantMar), (Row8{10, 20, 30, 30}));
}

TEST(Rescale, WholeFactorsRepeatOrAverageAndTheTailRepeatsTheLast) {
  ClImage oIn, oOut;
  SetImage<uint8_t>(oIn, 5, 2, {1, 2, 3, 4, 9, 11, 12, 13, 14, 19});
  oIn.SetPels(1000, 1000);
  ClIpRescale oRescale;
  // 2.6 times is rounded up to 3; 13 columns have no room for all of 15. 0.5 halves the rows.
  ASSERT_EQ(oRescale.ApplyParamPels(oIn, oOut, 2600, 500, eWhole), 0);
  EXPECT_EQ(Samples<uint8_t>(oOut), (Row8{6, 6, 6, 7, 7, 7, 8, 8, 8, 9, 9, 9, 14}));
  EXPECT_EQ(oOut.PelsX(), 2600);
  // 2.5 times is 2: ten samples for 13 places, the last one repeated.
  ASSERT_EQ(oRescale.ApplyParamPels(oIn, oOut, 2500, 1000, eWhole), 0);
  ASSERT_TRUE(oOut.HasSize(13, 2));
  EXPECT_EQ(Row8(oOut.Row<uint8_t>(0), oOut.Row<uint8_t>(0) + 13),
            (Row8{1, 1, 2, 2, 3, 3, 4, 4, 9, 9, 9, 9, 9}));
  // A factor of -2; the last run has one sample.
  ASSERT_EQ(oRescale.ApplyParamPels(oIn, oOut, 500, 1000, eWhole), 0);
  EXPECT_EQ(Samples<uint8_t>(oOut), (Row8{1, 3, 9, 11, 13, 19}));
}

TEST(Rescale, CubicWeightsAreThoseOfTheDistanceInThePlaneOrOnTheAxes) {
  std::mt19937 oRandom(42);
  ClImage oIn, oExact, oFast;
  SetRandom<uint8_t>(oIn, 9, 7, oRandom);
  ClIpRescale oRescale;
  ASSERT_EQ(oRescale.ApplyParamSize(oIn, oExact, 14, 5, eCubic), 0);
  ClParameterContainer oParameters;
  oRescale.QueryParameters(oParameters);
  oParameters.Find("dConvParameter1")->SetValue("0.75");
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
  EXPECT_EQ(PublishedNumber(oRescale, "dConvParameter1"), -0.75) << "the fast form negates its parameter";
}

TEST(Rescale, FlatImagesStayFlatInEveryModeButTheExactCubicOne) {
  for (const auto eMode : {eNearest, eBiLinear, eFantMar, eCubic}) {
    for (const auto& [nW, nH] : {std::pair(3, 40), {40, 3}, {2, 2}, {29, 31}, {1, 1}}) {
      ClImage oIn(11, 13, 1, 0, 0), oOut;
      oIn = static_cast<unsigned char>(255);
      ClIpRescale oRescale;
      ClParameterContainer oParameters;
      oRescale.QueryParameters(oParameters);
      oParameters.Find("dConvParameter1")->SetValue("0.5");
      ASSERT_EQ(oRescale.ApplyParamSize(oIn, oOut, nW, nH, eMode), 0);
      const auto aSamples = Samples<uint8_t>(oOut);
      // Four weights of a blend lose up to 3 / 4096 of the grey to their cuts.
      for (const uint8_t n : aSamples) ASSERT_GE(n, eMode == eBiLinear ? 254 : 255) << eMode << " " << nW;
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
  SetImage<uint8_t>(oIn, 4, 3, Row8(12, 50));
  ASSERT_EQ(oRescale.ApplyParamPels(oIn, oOut, 9842, 9843, eBiLinear), 0);
  // 4 * 9842 / 19685 is 1.9999, and 3 * 9843 / 9842 is 3.0003.
  EXPECT_TRUE(oOut.HasSize(2, 4));
  ASSERT_EQ(oRescale.ApplyParamSize(oIn, oOut, 3, 7, eBiLinear), 0);
  EXPECT_EQ(oOut.PelsX(), 19685 * 3 / 4);
  EXPECT_EQ(oOut.PelsY(), 9842 * 7 / 3);
}

TEST(Rescale, ErrorsHaveTheirNumbers) {
  ClImage oIn, oWide, oBlank, oOut;
  SetImage<uint8_t>(oIn, 2, 1, {1, 2});
  SetImage<float>(oWide, 2, 1, {1, 2});
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
  EXPECT_EQ(NumberOf([&] { oRescale.ApplyParamSize(oWide, oOut, 5, 5, eBiLinear); }), -101);
  SetImage<uint8_t>(oOut, 1, 1, {42});
  EXPECT_EQ(oRescale.ApplyParamSize(oIn, oOut, 5, 5, static_cast<ClIpRescale::eProcessingMode>(5)), 0);
  EXPECT_EQ(Samples<uint8_t>(oOut), (Row8{42})) << "an unknown mode does nothing";
  EXPECT_EQ(Summary(oRescale), "W5 H5 InvalidMode");
  EXPECT_EQ(oRescale.ApplyParamPels(oIn, oOut, 3, 2, eFantMar), 0);
  EXPECT_EQ(Summary(oRescale), "X3 Y2 BiLinearFantMar");
}

TEST(Rescale, TheFantMarStepsAreTold) {
  class ClTimer : public ClProfileTimer {
   public:
    void TimerStart(const char*, ...) override { ++m_nStarts; }
    void TimerStop(const char*, ...) override { ++m_nStops; }
    int m_nStarts = 0, m_nStops = 0;
  } oTimer;
  g_pProfileTimer = &oTimer;
  ClIpRescale oRescale;
  g_pProfileTimer = nullptr;
  ClImage oIn, oOut;
  SetImage<uint8_t>(oIn, 2, 1, {1, 2});
  ASSERT_EQ(oRescale.ApplyParamSize(oIn, oOut, 3, 3, eFantMar), 0);
  EXPECT_EQ(oTimer.m_nStarts, 7) << "six steps and the whole";
  EXPECT_EQ(oTimer.m_nStops, 7);
}
