// Tests of the finger mask, of its texture classes and of its regions.
#include <tuple>

#include "MXKernels/Level.h"
#include "MXLiveScannerTools/IpComputeLBPImage_4Neighborhood.h"
#include "MXLiveScannerTools/IpVT40R4Mask.h"
#include "MXLiveScannerTools/MaskRegions.h"
#include "PlainMask.h"
#include "TestImages.h"
#include "portable/Math.h"

namespace {

/// A dim, noisy platen with a disc of ridges on it, some of them fainter than others, and on that a bright
/// speck.
Grid FingerFrame(int nWidth, int nHeight, double dPeriod, unsigned nSeed, double dRadius = 0.36) {
  std::mt19937 oRandom(nSeed);
  return MakeGrid(nWidth, nHeight, [&](int x, int y) {
    const int nNoise = static_cast<int>(oRandom() % 5);
    const double dX = x - nWidth * 0.45, dY = y - nHeight * 0.6;
    if (std::hypot(dX / nWidth, dY / nHeight) > dRadius) return 9 + nNoise;
    if (std::max(std::fabs(dX), std::fabs(dY)) < 12) return 120 + nNoise;
    const double dRidge = 0.5 + 0.5 * std::cos(std::hypot(dX + 30, dY - 20) * 2 * Portable::cdPi / dPeriod);
    const double dContact = 0.25 + 0.75 * x / nWidth;
    return static_cast<int>(15 + 170 * dRidge * dContact) + nNoise;
  });
}

void SetGrid(ClImage& oImage, const Grid& oGrid, int nPels) {
  SetImage(oImage, oGrid.m_nWidth, oGrid.m_nHeight, Bytes(oGrid.m_aNumbers.begin(), oGrid.m_aNumbers.end()));
  oImage.SetPels(nPels, nPels);
}

void ExpectGrid(const ClImage& oImage, const Grid& oGrid) {
  ASSERT_TRUE(oImage.HasSize(oGrid.m_nWidth, oGrid.m_nHeight));
  ExpectSamples<uint8_t>(oImage, [&](int x, int y, int) { return oGrid.At(x, y); });
}

/// A white mask with one black rectangle in it, or the other way round, kMore pixels longer in its last row.
void SetRegion(ClImage& oMask, uint8_t nRegion, int nRows, int nColumns, int nMore) {
  SetImage(oMask, 120, 100, Bytes(120 * 100, static_cast<uint8_t>(255 - nRegion)));
  for (int y = 20; y < 20 + nRows; ++y) {
    const int nEnd = 10 + nColumns + (y == 19 + nRows ? nMore : 0);
    std::fill(oMask.Row<uint8_t>(y) + 10, oMask.Row<uint8_t>(y) + nEnd, nRegion);
  }
}

}  // namespace

TEST(Mask, EqualsThePlainTwinOnTheInputsOwnAndOnHalfTheResolutionAlsoInPlace) {
  const std::tuple<int, int, double, double, int> aFrames[] = {
      {150, 210, 5.0, 0.36, 9842}, {131, 177, 5.0, 0.7, 9842}, {280, 420, 9.0, 0.36, 19685}};
  ClIpVT40R4Mask oMask;
  for (const auto& [nWidth, nHeight, dPeriod, dRadius, nPels] : aFrames) {
    ClImage oIn, oOut;
    const Grid oFrame = FingerFrame(nWidth, nHeight, dPeriod, 51, dRadius);
    const Grid oExpected = PlainMask(oFrame, nPels == 19685);
    // The comparison is worth something only when there are both fingers and background.
    ASSERT_LT(*std::min_element(oExpected.m_aNumbers.begin(), oExpected.m_aNumbers.end()), 30);
    ASSERT_GT(std::count(oExpected.m_aNumbers.begin(), oExpected.m_aNumbers.end(), 255),
              nWidth * nHeight / 10);
    SetGrid(oIn, oFrame, nPels);
    oIn.SetPels(nPels, nPels - 1);
    ASSERT_EQ(oMask.ApplyParam(oIn, oOut), 0);
    ExpectGrid(oOut, oExpected);
    EXPECT_EQ(std::make_pair(oOut.PelsX(), oOut.PelsY()), std::make_pair(nPels, nPels - 1));
    ASSERT_EQ(oMask.ApplyParam(oIn, oIn), 0);
    ExpectGrid(oIn, oExpected);
  }
}

TEST(Mask, EqualsThePlainTwinAtEveryLevelAlsoOnImagesThatAWindowDoesNotFit) {
  std::vector<std::pair<int, int>> aSizes = {{300, 5}, {9, 260}, {101, 130}, {130, 100}, {66, 150}};
  for (int n = 1; n <= 40; ++n) aSizes.insert(aSizes.end(), {{n, 1 + n * 7 % 41}, {1 + n * 17 % 41, n}});
  const MXKernels::ELevel eBefore = MXKernels::Level();
  ClIpVT40R4Mask oMask;
  for (int nLevel = 0; nLevel < MXKernels::eLevelCount; ++nLevel) {
    if (!MXKernels::SetLevel(static_cast<MXKernels::ELevel>(nLevel))) continue;
    for (const auto& [nWidth, nHeight] : aSizes) {
      SCOPED_TRACE(testing::Message() << "level " << nLevel << ", " << nWidth << " by " << nHeight);
      for (const int nScale : {1, 2}) {
        ClImage oIn, oOut;
        const auto nSeed = static_cast<unsigned>(nWidth * 41 + nHeight);
        const Grid oFrame = FingerFrame(nScale * nWidth, nScale * nHeight, 5.0 * nScale, nSeed, 0.8);
        SetGrid(oIn, oFrame, 9842 * nScale);
        ASSERT_EQ(oMask.ApplyParam(oIn, oOut), 0);
        ExpectGrid(oOut, PlainMask(oFrame, nScale == 2));
      }
    }
  }
  MXKernels::SetLevel(eBefore);
}

TEST(Mask, WidthOrResolutionChooseThePath) {
  const Grid oFrame = FingerFrame(160, 220, 6.0, 53);
  const Grid oOwn = PlainMask(oFrame, false), oHalf = PlainMask(oFrame, true);
  ASSERT_NE(oOwn.m_aNumbers, oHalf.m_aNumbers);
  ClImage oIn, oOut;
  ClIpVT40R4Mask oMask;
  const auto Masked = [&](int nPels) -> const ClImage& {
    SetGrid(oIn, oFrame, nPels);
    oMask.ApplyParam(oIn, oOut);
    return oOut;
  };
  ExpectGrid(Masked(19600), oOwn);
  ExpectGrid(Masked(19601), oHalf);
  SetParameter(oMask, "nInWidth500dpi", "160");
  ExpectGrid(Masked(0), oHalf);
}

TEST(Mask, ADarkFrameIsWhiteEverywhereAtEverySize) {
  ClIpVT40R4Mask oMask;
  for (const auto& [nWidth, nHeight] : {std::pair{1, 1}, {3, 3}, {20, 8}, {128, 160}}) {
    std::mt19937 oRandom(54);
    ClImage oIn, oOut;
    SetGrid(oIn, MakeGrid(nWidth, nHeight, [&](int, int) { return static_cast<int>(oRandom() % 13); }), 9842);
    ASSERT_EQ(oMask.ApplyParam(oIn, oOut), 0);
    EXPECT_EQ(Samples<uint8_t>(oOut), Bytes(static_cast<size_t>(nWidth * nHeight), 255));
  }
}

TEST(Mask, FadesMayBeWiderThanTheImage) {
  ClIpVT40R4Mask oMask;
  ClImage oIn, oOut;
  const Grid oFrame = FingerFrame(150, 210, 5.0, 55);
  SetGrid(oIn, oFrame, 9842);
  for (const int nFade : {256, 257, 5000}) {
    SetParameter(oMask, "nInBottomFade", std::to_string(nFade).c_str());
    ASSERT_EQ(oMask.ApplyParam(oIn, oOut), 0);
    ExpectGrid(oOut, PlainMask(oFrame, false, nFade));
  }
  for (const char* szWidth : {"5000", "-7"}) {
    for (const char* szFade : {"nInLeftFade", "nInRightFade", "nInTopFade", "nInBottomFade"}) {
      SetParameter(oMask, szFade, szWidth);
    }
    EXPECT_EQ(oMask.ApplyParam(oIn, oOut), 0);
  }
}

TEST(Mask, ErrorsHaveTheirNumbers) {
  ClAnyImages o;
  ClIpVT40R4Mask oMask;
  const auto Number = [&](ClImage& oIn) { return NumberOf([&] { oMask.ApplyParam(oIn, o.m_oOut); }); };
  EXPECT_EQ(NumberOf([&] { oMask.Apply(); }), -701);
  EXPECT_EQ(Number(o.m_oWord), -33);
  EXPECT_EQ(Number(o.m_oColor), -44);
  for (const int nWidth : {2, 3}) {
    SetImage<uint8_t>(o.m_oByte, nWidth, 6 / nWidth, {1, 2, 3, 4, 5, 6});
    EXPECT_EQ(Number(o.m_oByte), -44) << "at half the resolution";
  }
  ClImage oEmpty(0, 4, 1, 9842, 9842);
  EXPECT_EQ(Number(oEmpty), -701);
  o.m_oByte.SetPels(9842, 9842);
  EXPECT_EQ(oMask.ApplyParam(o.m_oByte, o.m_oOut, 250, 1.0), 0);
}

TEST(MaskRegions, AHoleOf3999PixelsAndAnIslandOf2999GoAndLargerOnesStay) {
  ClMaskRegions oRegions;
  ClImage oMask;
  for (const auto& [nRegion, nColumns] : {std::pair(uint8_t{0}, 80), {uint8_t{255}, 60}}) {
    const auto Remove = [&, bHole = nRegion == 0] {
      bHole ? oRegions.FillHoles(oMask) : oRegions.RemoveIslands(oMask);
      return Samples<uint8_t>(oMask);
    };
    // One pixel short of 50 full rows.
    SetRegion(oMask, nRegion, 50, nColumns - 1, 49);
    EXPECT_EQ(Remove(), Bytes(120 * 100, static_cast<uint8_t>(255 - nRegion)));
    SetRegion(oMask, nRegion, 50, nColumns, 0);
    const auto aBefore = Samples<uint8_t>(oMask);
    EXPECT_EQ(Remove(), aBefore);
  }
}

TEST(MaskRegions, RandomMasksEqualThePlainTwin) {
  ClMaskRegions oRegions;
  ClImage oMask;
  std::mt19937 oRandom(56);
  for (const auto& [nWidth, nHeight, nSet] :
       {std::tuple(1, 1, 1U), {64, 3, 2U}, {150, 140, 2U}, {201, 190, 3U}, {260, 130, 5U}, {190, 160, 8U}}) {
    for (int nTrial = 0; nTrial < 8; ++nTrial) {
      // About as many blobs as leave regions on both sides of the limits; the last masks are noise.
      Grid oGrid = MakeGrid(nWidth, nHeight, [&, nOf = nSet](int, int) { return oRandom() % nOf ? 255 : 0; });
      if (nTrial < 6) oGrid = PlainMean(oGrid, 3 + 2 * nTrial);
      for (int& n : oGrid.m_aNumbers) n = n >= 255 - 255 / static_cast<int>(nSet) ? 255 : 0;
      SetGrid(oMask, oGrid, 0);
      oRegions.RemoveIslands(oMask);
      PlainReplace(oGrid, 255, 2999, false);
      ExpectGrid(oMask, oGrid);
      oRegions.FillHoles(oMask);
      PlainReplace(oGrid, 0, 3999, true);
      ExpectGrid(oMask, oGrid);
    }
  }
}

TEST(MaskRegions, OnlyTheUpperCornersAreOpenBackground) {
  ClMaskRegions oRegions;
  ClImage oMask;
  SetImage<uint8_t>(oMask, 3, 3, {0, 255, 0, 255, 255, 255, 0, 255, 0});
  oRegions.FillHoles(oMask);
  EXPECT_EQ(Samples<uint8_t>(oMask), (Bytes{0, 255, 0, 255, 255, 255, 255, 255, 255}));
}

TEST(Texture, ClassesOfInnerPixelsOnlyAndOneImageForEach) {
  ClImage oIn, oOut;
  SetImage<uint8_t>(oIn, 4, 4, {0, 9, 0, 0, 0, 5, 9, 0, 0, 9, 5, 0, 0, 0, 0, 0});
  ClIpComputeLBPImage_4Neighborhood oTexture;
  oTexture.m_poInImage = &oIn;
  oTexture.m_poOutImage = &oOut;
  // (1, 1) has three brighter neighbours, (2, 2) two adjacent ones; equal ones don't count. A second run must
  // not show the first one's classes.
  Bytes aExpected(16, 0);
  aExpected[5] = 3, aExpected[10] = 2;
  for (int nRun = 0; nRun < 2; ++nRun, oIn = 0, aExpected = Bytes(16, 0)) {
    EXPECT_EQ(Made<uint8_t>(oTexture.Apply(), oOut), aExpected);
    for (unsigned int nClass = 0; nClass < 6; ++nClass) {
      Bytes aMembers(16, 0);
      for (const size_t n : {5U, 6U, 9U, 10U}) aMembers[n] = aExpected[n] == nClass ? 255 : 0;
      EXPECT_EQ(Samples<uint8_t>(oTexture.m_aoClassImages[nClass]), aMembers) << nClass;
    }
  }
  EXPECT_EQ(oOut.PelsX(), 19685);
}

TEST(Texture, SmallImagesHaveNoInnerPixelsAndErrorsTheirNumbers) {
  ClImage oIn, oOut;
  ClIpComputeLBPImage_4Neighborhood oTexture;
  EXPECT_EQ(NumberOf([&] { oTexture.Apply(); }), -701);
  oTexture.m_poInImage = &oIn;
  oTexture.m_poOutImage = &oOut;
  for (const auto& [nWidth, nHeight] : {std::pair{5, 2}, {2, 5}, {1, 1}}) {
    SetImage(oIn, nWidth, nHeight, Bytes(static_cast<size_t>(nWidth * nHeight), 8));
    ASSERT_EQ(oTexture.Apply(), 0);
    EXPECT_EQ(Samples<uint8_t>(oTexture.m_aoClassImages[0]), Bytes(static_cast<size_t>(nWidth * nHeight), 0));
  }
  SetImage<int8_t>(oIn, 3, 3, std::vector<int8_t>(9, 0));
  EXPECT_EQ(NumberOf([&] { oTexture.Apply(); }), -44);
}
