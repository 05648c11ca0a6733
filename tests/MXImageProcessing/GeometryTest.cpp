// Tests of mirror, cut, reduction, shift and turn.
#include <gmock/gmock.h>

#include <cmath>

#include "MXImageProcessing/IpCut.h"
#include "MXImageProcessing/IpFlip.h"
#include "MXImageProcessing/IpRotate.h"
#include "MXImageProcessing/IpSubsample.h"
#include "TestImages.h"

/// A pixel of the turned image by the rule of its rows, with a test of its own and wide sums.
template <typename T>
T SlowTurn(const ClImage& oIn, const ClVector& oCentre, double dAngle, const ClVector& oShift, int x, int y,
           bool bInterpolate, T nBackground) {
  const auto Fixed = [](double d) { return static_cast<int64_t>(d); };
  const auto Real = [](int64_t n) { return static_cast<double>(n); };
  const int64_t nCos = Fixed(std::cos(dAngle) * 4096), nSin = Fixed(std::sin(dAngle) * 4096);
  const int64_t nMaxX = (oIn.Width() - 1) * 4096, nMaxY = (oIn.Height() - 1) * 4096;
  const auto IsInside = [x](int64_t nStart, int64_t nStep, int64_t nMax) {
    if (nStep == 0) return nStart >= 0 && nStart <= nMax;
    const int64_t nA = -nStart / nStep, nB = (nMax - nStart) / nStep;
    return x > std::min(nA, nB) && x < std::max(nA, nB);
  };
  const double u = 0 - oCentre.x - oShift.x, v = y - oCentre.y - oShift.y;
  const int64_t nX0 = Fixed(v * Real(nSin)) + Fixed(u * Real(nCos)) + Fixed(oCentre.x * 4096);
  const int64_t nY0 = Fixed(v * Real(nCos)) + Fixed(u * Real(-nSin)) + Fixed(oCentre.y * 4096);
  const int64_t nX = nX0 + x * nCos, nY = nY0 - x * nSin, nFx = nX & 4095, nFy = nY & 4095;
  if (!IsInside(nX0, nCos, nMaxX) || !IsInside(nY0, -nSin, nMaxY)) return nBackground;
  const auto Pixel = [&](int64_t nDx, int64_t nDy) {
    return int64_t{oIn.Row<T>(static_cast<int>((nY >> 12) + nDy))[(nX >> 12) + nDx]};
  };
  if (!bInterpolate) return static_cast<T>(Pixel(0, 0));
  if (nX >= nMaxX || nY >= nMaxY) return nBackground;
  return static_cast<T>(((4096 - nFx) * (4096 - nFy) * Pixel(0, 0) + nFx * (4096 - nFy) * Pixel(1, 0) +
                         nFx * nFy * Pixel(1, 1) + (4096 - nFx) * nFy * Pixel(0, 1)) >>
                        24);
}

TYPED_TEST(EveryByteType, TurnsByEveryAngleAsATestForEachPixelDoes) {
  std::mt19937 oRandom(34);
  for (int nCase = 0; nCase < 400; ++nCase) {
    SCOPED_TRACE(nCase);
    ClImage oIn, oOut;
    const int nWidth = 1 + static_cast<int>(oRandom() % 23), nHeight = 1 + static_cast<int>(oRandom() % 17);
    SetRandom<TypeParam>(oIn, nWidth, nHeight, oRandom);
    // Every fifth one turns by quarters, where an axis has no step.
    const double dAngle = nCase % 5 == 0 ? (nCase / 5 % 7 - 3) * std::acos(-1.0) / 2 : (nCase - 200) * 0.037;
    if (dAngle == 0) continue;
    const ClVector oCentre(static_cast<int>(oRandom() % 40) - 10 + 0.25, static_cast<int>(oRandom() % 20));
    const bool bResize = nCase % 2 != 0, bInterpolate = nCase % 4 > 1;
    ClIpRotate oRotate;
    oRotate.SetBackgroundColor(200);
    ASSERT_EQ(oRotate.ApplyParam(oIn, oOut, oCentre, dAngle, bResize, bInterpolate), 0);
    std::vector<double> aX, aY;
    for (const double dX : {-oCentre.x, nWidth - 1.0 - oCentre.x}) {
      for (const double dY : {-oCentre.y, nHeight - 1.0 - oCentre.y}) {
        aX.push_back(std::cos(dAngle) * dX - std::sin(dAngle) * dY + oCentre.x);
        aY.push_back(std::sin(dAngle) * dX + std::cos(dAngle) * dY + oCentre.y);
      }
    }
    std::sort(aX.begin(), aX.end()), std::sort(aY.begin(), aY.end());
    ASSERT_TRUE(oOut.HasSize(bResize ? static_cast<int>(aX[3] + 1 - aX[0]) : nWidth,
                             bResize ? static_cast<int>(aY[3] + 1 - aY[0]) : nHeight));
    const ClVector oShift = bResize ? ClVector(std::trunc(-aX[0]), std::trunc(-aY[0])) : ClVector();
    ExpectSamples<TypeParam>(oOut, [&](int x, int y, int) {
      return SlowTurn<TypeParam>(oIn, oCentre, dAngle, oShift, x, y, bInterpolate,
                                 static_cast<TypeParam>(200));
    });
    EXPECT_EQ(oOut.PelsX(), 19685);
  }
}

TEST(Rotate, TransformLeadsToWhereThePixelsWent) {
  ClImage oIn(64, 48, 1, 0, 0), oOut;
  oIn = static_cast<unsigned char>(0);
  for (const int y : {29, 30, 31})
    std::fill_n(oIn.Row<unsigned char>(y) + 19, 3, static_cast<unsigned char>(255));
  for (const bool bResize : {false, true}) {
    ClIpRotate oRotate;
    oRotate.SetBackgroundColor(0);
    ASSERT_EQ(oRotate.ApplyParam(oIn, oOut, ClVector(32, 24), 0.3, bResize, false), 0);
    double dX = 0, dY = 0, dCount = 0;
    for (int y = 0; y < oOut.Height(); ++y) {
      for (int x = 0; x < oOut.Width(); ++x) {
        if (oOut.Row<unsigned char>(y)[x] == 255) dX += x, dY += y, ++dCount;
      }
    }
    const ClVector oThere = oRotate.Transform({20, 30}), oBack = oRotate.TransformInverse(oThere);
    EXPECT_NEAR(oThere.x, dX / dCount, 1.5) << bResize;
    EXPECT_NEAR(oThere.y, dY / dCount, 1.5) << bResize;
    EXPECT_TRUE(oBack.IsNear({20, 30}));
  }
}

TEST(Rotate, PlanesTurnAboutTheSamePointAndAnAngleOfNothingCopiesAnyType) {
  std::mt19937 oRandom(35);
  ClImage oIn, oOut, oPlane, oOfPlane, oTurned;
  SetRandom<uint8_t>(oIn, 13, 9, oRandom, 3);
  ClIpRotate oRotate;
  ASSERT_EQ(oRotate.ApplyParam(oIn, oOut, ClVector(2, 7), 0.8, true, true), 0);
  for (int k = 0; k < 3; ++k) {
    oIn.GetPlane(k, oPlane);
    ASSERT_EQ(ClIpRotate().ApplyParam(oPlane, oTurned, ClVector(2, 7), 0.8, true, true), 0);
    oOut.GetPlane(k, oOfPlane);
    EXPECT_EQ(Samples<uint8_t>(oOfPlane), Samples<uint8_t>(oTurned)) << k;
  }
  SetRandom<double>(oIn, 5, 2, oRandom);
  ASSERT_EQ(oRotate.ApplyParam(oIn, oOut, ClVector(1, 1), 0, true, true), 0);
  EXPECT_EQ(Samples<double>(oOut), Samples<double>(oIn));
}

TEST(Rotate, ErrorsHaveTheirNumbers) {
  ClAnyImages o;
  ClIpRotate oRotate;
  const auto Apply = [&](ClImage& oFrom, ClImage& oTo, ClVector oCentre, double dAngle) {
    return NumberOf([&] {
      const long nResult = oRotate.ApplyParam(oFrom, oTo, oCentre, dAngle, true, false);
      if (nResult != 0) KLV_RAISE_NUMBER(nResult);
    });
  };
  EXPECT_EQ(oRotate.Apply(), -10);
  EXPECT_EQ(Apply(o.m_oEmpty, o.m_oOut, {}, 1), -10);
  EXPECT_EQ(Apply(o.m_oByte, o.m_oByte, {}, 1), -10);
  EXPECT_EQ(Apply(o.m_oByte, o.m_oOut, {}, NAN), -35);
  EXPECT_EQ(Apply(o.m_oByte, o.m_oOut, {0, INFINITY}, 1), -35);
  EXPECT_EQ(Apply(o.m_oWord, o.m_oOut, {}, 1), -101);
  EXPECT_EQ(Apply(o.m_oByte, o.m_oOut, {}, -0.5), 0);
  EXPECT_EQ(Summary(oRotate), "-0.500rad Resize");
}

TEST(Flip, ATypeChangeConvertsTooAndWithoutADirectionItIsRefused) {
  ClImage oIn, oOut;
  SetImage<int16_t>(oIn, 2, 2, {1, 300, -1, 4});
  ClIpFlip oFlip;
  EXPECT_EQ(NumberOf([&] { oFlip.ApplyParam(oIn, oOut, false, false); }), -44);
  EXPECT_FALSE(oFlip.CanApply());
  oFlip.ApplyParam(oIn, oOut, false, true);
  EXPECT_TRUE(oFlip.CanApply());
  ASSERT_EQ(oFlip.ApplyParam(oIn, oOut, static_cast<unsigned char>(ClImage::eUint8)), 0);
  EXPECT_EQ(Samples<uint8_t>(oOut), (Bytes{255, 4, 1, 44}));
}

TEST(Cut, EachBrokenEdgeHasItsTextAndTheOutputStays) {
  ClImage oIn, oOut;
  SetImage<uint8_t>(oIn, 4, 3, Bytes(12, 1));
  SetImage<uint8_t>(oOut, 1, 1, {42});
  const struct {
    long nX, nY, nWidth, nHeight;
    const char* szText;
  } aCases[] = {{-1, 0, 1, 1, "m_nX0 < 0"},
                {0, -1, 1, 1, "m_nY0 < 0"},
                {4, 0, 1, 1, "m_nX0>=m_pInImage->Width()"},
                {0, 3, 1, 1, "m_nY0>=m_pInImage->Height()"},
                {0, 0, 0, 1, "m_nDestWidth <= 0"},
                {0, 0, 1, 0, "m_nDestHeight <= 0"},
                {1, 0, std::numeric_limits<long>::max(), 1, "m_nX0+m_nDestWidth > m_pInImage->Width()"},
                {0, 1, 1, 3, "m_nY0+m_nDestHeight > m_pInImage->Height()"}};
  ClIpCut oCut;
  for (const auto& oCase : aCases) {
    EXPECT_THAT(Raised([&] { oCut.ApplyParam(oIn, oCase.nX, oCase.nY, oCase.nWidth, oCase.nHeight, oOut); }),
                testing::Pair(-35, testing::HasSubstr(oCase.szText)));
    EXPECT_EQ(Samples<uint8_t>(oOut), (Bytes{42}));
  }
}

TEST(Subsample, MeansAreCutAlongTheRowsFirstAndTheLastCellsAreSmaller) {
  ClImage oIn, oOut;
  SetImage<uint8_t>(oIn, 5, 3,
                    {1, 2, 3, 4, 255,  //
                     2, 2, 9, 0, 254,  //
                     5, 6, 7, 8, 9});
  ClIpSubsample oSubsample;
  ASSERT_EQ(oSubsample.ApplyParam(oIn, 2, oOut, true), 0);
  // Rows first: (1+2)/2 = 1, (3+4)/2 = 3, 255; 2, 4, 254; 5, 7, 9. Then (1+2)/2, (3+4)/2, (255+254)/2; 5, 7,
  // 9.
  EXPECT_EQ(Samples<uint8_t>(oOut), (Bytes{1, 3, 254, 5, 7, 9}));
  EXPECT_TRUE(oOut.HasSize(3, 2));
  EXPECT_EQ(oOut.PelsX(), 19685 / 2);
  // The padding repeats the last pixel.
  EXPECT_EQ(oOut.Row<uint8_t>(0)[3], 254);
  EXPECT_EQ(Made<uint8_t>(oSubsample.ApplyParam(oIn, 2, oOut, false), oOut), (Bytes{1, 3, 255, 5, 7, 9}));
  EXPECT_EQ(Made<uint8_t>(oSubsample.ApplyParam(oIn, 1, oOut, true), oOut), Samples<uint8_t>(oIn));
  EXPECT_EQ(Made<uint8_t>(oSubsample.ApplyParam(oIn, 5, 3, oOut, true), oOut), (Bytes{(53 + 53 + 7) / 3}));
}

TEST(Subsample, SignedMeansAreCutTowardZeroWideOnesDoNotOverflowAndPlanesAreReducedOneByOne) {
  ClImage oIn, oOut;
  SetImage<int8_t>(oIn, 2, 2, {-1, 1, -2, 3, -1, 5, -2, 7}, 2);
  ClIpSubsample oSubsample;
  EXPECT_EQ(Made<int8_t>(oSubsample.ApplyParam(oIn, 2, oOut, true), oOut), (std::vector<int8_t>{-1, 4}));
  EXPECT_EQ(oIn.Planes(), 2);
  SetImage(oIn, 600, 1, Bytes(600, 255));
  ASSERT_EQ(oSubsample.ApplyParam(oIn, 600, 1, oOut, true), 0);
  EXPECT_EQ(oOut.Row<uint8_t>(0)[0], 255);
  SetImage(oIn, 3, 2, std::vector<int16_t>(6, -32768));
  ASSERT_EQ(oSubsample.ApplyParam(oIn, 3, oOut, true), 0);
  EXPECT_EQ(oOut.Row<int16_t>(0)[0], -32768);
}

TEST(Subsample, ErrorsHaveTheirNumbers) {
  ClAnyImages o;
  ClIpSubsample oSubsample;
  const auto Apply = [&](ClImage& oIn, ClImage& oOut, int nRateX) {
    return NumberOf([&] { oSubsample.ApplyParam(oIn, nRateX, 1, oOut, false); });
  };
  EXPECT_EQ(NumberOf([&] { oSubsample.Apply(); }), -701);
  EXPECT_EQ(Apply(o.m_oByte, o.m_oOut, 0), -44);
  EXPECT_EQ(Apply(o.m_oByte, o.m_oByte, 2), -44);
  EXPECT_EQ(Apply(o.m_oLong, o.m_oOut, 2), -103);
  EXPECT_EQ(NumberOf([&] { oSubsample.ApplyParam(o.m_oByte, -1, o.m_oOut, true); }), -44);
  EXPECT_EQ(Apply(o.m_oByte, o.m_oOut, 2), 0);
  EXPECT_EQ(Summary(oSubsample), "SubX2,SubY1,Mid=No");
}
