// Tests of the processors that change or move samples one by one or rearrange planes.
#include <cmath>
#include <functional>

#include "MXImageProcessing/IpConvertDataType.h"
#include "MXImageProcessing/IpCut.h"
#include "MXImageProcessing/IpFlip.h"
#include "MXImageProcessing/IpInvert.h"
#include "MXImageProcessing/IpJoinPlanes.h"
#include "MXImageProcessing/IpMoveImage.h"
#include "MXImageProcessing/IpSaturate.h"
#include "MXImageProcessing/IpScale.h"
#include "MXImageProcessing/IpSplitPlanes.h"
#include "TestImages.h"

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

/// A processor of one image: its call and each sample that it makes.
template <typename T>
struct TpRule {
  std::string m_szName;
  std::function<long(ClImage& oIn, ClImage& oOut)> m_fnRun;
  std::function<T(const ClImage& oIn, int x, int y, int k)> m_fnExpected;
};

TYPED_TEST(EveryType, OneImageProcessorsEqualTheirFormulasInRowsThatAreNotAlignedAndInPlace) {
  using T = TypeParam;
  std::mt19937 oRandom(44);
  ClIpScale oScale;
  ClIpInvert oInvert;
  ClIpSaturate oSaturate;
  ClIpCut oCut;
  ClIpFlip oFlip;
  ClIpMoveImage oMove;
  const auto At = [](const ClImage& o, int x, int y, int k) { return o.Row<T>(y)[x * o.Planes() + k]; };
  std::vector<TpRule<T>> aRules = {
      {"Invert", [&](ClImage& i, ClImage& o) { return oInvert.ApplyParam(i, o); },
       [&](const ClImage& o, int x, int y, int k) {
         return ElementFromDouble<T>(o.White() - static_cast<double>(At(o, x, y, k)) + o.Black());
       }},
      {"Saturate", [&](ClImage& i, ClImage& o) { return oSaturate.ApplyParam(i, o, 3.0, 20.0); },
       [&](const ClImage& o, int x, int y, int k) { return std::clamp<T>(At(o, x, y, k), 3, 20); }},
      {"Cut", [&](ClImage& i, ClImage& o) { return oCut.ApplyParam(i, 2, 1, 33, 4, o); },
       [&](const ClImage& o, int x, int y, int k) { return At(o, x + 2, y + 1, k); }}};
  for (const double dFactor : {-1.75, 1.75}) {
    aRules.push_back({dFactor < 0 ? "Scale" : "Scale up",
                      [&, dFactor](ClImage& i, ClImage& o) { return oScale.ApplyParam(i, o, dFactor); },
                      [&, dFactor](const ClImage& o, int x, int y, int k) {
                        const double dScaled = static_cast<double>(At(o, x, y, k)) * dFactor;
                        return ElementFromDouble<T>(std::clamp(dScaled, o.Black(), o.White()));
                      }});
  }
  for (const auto& [bX, bY] : {std::pair(true, false), {false, true}, {true, true}}) {
    aRules.push_back(
        {"Flip", [&, bX = bX, bY = bY](ClImage& i, ClImage& o) { return oFlip.ApplyParam(i, o, bX, bY); },
         [&, bX = bX, bY = bY](const ClImage& o, int x, int y, int k) {
           return At(o, bX ? o.Width() - 1 - x : x, bY ? o.Height() - 1 - y : y, k);
         }});
  }
  for (const auto& [nX, nY] :
       {std::pair(0, 0), {2, -1}, {-36, 4}, {37, 0}, {-3, -5}, {INT32_MAX, INT32_MIN}}) {
    aRules.push_back(
        {"Move",
         [&, nX = nX, nY = nY](ClImage& i, ClImage& o) { return oMove.ApplyParam(i, o, nX, nY, 100.75); },
         [&, nX = int64_t{nX}, nY = int64_t{nY}](const ClImage& o, int x, int y, int k) {
           const int64_t u = x - nX, v = y - nY;
           if (u < 0 || v < 0 || u >= o.Width() || v >= o.Height()) return static_cast<T>(100.75);
           return At(o, static_cast<int>(u), static_cast<int>(v), k);
         }});
  }
  for (const int nPlanes : {1, 3, 4}) {
    for (const TpRule<T>& oRule : aRules) {
      SCOPED_TRACE(oRule.m_szName);
      ClImage oIn, oOut;
      SetRandom<T>(oIn, 37, 5, oRandom, nPlanes, nPlanes == 1);
      // Ranges of its own, but those that the type always has.
      if (sizeof(T) > 1) oIn.SetBlackWhite(std::is_signed_v<T> ? -60.0 : 3.0, 90.0);
      ASSERT_EQ(oRule.m_fnRun(oIn, oOut), 0);
      if (oRule.m_szName == "Scale") {
        EXPECT_EQ(Summary(oScale), oIn.IsFloating() ? "ScaleFactor = -1.7500" : "ScaleFactor = -2");
      }
      ASSERT_EQ(oOut.DataType(), oIn.DataType());
      ExpectSamples<T>(oOut, [&](int x, int y, int k) { return oRule.m_fnExpected(oIn, x, y, k); });
      ASSERT_EQ(oRule.m_fnRun(oIn, oIn), 0);
      ASSERT_TRUE(oOut.HasSize(oIn.Width(), oIn.Height()));
      EXPECT_EQ(Samples<T>(oIn), Samples<T>(oOut));
    }
  }
}

TEST(SaturateLimits, SaturateToTheTypeAndMustBeInOrder) {
  ClImage oIn, oOut;
  ClAnyImages o;
  SetImage<uint8_t>(oIn, 3, 1, {0, 100, 255});
  ClIpSaturate oSaturate;
  EXPECT_EQ(Made<uint8_t>(oSaturate.ApplyParam(oIn, oOut, -300.0, 500.0), oOut), (Bytes{0, 100, 255}));
  EXPECT_EQ(NumberOf([&] { oSaturate.ApplyParam(oIn, oOut, 2.0, 1.0); }), -44);
  EXPECT_EQ(NumberOf([&] { oSaturate.ApplyParam(o.m_oUnknown, oOut, 1.0, 2.0); }), -33);
}

TYPED_TEST(EveryType, APlaneOfAnImageIsAGreyOneOfItsType) {
  std::mt19937 oRandom(45);
  ClImage oImage, oPlane;
  SetRandom<TypeParam>(oImage, 5, 3, oRandom, 3);
  oImage.GetPlane(1, oPlane);
  EXPECT_EQ(oPlane.DataType(), oImage.DataType());
  EXPECT_EQ(oPlane.Content(), ClImage::eGrayscale);
  ExpectSamples<TypeParam>(oPlane, [&](int x, int y, int) { return oImage.Row<TypeParam>(y)[3 * x + 1]; });
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
  ClAnyImages o;
  ClIpJoinPlanes oJoin;
  const auto Join = [&](ClImage* pSecond) {
    return oJoin.ApplyParam(o.m_oOut, &o.m_oByte, pSecond, nullptr, nullptr);
  };
  EXPECT_EQ(Join(nullptr), 0);
  EXPECT_EQ(o.m_oOut.Width(), 0);
  for (const ClImage::EContent eContent : {ClImage::eXYZ, ClImage::eCIELab}) {
    oJoin.eOutContent = eContent;
    EXPECT_EQ(Join(nullptr), -35);
  }
  oJoin.eOutContent = ClImage::eRGB;
  EXPECT_EQ(NumberOf([&] { Join(&o.m_oWord); }), -44);
  EXPECT_EQ(NumberOf([&] { Join(&o.m_oNoPixels); }), -44);
  ClIpSplitPlanes oSplit;
  EXPECT_EQ(NumberOf([&] { oSplit.ApplyParam(o.m_oByte, nullptr, &o.m_oByte, nullptr, nullptr); }), -44);
  EXPECT_EQ(Samples<uint8_t>(o.m_oByte), (Bytes{1, 2, 3, 4}));
  o.m_oOut.NewWithType(ClImage::eUint8, 1, 1, 5, 0, 0, true);
  EXPECT_EQ(NumberOf([&] { oSplit.ApplyParam(o.m_oOut, nullptr, nullptr, nullptr, nullptr); }), -35);
}
