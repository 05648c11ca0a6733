// Tests of the thresholds, the labels and what is measured of objects.
#include <cmath>
#include <utility>

#include "MXImageProcessing/IpBinarizeGlobal.h"
#include "MXImageProcessing/IpBinarizeLocal2.h"
#include "MXImageProcessing/IpConnectedComponent2.h"
#include "MXImageProcessing/IpLabeling.h"
#include "PlainLabels.h"
#include "TestImages.h"

namespace {

using Components = ClIpConnectedComponent2::ComponentsArray_t;

/// What a window of nWidthX by nWidthY makes of a pixel with the classes 3 and 250.
template <typename T>
int AboveLocalMean(const ClImage& oIn, int x, int y, int nWidthX, int nWidthY, int nOffset) {
  int nSum = 0, nArea = 0;
  const int nLast = std::min(oIn.Width() - 1, x + nWidthX / 2);
  for (int r = std::max(0, y - nWidthY / 2); r <= std::min(oIn.Height() - 1, y + nWidthY / 2); ++r) {
    for (int c = std::max(0, x + nWidthX / 2 - nWidthX + 1); c <= nLast; ++c, ++nArea)
      nSum += oIn.Row<T>(r)[c];
  }
  return (oIn.Row<T>(y)[x] + nOffset) * nArea > nSum ? 250 : 3;
}

}  // namespace

TYPED_TEST(EveryByteType, APixelIsComparedWithTheMeanOfItsClippedWindow) {
  std::mt19937 oRandom(31);
  ClIpBinarizeLocal2 oBinarize;
  oBinarize.m_nBlack = 3;
  oBinarize.m_nWhite = 250;
  for (int n = 0; n < 60; ++n) {
    const int nWidth = 1 + static_cast<int>(oRandom() % 50), nHeight = 1 + static_cast<int>(oRandom() % 20);
    const int nWidthX = 1 + static_cast<int>(oRandom() % static_cast<unsigned>(nWidth));
    const int nWidthY = 1 + static_cast<int>(oRandom() % static_cast<unsigned>(nHeight));
    const int nOffset = n % 3 == 0 ? 0 : static_cast<int>(oRandom() % 601) - 300;
    ClImage oIn, oOut;
    SetRandom<TypeParam>(oIn, nWidth, nHeight, oRandom);
    ASSERT_EQ(oBinarize.ApplyParam(oIn, oOut, nWidthX, nWidthY, nOffset), 0);
    ASSERT_EQ(oOut.DataType(), oIn.DataType());
    ExpectSamples<uint8_t>(oOut, [&](int x, int y, int) {
      return AboveLocalMean<TypeParam>(oIn, x, y, nWidthX, nWidthY, nOffset);
    });
    ASSERT_EQ(oBinarize.ApplyParam(oIn, oIn, nWidthX, nWidthY, nOffset), 0);
    EXPECT_EQ(Samples<uint8_t>(oIn), Samples<uint8_t>(oOut));
  }
}

TEST(BinarizeLocalLimits, AnImageBelowTheWindowIsCopiedAndErrorsHaveTheirNumbers) {
  ClAnyImages o;
  ClIpBinarizeLocal2 oBinarize;
  const auto Apply = [&](ClImage& oIn, long nWidthX, long nWidthY) {
    return oBinarize.ApplyParam(oIn, o.m_oOut, nWidthX, nWidthY, 0);
  };
  EXPECT_EQ(oBinarize.Apply(), -10);
  for (const auto& [nWidthX, nWidthY] : {std::pair(3L, 1L), {1L, 3L}})
    EXPECT_EQ(Made<uint8_t>(Apply(o.m_oByte, nWidthX, nWidthY), o.m_oOut), Samples<uint8_t>(o.m_oByte));
  EXPECT_EQ(Apply(o.m_oColor, 1, 1), -101);
  EXPECT_EQ(Apply(o.m_oWord, 1, 1), -101);
  EXPECT_EQ(NumberOf([&] { Apply(o.m_oByte, 0, 3); }), -44);
  EXPECT_EQ(NumberOf([&] { Apply(o.m_oByte, 3, -1); }), -44);
}

TEST(ConnectedComponent, ObjectsAreMeasuredInTheOrderOfTheirFirstPixels) {
  ClImage oObjects, oGrey, oLabels;
  // A rod of three pixels, an L and a single pixel.
  SetImage<uint8_t>(oObjects, 6, 4, {9, 0, 0, 0, 9, 0,  //
                                     9, 9, 9, 9, 9, 9,  //
                                     0, 9, 9, 9, 9, 9,  //
                                     0, 0, 0, 9, 9, 9});
  SetImage<uint8_t>(oGrey, 6, 4, {1,   10,  20, 60, 1, 255,  //
                                  1,   1,   1,  1,  1, 1,    //
                                  100, 1,   1,  1,  1, 1,    //
                                  101, 102, 99, 1,  1, 1});
  ClIpConnectedComponent2 oComponents;
  Components aFound;
  // The objects of an earlier run do not count.
  ASSERT_EQ(oComponents.ApplyParam(oGrey, aFound), 0);
  EXPECT_EQ(aFound.Entries(), 0U);
  ASSERT_EQ(oComponents.ApplyParam(oObjects, aFound, &oGrey, &oLabels), 0);
  ASSERT_EQ(oComponents.ApplyParam(oObjects, aFound, &oGrey, &oLabels), 0);
  ASSERT_EQ(aFound.Entries(), 3U);
  EXPECT_EQ(oLabels.Row<int32_t>(3)[1], 3);
  const auto& oRod = aFound[0];
  EXPECT_TRUE(oRod.vCentre.IsNear({2, 0}) && oRod.vFirst.IsNear({1, 0}) && oRod.vMin.IsNear({1, 0}) &&
              oRod.vMax.IsNear({3, 0}));
  EXPECT_EQ(std::make_pair(oRod.dArea, oRod.dGrey), std::make_pair(3.0, 30.0));
  EXPECT_EQ(std::make_pair(oRod.dMu20, oRod.dMu02), std::make_pair(2.0, 0.0));
  EXPECT_EQ(std::make_pair(oRod.dEccentricity, oRod.dAngle), std::make_pair(1.0, 0.0));
  const auto& oDot = aFound[1];
  EXPECT_EQ(oDot.nLabel, 2);
  EXPECT_TRUE(oDot.vCentre.IsNear({5, 0}) && oDot.vFirst.IsNear({5, 0}) && oDot.vMin.IsNear({5, 0}) &&
              oDot.vMax.IsNear({5, 0}));
  EXPECT_EQ(std::make_pair(oDot.dEccentricity, oDot.dGrey), std::make_pair(0.0, 255.0));
  EXPECT_TRUE(std::isnan(oDot.dAngle));
  // Around (3/4, 11/4) the moments are 11/4, 3/4 and 3/4, so that the L falls by one on three.
  const auto& oL = aFound[2];
  EXPECT_TRUE(oL.vCentre.IsNear({0.75, 2.75}) && oL.vMin.IsNear({0, 2}) && oL.vMax.IsNear({2, 3}));
  EXPECT_NEAR(oL.dMu11, 0.75, 1e-12);
  EXPECT_NEAR(oL.dEccentricity, (4 + 2.25) / (3.5 * 3.5), 1e-12);
  EXPECT_NEAR(std::tan(oL.dAngle), 1.0 / 3, 1e-6);
  auto oCopy = oL;
  oCopy.dAngle = oCopy.dMu11 = 9;
  oCopy.vCentre.x += 5e-8;
  EXPECT_TRUE(oCopy == oL);
  oCopy.vMin.y += 1e-6;
  EXPECT_FALSE(oCopy == oL);
}

TEST(ConnectedComponent, ErrorsHaveTheirNumbers) {
  ClAnyImages o;
  ClIpConnectedComponent2 oComponents;
  Components aFound;
  EXPECT_EQ(NumberOf([&] { oComponents.Apply(); }), -37);
  oComponents.m_pInImage = &o.m_oByte;
  EXPECT_EQ(NumberOf([&] { oComponents.Apply(); }), -37);
  EXPECT_FALSE(oComponents.CanApply());
  EXPECT_EQ(NumberOf([&] { oComponents.ApplyParam(o.m_oByte, aFound, &o.m_oEmpty); }), -44);
  EXPECT_FALSE(oComponents.CanApply());
  EXPECT_EQ(NumberOf([&] { oComponents.ApplyParam(o.m_oByte, aFound, nullptr, &o.m_oByte); }), -44);
  EXPECT_TRUE(oComponents.CanApply());
}

TYPED_TEST(EveryType, SamplesAtTheGlobalThresholdAreWhite) {
  ClImage oIn, oOut;
  SetImage<TypeParam>(oIn, 5, 1, {0, 99, 100, 101, 120});
  oIn.SetBlackWhite(0, 120);
  ClIpBinarizeGlobal oBinarize;
  for (const double dThreshold : {100.0, 99.5}) {
    ASSERT_EQ(oBinarize.ApplyParam(oIn, oOut, dThreshold), 0);
    EXPECT_EQ(Samples<TypeParam>(oOut), (std::vector<TypeParam>{0, 0, 120, 120, 120}));
  }
  ASSERT_EQ(oBinarize.ApplyParam(oIn, oIn, 101.0), 0);
  EXPECT_EQ(Samples<TypeParam>(oIn), (std::vector<TypeParam>{0, 0, 0, 120, 120}));
}

TEST(BinarizeGlobalLimits, TheMiddleIsTheThresholdAndValuesOutsideTheirRangeAreRefused) {
  ClImage oIn, oOut;
  SetImage<uint8_t>(oIn, 4, 1, {0, 127, 128, 255});
  ClIpBinarizeGlobal oBinarize;
  ASSERT_EQ(oBinarize.NewIpBase::ClIp1to1Base::ApplyParam(oIn, oOut), 0);
  EXPECT_EQ(Samples<uint8_t>(oOut), (Bytes{0, 0, 255, 255}));
  EXPECT_EQ(Made<uint8_t>(oBinarize.ApplyParam(oIn, oOut, 255), oOut), (Bytes{0, 0, 0, 255}));
  SetImage<uint8_t>(oIn, 2, 1, {0, 255});
  EXPECT_EQ(oBinarize.ApplyParam(oIn, oOut, 255.5), -35);
  EXPECT_EQ(oBinarize.ApplyParam(oIn, oOut, -0.5), -35);
  SetParameter(oBinarize, "White", "256");
  EXPECT_EQ(oBinarize.ApplyParam(oIn, oOut, 10), -35);
  SetParameter(oBinarize, "White", "200");
  SetParameter(oBinarize, "Black", "3");
  EXPECT_EQ(Made<uint8_t>(oBinarize.ApplyParam(oIn, oOut, 10), oOut), (Bytes{3, 200}));
  EXPECT_EQ(Summary(oBinarize), "Thr10 [3;200]");
  // An image may declare a white that its bytes don't reach.
  oIn.SetBlackWhite(0, 400);
  EXPECT_EQ(Made<uint8_t>(oBinarize.ApplyParam(oIn, oOut, 300), oOut), (Bytes{3, 3}));
}

TEST(Labeling, EqualsAPlainFillOnNoiseOfEveryDensity) {
  std::mt19937 oRandom(21);
  ClIpLabeling oLabeling;
  for (int n = 0; n < 60; ++n) {
    const int nWidth = 1 + static_cast<int>(oRandom() % 140), nHeight = 1 + static_cast<int>(oRandom() % 30);
    const auto nDensity = oRandom() % 101;
    Bytes aSamples(static_cast<size_t>(nWidth * nHeight));
    for (uint8_t& nSample : aSamples)
      nSample = oRandom() % 100 < nDensity ? 0 : static_cast<uint8_t>(1 + oRandom() % 255);
    ClImage oIn, oOut;
    SetImage(oIn, nWidth, nHeight, aSamples);
    int nExpected = 0;
    const auto fnIsObject = [&](int x, int y) { return oIn.Row<uint8_t>(y)[x] == 0; };
    const std::vector<int32_t> aExpected = PlainLabels(nWidth, nHeight, fnIsObject, nExpected);
    ASSERT_EQ(oLabeling.ApplyParam(oIn, oOut), 0);
    EXPECT_EQ(oLabeling.m_nLabels, nExpected);
    ASSERT_EQ(Samples<int32_t>(oOut), aExpected) << nWidth << " by " << nHeight << ", density " << nDensity;
  }
}

TEST(Labeling, ErrorsHaveTheirNumbers) {
  ClAnyImages o;
  ClIpLabeling oLabeling;
  EXPECT_EQ(NumberOf([&] { oLabeling.Apply(); }), -37);
  oLabeling.m_pInImage = &o.m_oByte;
  EXPECT_EQ(NumberOf([&] { oLabeling.Apply(); }), -37);
  EXPECT_EQ(NumberOf([&] { oLabeling.ApplyParam(o.m_oByte, o.m_oByte); }), -44);
}
