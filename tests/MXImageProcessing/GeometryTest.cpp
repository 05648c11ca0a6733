// Tests of mirror, cut and reduction.
#include "MXImageProcessing/IpCut.h"
#include "MXImageProcessing/IpFlip.h"
#include "MXImageProcessing/IpSubsample.h"
#include "TestImages.h"

template <typename T>
class Geometry : public testing::Test {};
TYPED_TEST_SUITE(Geometry, AllElementTypes, ClElementTypeNames);

TYPED_TEST(Geometry, FlipMovesWholePixelsAlsoInPlace) {
  std::mt19937 oRandom(31);
  for (const int nPlanes : {1, 3, 4}) {
    for (int nFlags = 1; nFlags <= 3; ++nFlags) {
      const bool bX = nFlags & 1, bY = nFlags & 2;
      ClImage oIn, oOut;
      SetRandom<TypeParam>(oIn, 37, 4, oRandom, nPlanes);
      ClIpFlip oFlip;
      ASSERT_EQ(oFlip.ApplyParam(oIn, oOut, bX, bY), 0);
      for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 37; ++x) {
          for (int k = 0; k < nPlanes; ++k) {
            ASSERT_EQ(oOut.Row<TypeParam>(y)[x * nPlanes + k],
                      oIn.Row<TypeParam>(bY ? 3 - y : y)[(bX ? 36 - x : x) * nPlanes + k]);
          }
        }
      }
      const auto aExpected = Samples<TypeParam>(oOut);
      ASSERT_EQ(oFlip.ApplyParam(oIn, oIn, bX, bY), 0);
      EXPECT_EQ(Samples<TypeParam>(oIn), aExpected);
    }
  }
}

TYPED_TEST(Geometry, CutCopiesTheRectangle) {
  std::mt19937 oRandom(32);
  ClImage oIn, oOut;
  SetRandom<TypeParam>(oIn, 9, 7, oRandom, 2);
  ClIpCut oCut;
  ASSERT_EQ(oCut.ApplyParam(oIn, 2, 1, 5, 4, oOut), 0);
  ASSERT_TRUE(oOut.HasSize(5, 4));
  for (int y = 0; y < 4; ++y) {
    for (int x = 0; x < 10; ++x) ASSERT_EQ(oOut.Row<TypeParam>(y)[x], oIn.Row<TypeParam>(y + 1)[x + 4]);
  }
  const auto aAll = Samples<TypeParam>(oIn);
  ASSERT_EQ(oCut.ApplyParam(oIn, 0, oIn), 0);
  EXPECT_EQ(Samples<TypeParam>(oIn), aAll);
  ASSERT_EQ(oCut.ApplyParam(oIn, 3, oIn), 0);
  EXPECT_TRUE(oIn.HasSize(3, 1));
  EXPECT_EQ(oIn.PelsY(), 9842);
}

TEST(Flip, ATypeChangeConvertsWithoutMirroringTheRows) {
  ClImage oIn, oOut;
  SetImage<int16_t>(oIn, 2, 2, {1, 300, -1, 4});
  ClIpFlip oFlip;
  oFlip.ApplyParam(oIn, oOut, false, true);
  ASSERT_EQ(oFlip.ApplyParam(oIn, oOut, static_cast<unsigned char>(ClImage::eUint8)), 0);
  EXPECT_EQ(Samples<uint8_t>(oOut), (std::vector<uint8_t>{255, 4, 1, 44}));
}

TEST(Flip, WithoutADirectionItRefuses) {
  ClImage oIn, oOut;
  SetImage<uint8_t>(oIn, 1, 1, {1});
  ClIpFlip oFlip;
  EXPECT_EQ(RaisedNumber([&] { oFlip.ApplyParam(oIn, oOut, false, false); }), -44);
  EXPECT_FALSE(oFlip.CanApply());
  EXPECT_EQ(oFlip.ApplyParam(oIn, oOut, true, false), 0);
  EXPECT_TRUE(oFlip.CanApply());
}

TEST(Cut, EachBrokenEdgeHasItsTextAndTheOutputStays) {
  ClImage oIn, oOut;
  SetImage<uint8_t>(oIn, 4, 3, std::vector<uint8_t>(12, 1));
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
    try {
      oCut.ApplyParam(oIn, oCase.nX, oCase.nY, oCase.nWidth, oCase.nHeight, oOut);
      ADD_FAILURE() << oCase.szText;
    } catch (const ClException& oFailure) {
      EXPECT_EQ(oFailure.Number(), -35);
      EXPECT_NE(std::string(oFailure.What()).find(oCase.szText), std::string::npos) << oFailure.What();
    }
    EXPECT_EQ(Samples<uint8_t>(oOut), (std::vector<uint8_t>{42}));
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
  // Rows first: (1+2)/2 = 1, (3+4)/2 = 3, 255; 2, 4, 254; 5, 7, 9. Then (1+2)/2, (3+4)/2, (255+254)/2; 5, 7, 9.
  EXPECT_EQ(Samples<uint8_t>(oOut), (std::vector<uint8_t>{1, 3, 254, 5, 7, 9}));
  EXPECT_TRUE(oOut.HasSize(3, 2));
  EXPECT_EQ(oOut.PelsX(), 19685 / 2);
  // The padding repeats the last pixel.
  EXPECT_EQ(oOut.Row<uint8_t>(0)[3], 254);
  ASSERT_EQ(oSubsample.ApplyParam(oIn, 2, oOut, false), 0);
  EXPECT_EQ(Samples<uint8_t>(oOut), (std::vector<uint8_t>{1, 3, 255, 5, 7, 9}));
  ASSERT_EQ(oSubsample.ApplyParam(oIn, 1, oOut, true), 0);
  EXPECT_EQ(Samples<uint8_t>(oOut), Samples<uint8_t>(oIn));
  ASSERT_EQ(oSubsample.ApplyParam(oIn, 5, 3, oOut, true), 0);
  EXPECT_EQ(Samples<uint8_t>(oOut), (std::vector<uint8_t>{(53 + 53 + 7) / 3}));
}

TEST(Subsample, SignedMeansAreCutTowardZeroAndWideOnesDoNotOverflow) {
  ClImage oIn, oOut;
  SetImage<int8_t>(oIn, 2, 1, {-1, -2});
  ClIpSubsample oSubsample;
  ASSERT_EQ(oSubsample.ApplyParam(oIn, 2, oOut, true), 0);
  EXPECT_EQ(oOut.Row<int8_t>(0)[0], -1);
  SetImage(oIn, 600, 1, std::vector<uint8_t>(600, 255));
  ASSERT_EQ(oSubsample.ApplyParam(oIn, 600, 1, oOut, true), 0);
  EXPECT_EQ(oOut.Row<uint8_t>(0)[0], 255);
  SetImage(oIn, 3, 2, std::vector<int16_t>(6, -32768));
  ASSERT_EQ(oSubsample.ApplyParam(oIn, 3, oOut, true), 0);
  EXPECT_EQ(oOut.Row<int16_t>(0)[0], -32768);
}

TEST(Subsample, SeveralPlanesAreReducedOneByOne) {
  ClImage oIn, oOut;
  SetImage<uint8_t>(oIn, 2, 2, {10, 1, 20, 3, 30, 5, 40, 7}, 2);
  ClIpSubsample oSubsample;
  ASSERT_EQ(oSubsample.ApplyParam(oIn, 2, oOut, true), 0);
  EXPECT_EQ(Samples<uint8_t>(oOut), (std::vector<uint8_t>{25, 4}));
  EXPECT_EQ(oOut.Planes(), 2);
  EXPECT_EQ(oIn.Planes(), 2);
}

TEST(Subsample, ErrorsHaveTheirNumbers) {
  ClImage oIn, oOut, oWide;
  SetImage<uint8_t>(oIn, 2, 1, {1, 2});
  SetImage<int32_t>(oWide, 1, 1, {1});
  ClIpSubsample oSubsample;
  EXPECT_EQ(RaisedNumber([&] { oSubsample.Apply(); }), -701);
  EXPECT_EQ(RaisedNumber([&] { oSubsample.ApplyParam(oIn, 0, 2, oOut, true); }), -44);
  EXPECT_EQ(RaisedNumber([&] { oSubsample.ApplyParam(oIn, -1, oOut, true); }), -44);
  EXPECT_EQ(RaisedNumber([&] { oSubsample.ApplyParam(oIn, 2, oIn, true); }), -44);
  EXPECT_EQ(RaisedNumber([&] { oSubsample.ApplyParam(oWide, 2, oOut, true); }), -103);
  char szText[40];
  oSubsample.ApplyParam(oIn, 2, 1, oOut, false);
  oSubsample.ParameterString(szText, sizeof(szText));
  EXPECT_STREQ(szText, "SubX2,SubY1,Mid=No");
}
