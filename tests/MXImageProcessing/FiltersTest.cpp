// Tests of the minimum, maximum and mean filters against plain ones.
#include <algorithm>
#include <cmath>

#include "FilterWindows.h"
#include "MXImageProcessing/IpFilterMax.h"
#include "MXImageProcessing/IpFilterMid.h"
#include "MXImageProcessing/IpFilterMin.h"

namespace {

template <typename T>
T Mean(const std::vector<T>& aWindow) {
  using S = std::conditional_t<std::is_floating_point_v<T>, double, int64_t>;
  S oSum{};
  for (const T nSample : aWindow) oSum += static_cast<S>(nSample);
  return static_cast<T>(oSum / static_cast<S>(aWindow.size()));
}

template <typename T>
T Smallest(const std::vector<T>& aWindow) {
  return *std::min_element(aWindow.begin(), aWindow.end());
}

template <typename T>
T Largest(const std::vector<T>& aWindow) {
  return *std::max_element(aWindow.begin(), aWindow.end());
}

template <typename T>
void ExpectFiltered(const ClImage& oIn, const ClImage& oOut, long nHalfX, long nHalfY,
                    T (*pfnPick)(const std::vector<T>&)) {
  SCOPED_TRACE(testing::Message() << "half window " << nHalfX << " by " << nHalfY);
  ASSERT_EQ(oOut.DataType(), oIn.DataType());
  ASSERT_TRUE(oOut.HasSize(oIn.Width(), oIn.Height()));
  ExpectSamples<T>(oOut, [&](int x, int y, int) { return pfnPick(Window<T>(oIn, x, y, nHalfX, nHalfY)); });
}

const long g_aWidths[] = {3, 5, 9, 15, 41};
const long g_aModes[] = {ClIpFilterBase::eModeX, ClIpFilterBase::eModeY, ClIpFilterBase::eModeXY};

}  // namespace

TYPED_TEST(EveryType, MinimumAndMaximumAreThoseOfTheClippedWindow) {
  std::mt19937 oRandom(3);
  ClIpFilterMin oMin;
  ClIpFilterMax oMax;
  for (const auto& [nWidth, nHeight] : g_aSizes) {
    ClImage oIn, oOut;
    SetRandom<TypeParam>(oIn, nWidth, nHeight, oRandom, 1, false);
    for (const long nFilter : g_aWidths) {
      for (const long nMode : g_aModes) {
        const long nHalfX = nMode & ClIpFilterBase::eModeX ? nFilter / 2 : 0;
        const long nHalfY = nMode & ClIpFilterBase::eModeY ? nFilter / 2 : 0;
        ASSERT_EQ(oMin.ApplyParam(oIn, oOut, nFilter, nMode), 0);
        ExpectFiltered<TypeParam>(oIn, oOut, nHalfX, nHalfY, Smallest<TypeParam>);
        ASSERT_EQ(oMax.ApplyParam(oIn, oOut, nFilter, nMode), 0);
        ExpectFiltered<TypeParam>(oIn, oOut, nHalfX, nHalfY, Largest<TypeParam>);
      }
    }
  }
}

TYPED_TEST(EveryType, TheMeanIsThatOfTheWindowThatIsClippedOrAlongOneAxisShrinksToTheLargestOddOneThatFits) {
  std::mt19937 oRandom(4);
  ClIpFilterMid oMid;
  for (const auto& [nWidth, nHeight] : g_aSizes) {
    ClImage oIn, oOut;
    SetRandom<TypeParam>(oIn, nWidth, nHeight, oRandom);
    for (const long nFilter : g_aWidths) {
      const auto HalfOf = [nFilter](int nExtent) {
        if (nFilter < nExtent) return nFilter / 2;
        return (nExtent - 1 - (nExtent % 2 == 1 ? 1 : 0)) / 2L;
      };
      const long nResultX = oMid.ApplyParam(oIn, oOut, nFilter, ClIpFilterBase::eModeX);
      EXPECT_EQ(nResultX, nWidth == 1 ? -101 : 0);
      if (nResultX == 0) ExpectFiltered<TypeParam>(oIn, oOut, HalfOf(nWidth), 0, Mean<TypeParam>);
      const long nResultY = oMid.ApplyParam(oIn, oOut, nFilter, ClIpFilterBase::eModeY);
      EXPECT_EQ(nResultY, nHeight == 1 ? -101 : 0);
      if (nResultY == 0) ExpectFiltered<TypeParam>(oIn, oOut, 0, HalfOf(nHeight), Mean<TypeParam>);
      // Unsigned bytes have a rule of their own for both axes and a width of 3.
      if (nFilter == 3 && std::is_same_v<TypeParam, uint8_t>) continue;
      // An even width counts as the next odd one.
      ASSERT_EQ(oMid.ApplyParam(oIn, oOut, nFilter - 1, ClIpFilterBase::eModeXY), 0);
      const long nHalf = nWidth >= nFilter && nHeight >= nFilter ? nFilter / 2 : 0;
      ExpectFiltered<TypeParam>(oIn, oOut, nHalf, nHalf, Mean<TypeParam>);
      EXPECT_EQ(oMid.nFilterWidth, nFilter);
    }
  }
}

TYPED_TEST(EveryType, ADirectedMeanLiesAlongOrAcrossTheDirectionOfEachPixel) {
  std::mt19937 oRandom(9);
  ClIpFilterMid oMid;
  for (const auto& [nWidth, nHeight] : g_aSizes) {
    ClImage oIn, oOut, oDx, oDy;
    SetRandom<TypeParam>(oIn, nWidth, nHeight, oRandom);
    SetRandom<int8_t>(oDx, nWidth, nHeight, oRandom);
    SetRandom<int8_t>(oDy, nWidth, nHeight, oRandom);
    oMid.pInDxImage = &oDx;
    oMid.pInDyImage = &oDy;
    for (const long nFilter : {3L, 9L}) {
      for (const bool bAcross : {false, true}) {
        const long nMode = bAcross ? ClIpFilterBase::eModeDirectedOrtho : ClIpFilterBase::eModeDirected;
        ASSERT_EQ(oMid.ApplyParam(oIn, oOut, nFilter, nMode), 0);
        ExpectSamples<TypeParam>(oOut, [&](int x, int y, int) {
          return Mean(DirectedWindow<TypeParam>(oIn, oDx, oDy, x, y, bAcross, -nFilter / 2, nFilter / 2));
        });
      }
    }
  }
}

TEST(FilterMid, WithARemainderImageMeansAreCutAndTheRestIsKeptIn256ths) {
  std::mt19937 oRandom(10);
  ClImage oIn, oOut, oRemainder;
  SetRandom<uint8_t>(oIn, 21, 17, oRandom);
  ClIpFilterMid oMid;
  oMid.m_pRemainderImage = &oRemainder;
  for (const long nFilter : {3L, 7L, 15L}) {
    ASSERT_EQ(oMid.ApplyParam(oIn, oOut, nFilter), 0);
    ExpectFiltered<uint8_t>(oIn, oOut, nFilter / 2, nFilter / 2, Mean<uint8_t>);
    ExpectFiltered<uint8_t>(oIn, oRemainder, nFilter / 2, nFilter / 2, [](const Bytes& aWindow) {
      double dSum = 0;
      for (const uint8_t n : aWindow) dSum += n;
      const double dMean = dSum / static_cast<double>(aWindow.size());
      return static_cast<uint8_t>((dMean - std::floor(dMean)) * 256);
    });
  }
  // The image is smaller than the window: the samples are their own means.
  EXPECT_EQ(Made<uint8_t>(oMid.ApplyParam(oIn, oOut, 19), oOut), Samples<uint8_t>(oIn));
  EXPECT_EQ(Samples<uint8_t>(oRemainder), Bytes(21 * 17, 0));
  oMid.m_pRemainderImage = &oOut;
  EXPECT_EQ(oMid.ApplyParam(oIn, oOut, 3), -10);
}

TEST(FilterMid, AWindowBeyondTheKernelsSumsIsStillExact) {
  // 65535 times 301 * 301 pixels doesn't fit 32 bits; a constant image shows an overflow.
  ClImage oIn, oOut;
  SetImage(oIn, 310, 305, std::vector<uint16_t>(310 * 305, 65535));
  ClIpFilterMid oMid;
  EXPECT_EQ(Made<uint16_t>(oMid.ApplyParam(oIn, oOut, 301), oOut), std::vector<uint16_t>(310 * 305, 65535));
}

TEST(FilterMid, WidthThreeOnBytesRoundsInsteadOfCutting) {
  // Corner (1 + 2 + 5 + 6 + 2) >> 2 = 4 of a true 3.5; upper edge ((1 + 2 + 3 + 5 + 6 + 7 + 3) * 341) >> 11 =
  // 4; left edge ((33 + 3) * 341) >> 11 = 5, as the factor lies below 2048 / 6; centre ((54 + 4) * 455) >> 12
  // = 6.
  ClImage oIn, oOut;
  SetImage<uint8_t>(oIn, 4, 3, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12});
  ClIpFilterMid oMid;
  EXPECT_EQ(Made<uint8_t>(oMid.ApplyParam(oIn, oOut, 3), oOut), (Bytes{4, 4, 5, 6, 5, 6, 7, 7, 8, 8, 9, 10}));
  // A sum of 6 is the smallest that is rounded up.
  SetImage<uint8_t>(oIn, 3, 3, {0, 0, 0, 0, 6, 0, 0, 0, 0});
  ASSERT_EQ(oMid.ApplyParam(oIn, oOut, 3), 0);
  EXPECT_EQ(oOut.Row<uint8_t>(1)[1], 1);
  // The largest sums stay inside a byte.
  SetImage(oIn, 5, 4, Bytes(20, 255));
  EXPECT_EQ(Made<uint8_t>(oMid.ApplyParam(oIn, oOut, 3), oOut), Bytes(20, 255));
}

TEST(FilterBase, SeveralPlanesAreFilteredOneByOneAgainAndAgainAndTheInputStays) {
  std::mt19937 oRandom(7);
  ClImage oIn, oOut, oInPlane, oOutPlane;
  SetRandom<uint8_t>(oIn, 17, 12, oRandom, 3);
  const auto aBefore = Samples<uint8_t>(oIn);
  ClIpFilterMax oMax;
  ASSERT_EQ(oMax.ApplyParam(oIn, oOut, 5, ClIpFilterBase::eModeXY), 0);
  oOut.Initialize();
  ASSERT_EQ(oMax.Apply(), 0) << "with the images of before";
  EXPECT_EQ(Samples<uint8_t>(oIn), aBefore);
  ASSERT_EQ(oOut.Planes(), 3);
  for (int nPlane = 0; nPlane < 3; ++nPlane) {
    oIn.GetPlane(nPlane, oInPlane);
    oOut.GetPlane(nPlane, oOutPlane);
    ExpectFiltered<uint8_t>(oInPlane, oOutPlane, 2, 2, Largest<uint8_t>);
  }
  oMax.ApplyParam(oInPlane, oOut, 5, ClIpFilterBase::eModeXY);
  oOut.Initialize();
  ASSERT_EQ(oMax.Apply(), 0) << "of one plane, too";
  EXPECT_EQ(Samples<uint8_t>(oOut), Samples<uint8_t>(oOutPlane));
}

TEST(FilterBase, AWidthBelowTwoCopiesAndErrorsHaveTheirNumbers) {
  ClAnyImages o;
  ClImage& oIn = o.m_oByte;
  ClIpFilterMin oMin;
  ClIpFilterMid oMid;
  EXPECT_EQ(NumberOf([&] { oMin.ApplyParam(oIn, o.m_oOut, 4, 3); }), -44);
  for (const long nWidth : {1L, 0L, -3L})
    EXPECT_EQ(Made<uint8_t>(oMin.ApplyParam(oIn, o.m_oOut, nWidth, 3), o.m_oOut), Samples<uint8_t>(oIn));
  EXPECT_EQ(oMin.ApplyParam(oIn, oIn, 3, 3), -10);
  EXPECT_EQ(oMid.ApplyParam(oIn, oIn, 3), -10);
  EXPECT_EQ(oMin.ApplyParam(oIn, o.m_oOut, 3, ClIpFilterBase::eModeDirected), -33);
  EXPECT_EQ(oMin.ApplyParam(oIn, o.m_oOut, 3, ClIpFilterBase::eModeDirectedOrtho), -33);
  const auto Directed = [&](ClImage* pDx, ClImage* pDy) {
    oMid.pInDxImage = pDx;
    oMid.pInDyImage = pDy;
    return NumberOf([&] { oMid.ApplyParam(oIn, o.m_oOut, 3, ClIpFilterBase::eModeDirected); });
  };
  ClImage oLow;
  oLow.NewWithType(ClImage::eInt8, 2, 1, 1, 0, 0, true);
  EXPECT_EQ(Directed(nullptr, &oIn), -701);
  EXPECT_EQ(Directed(&oIn, nullptr), -701);
  EXPECT_EQ(Directed(&oIn, &oIn), -33);
  EXPECT_EQ(Directed(&oLow, &oIn), -44);
  for (ClIpFilterBase* pFilter : {static_cast<ClIpFilterBase*>(&oMin), static_cast<ClIpFilterBase*>(&oMid)}) {
    EXPECT_EQ(NumberOf([&] { pFilter->ApplyParam(oIn, o.m_oOut, 3, 7); }), -35);
    EXPECT_EQ(NumberOf([&] { pFilter->ApplyParam(o.m_oUnknown, o.m_oOut, 3, 3); }), -35);
  }
  ClIpFilterMax oMax;
  EXPECT_EQ(NumberOf([&] { oMax.Apply(); }), -10);
  oMax.m_pInImage = &oIn;
  EXPECT_EQ(NumberOf([&] { oMax.Apply(); }), -701);
  EXPECT_FALSE(oMax.CanApply());
}

TEST(FilterBase, TheSummaryNamesWidthAxesAndSign) {
  ClImage oIn, oOut;
  SetImage<int8_t>(oIn, 2, 2, {1, 2, 3, 4});
  ClIpFilterMin oMin;
  EXPECT_EQ(Summary(oMin), "W[3] M[XY] S[Unknown]");
  oMin.ApplyParam(oIn, oOut, 5, ClIpFilterBase::eModeY);
  EXPECT_EQ(Summary(oMin), "W[5] M[Y] S[Signed]");
}
