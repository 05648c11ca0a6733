// Tests of the processors that change samples one by one or rearrange planes.
#include <cmath>

#include "MXImageProcessing/IpConvertDataType.h"
#include "MXImageProcessing/IpInvert.h"
#include "MXImageProcessing/IpJoinPlanes.h"
#include "MXImageProcessing/IpSaturate.h"
#include "MXImageProcessing/IpScale.h"
#include "MXImageProcessing/IpSplitPlanes.h"
#include "TestImages.h"

TEST(ConvertDataType, EveryPairOfTypesConvertsAsACast) {
  std::mt19937 oRandom(41);
  for (int nPair = 0; nPair < 64; ++nPair) {
    const unsigned char nFrom = g_aTypes[nPair / 8], nTo = g_aTypes[nPair % 8];
    SCOPED_TRACE(testing::Message() << int{nFrom} << " to " << int{nTo});
    ClImage oIn, oOut;
    SetRandomOfType(oIn, nFrom, 13, 2, oRandom, 2);
    ClIpConvertDataType oConvert;
    ASSERT_EQ(oConvert.ApplyParam(oIn, oOut, nTo), 0);
    ASSERT_EQ(oOut.DataType(), nTo);
    ExpectNumbers(oOut, [&](int x, int y, int k) {
      const long double dIn = SampleAt(oIn, 2 * x + k, y), dOut = SampleAt(oOut, 2 * x + k, y);
      if (nTo == ClImage::eFloat32) return static_cast<long double>(static_cast<float>(dIn));
      if (oOut.IsFloating()) return dIn;
      // The samples of floats lie within 64 of 0; only the unsigned types have a limit there.
      if (oIn.IsFloating()) return oOut.IsSigned() ? std::trunc(dIn) : std::max(std::trunc(dIn), 0.0L);
      // The same number modulo the size of the target.
      return dOut + std::fmod(dIn - dOut, std::ldexp(1.0L, 8 * oOut.ElementSize()));
    });
  }
}

TEST(ConvertDataType, FloatsGoTowardZeroAndStopAtTheLimits) {
  ClImage oIn, oOut;
  SetImage<float>(oIn, 6, 1, {-1.9F, 1.9F, 1e9F, -1e9F, NAN, 127.99F});
  ClIpConvertDataType oConvert;
  ASSERT_EQ(oConvert.ApplyParam(oIn, oOut, ClImage::eInt8), 0);
  EXPECT_EQ(Samples<int8_t>(oOut), (std::vector<int8_t>{-1, 1, 127, -128, 0, 127}));
  EXPECT_EQ(oOut.White(), 127);
  SetImage<uint16_t>(oIn, 1, 1, {300});
  EXPECT_EQ(Made<uint8_t>(oConvert.ApplyParam(oIn, ClImage::eUint8), oIn), (Bytes{44}));
}

TEST(Scale, ProductsAreLimitedToBlackAndWhite) {
  ClImage oImage;
  SetImage<int16_t>(oImage, 2, 1, {-5, 7, 30000, -30000}, 2);
  ClIpScale oScale;
  ASSERT_EQ(oScale.ApplyParam(oImage, -1.5), 0);
  EXPECT_EQ(Samples<int16_t>(oImage), (std::vector<int16_t>{7, -10, -32768, 32767}));
  EXPECT_EQ(Summary(oScale), "ScaleFactor = -2");
}

TYPED_TEST(EveryType, PointRulesEqualTheirFormulasInRowsThatAreNotAlignedAndInPlace) {
  std::mt19937 oRandom(44);
  ClImage oIn, oOut;
  SetRandom<TypeParam>(oIn, 35, 3, oRandom, 2, false);
  // Ranges of its own, but those that the type always has.
  if (!std::is_same_v<TypeParam, uint8_t> && !std::is_same_v<TypeParam, int8_t>) oIn.SetBlackWhite(3.0, 90.0);
  const double dBlack = oIn.Black(), dWhite = oIn.White();
  std::vector<TypeParam> aScaled, aInverted, aSaturated;
  for (const TypeParam nSample : Samples<TypeParam>(oIn)) {
    const double dScaled = std::min(std::max(static_cast<double>(nSample) * 1.75, dBlack), dWhite);
    aScaled.push_back(ElementFromDouble<TypeParam>(dScaled));
    aInverted.push_back(ElementFromDouble<TypeParam>(dWhite - static_cast<double>(nSample) + dBlack));
    aSaturated.push_back(std::min<TypeParam>(std::max<TypeParam>(nSample, 3), 20));
  }
  ClIpScale oScale;
  ClIpInvert oInvert;
  ClIpSaturate oSaturate;
  for (ClImage* pOut : {&oOut, &oIn}) {
    ClImage oKeep;
    oKeep = oIn;
    EXPECT_EQ(Made<TypeParam>(oScale.ApplyParam(oIn, *pOut, 1.75), *pOut), aScaled);
    if (pOut == &oIn) oIn = oKeep;
    EXPECT_EQ(Made<TypeParam>(oSaturate.ApplyParam(oIn, *pOut, 3.0, 20.0), *pOut), aSaturated);
    if (pOut == &oIn) oIn = oKeep;
    EXPECT_EQ(Made<TypeParam>(oInvert.ApplyParam(oIn, *pOut), *pOut), aInverted);
  }
  EXPECT_EQ(oOut.White(), dWhite);
}

TEST(SaturateBorders, AreCutToTheTypeAndMustBeInOrder) {
  ClImage oIn, oOut;
  ClAnyImages o;
  SetImage<uint8_t>(oIn, 3, 1, {0, 100, 255});
  ClIpSaturate oSaturate;
  EXPECT_EQ(Made<uint8_t>(oSaturate.ApplyParam(oIn, oOut, -300.0, 500.0), oOut), (Bytes{0, 100, 255}));
  EXPECT_EQ(NumberOf([&] { oSaturate.ApplyParam(oIn, oOut, 2.0, 1.0); }), -44);
  EXPECT_EQ(NumberOf([&] { oSaturate.ApplyParam(o.m_oUnknown, oOut, 1.0, 2.0); }), -33);
}

TEST(Planes, SplitAndJoinAreInverseInEveryType) {
  std::mt19937 oRandom(43);
  for (const unsigned char nType : g_aTypes) {
    ClImage oIn, aPlanes[4], oOut;
    SetRandomOfType(oIn, nType, 7, 5, oRandom, 4);
    ClIpSplitPlanes oSplit;
    ASSERT_EQ(oSplit.ApplyParam(oIn, &aPlanes[0], &aPlanes[1], &aPlanes[2], &aPlanes[3]), 0);
    EXPECT_EQ(SampleAt(aPlanes[2], 3, 4), SampleAt(oIn, 3 * 4 + 2, 4));
    ClIpJoinPlanes oJoin;
    oJoin.eOutContent = ClImage::eRGBA;
    ASSERT_EQ(oJoin.ApplyParam(oOut, &aPlanes[0], &aPlanes[1], &aPlanes[2], &aPlanes[3]), 0);
    EXPECT_EQ(oOut.Content(), ClImage::eRGBA);
    for (int x = 0; x < 28; ++x) ASSERT_EQ(SampleAt(oOut, x, 3), SampleAt(oIn, x, 3));
  }
}

TEST(Planes, MissingPlanesTakeTheFillColourAndMissingOutputsAreSkipped) {
  ClImage oRed, oGreen, oOut, oBlue;
  SetImage<uint8_t>(oRed, 2, 1, {1, 2});
  SetImage<uint8_t>(oGreen, 2, 1, {3, 4});
  ClIpJoinPlanes oJoin;
  oJoin.eOutContent = ClImage::eRGB;
  oJoin.dInFillcolors[2] = 99.0;
  ASSERT_EQ(oJoin.ApplyParam(oOut, &oRed, &oGreen, nullptr, nullptr), 0);
  EXPECT_EQ(Samples<uint8_t>(oOut), (Bytes{1, 3, 99, 2, 4, 99}));
  // A colour that is not set is 0, in a floating image too.
  ClImage oFloat, oFloatOut;
  SetImage<float>(oFloat, 1, 1, {0.5F});
  ASSERT_EQ(oJoin.ApplyParam(oFloatOut, nullptr, &oFloat, nullptr, nullptr), 0);
  EXPECT_EQ(Samples<float>(oFloatOut), (std::vector<float>{0.0F, 0.5F, 99.0F}));
  oJoin.bFillEmptyPlanes = false;
  oFloatOut.Row<float>(0)[2] = 7.0F;
  ASSERT_EQ(oJoin.ApplyParam(oFloatOut, nullptr, &oFloat, nullptr, nullptr), 0);
  EXPECT_EQ(Samples<float>(oFloatOut), (std::vector<float>{0.0F, 0.5F, 7.0F}));
  ClIpSplitPlanes oSplit;
  EXPECT_EQ(Made<uint8_t>(oSplit.ApplyParam(oOut, nullptr, nullptr, &oBlue, &oRed), oBlue), (Bytes{99, 99}));
  EXPECT_EQ(Samples<uint8_t>(oRed), (Bytes{1, 2}));
}

TEST(Planes, JoinRefusesContentsWithoutANumberOfPlanesAndPlanesThatDiffer) {
  ClImage oRed, oWide, oOut;
  SetImage<uint8_t>(oRed, 2, 1, {1, 2});
  SetImage<uint8_t>(oWide, 3, 1, {1, 2, 3});
  ClIpJoinPlanes oJoin;
  EXPECT_EQ(oJoin.ApplyParam(oOut, &oRed, nullptr, nullptr, nullptr), 0);
  EXPECT_EQ(oOut.Width(), 0);
  for (const ClImage::EContent eContent : {ClImage::eXYZ, ClImage::eCIELab}) {
    oJoin.eOutContent = eContent;
    EXPECT_EQ(oJoin.ApplyParam(oOut, &oRed, nullptr, nullptr, nullptr), -35);
  }
  oJoin.eOutContent = ClImage::eRGB;
  EXPECT_EQ(NumberOf([&] { oJoin.ApplyParam(oOut, &oRed, &oWide, nullptr, nullptr); }), -44);
  ClImage oFive;
  oFive.NewWithType(ClImage::eUint8, 1, 1, 5, 0, 0, true);
  ClIpSplitPlanes oSplit;
  EXPECT_EQ(NumberOf([&] { oSplit.ApplyParam(oFive, nullptr, nullptr, nullptr, nullptr); }), -35);
  EXPECT_EQ(NumberOf([&] { oSplit.ApplyParam(oRed, nullptr, &oRed, nullptr, nullptr); }), -44);
  EXPECT_EQ(Samples<uint8_t>(oRed), (Bytes{1, 2}));
}
