// Tests of the brightness adjustment, the local white balance and the decomposition of a mosaic.
#include <array>

#include "CallersBlock.h"
#include "MXLiveScannerTools/IpAdjustBrightness.h"
#include "MXLiveScannerTools/IpBayerDecomposition.h"
#include "MXLiveScannerTools/IpLocalWhiteBalance.h"
#include "TestImages.h"

namespace {

using SensorTypes = testing::Types<uint8_t, int8_t, uint16_t, int16_t>;

template <typename T>
T Limited(int64_t nValue) {
  using Limits = std::numeric_limits<T>;
  return static_cast<T>(std::min<int64_t>(std::max<int64_t>(nValue, Limits::lowest()), Limits::max()));
}

}  // namespace

template <typename T>
class SensorTools : public testing::Test {};
TYPED_TEST_SUITE(SensorTools, SensorTypes, ClElementTypeNames);

TYPED_TEST(SensorTools, BrightnessDividesByTheReferenceAboveTheMinimum) {
  std::mt19937 oRandom(61);
  ClIpAdjustBrightness oAdjust;
  for (const double dValue : {1.0, 100.9, 5000.0}) {
    ClImage oIn, oReference, oOut;
    SetRandom<TypeParam>(oIn, 67, 5, oRandom);
    SetRandom<TypeParam>(oReference, 67, 5, oRandom);
    ASSERT_EQ(oAdjust.ApplyParam(oIn, oReference, oOut, dValue), 0);
    const int64_t nValue = ElementFromDouble<TypeParam>(dValue);
    ExpectSamples<TypeParam>(oOut, [&](int x, int y, int) {
      const int64_t nIn = oIn.Row<TypeParam>(y)[x], nBy = oReference.Row<TypeParam>(y)[x];
      return Limited<TypeParam>(nIn * nValue / std::max<int64_t>(nBy, 1));
    });
    const auto aExpected = Samples<TypeParam>(oOut);
    // In place, and over the reference, while another image holds the same block.
    for (ClImage* pOver : {&oIn, &oReference}) {
      ClImage oKeep, oSharer;
      oKeep = *pOver;
      oSharer.Attach(*pOver);
      EXPECT_EQ(Made<TypeParam>(oAdjust.ApplyParam(oIn, oReference, *pOver, dValue), *pOver), aExpected);
      EXPECT_EQ(Samples<TypeParam>(oSharer), Samples<TypeParam>(oKeep));
      pOver->Swap(oKeep);
    }
  }
}

TYPED_TEST(SensorTools, WhiteBalanceDrawsThePhasesTogether) {
  std::mt19937 oRandom(62);
  constexpr int cnWidth = 70, cnHeight = 12;
  ClImage oIn, oOut;
  SetRandom<TypeParam>(oIn, cnWidth, cnHeight, oRandom);
  ClIpLocalWhiteBalance oBalance;
  SetParameter(oBalance, "nInFilterWidth", "5");
  ASSERT_EQ(oBalance.ApplyParam(oIn, oOut), 0);
  const int64_t nOffset = 1 - int64_t{std::numeric_limits<TypeParam>::lowest()};
  const auto MeanOf = [&](int nCellX, int nCellY, int nPhase) {
    int64_t nSum = 0, nCount = 0;
    for (int v = std::max(nCellY - 2, 0); v <= std::min(nCellY + 2, cnHeight / 2 - 1); ++v) {
      for (int u = std::max(nCellX - 2, 0); u <= std::min(nCellX + 2, cnWidth / 2 - 1); ++u, ++nCount) {
        nSum += oIn.Row<TypeParam>(2 * v + nPhase / 2)[2 * u + nPhase % 2];
      }
    }
    return nSum / nCount + nOffset;
  };
  ExpectSamples<TypeParam>(oOut, [&](int x, int y, int) {
    int64_t nAll = 0;
    for (int k = 0; k < 4; ++k) nAll += MeanOf(x / 2, y / 2, k);
    const int64_t nSample = oIn.Row<TypeParam>(y)[x] + nOffset;
    return Limited<TypeParam>(nSample * (nAll / 4) / MeanOf(x / 2, y / 2, 2 * (y % 2) + x % 2) - nOffset);
  });
  ClImage oSharer;
  oSharer.Attach(oIn);
  const auto aBefore = Samples<TypeParam>(oIn);
  EXPECT_EQ(Made<TypeParam>(oBalance.ApplyParam(oIn), oIn), Samples<TypeParam>(oOut));
  EXPECT_EQ(Samples<TypeParam>(oSharer), aBefore);
}

TEST(AdjustBrightness, ARegionIsAllThatIsWritten) {
  ClImage oIn, oReference;
  SetImage<uint8_t>(oIn, 3, 2, {10, 20, 30, 40, 50, 60});
  SetImage<uint8_t>(oReference, 3, 2, Bytes(6, 10));
  ClIpAdjustBrightness oAdjust;
  ASSERT_EQ(oAdjust.ApplyParam(oIn, oReference, oIn, 20.0, 1, 1, 2, 1), 0);
  EXPECT_EQ(Samples<uint8_t>(oIn), (Bytes{10, 20, 30, 40, 100, 120}));
  ASSERT_EQ(oAdjust.ApplyParam(oIn, oReference, oIn, 10.0, 0, 0, 0, 0), 0);
  EXPECT_EQ(oAdjust.m_nInWidth, 3);
  EXPECT_EQ(oAdjust.m_nInHeight, 2);
}

TEST(AdjustBrightness, ErrorsHaveTheirNumbers) {
  ClAnyImages o;
  ClImage oSmall;
  SetImage<uint8_t>(oSmall, 1, 2, {1, 2});
  ClIpAdjustBrightness oAdjust;
  const auto Number = [&](ClImage& oImage, ClImage& oBy) {
    return NumberOf([&] { oAdjust.ApplyParam(oImage, oBy, o.m_oOut, 1.0); });
  };
  EXPECT_EQ(NumberOf([&] { oAdjust.NewIpBase::ClIp1to1Base::ApplyParam(o.m_oByte, o.m_oOut); }), -701);
  EXPECT_EQ(Number(o.m_oColor, o.m_oColor), -44);
  EXPECT_EQ(Number(o.m_oByte, oSmall), -44);
  EXPECT_EQ(Number(o.m_oNoPixels, o.m_oNoPixels), -14);
  EXPECT_EQ(Number(o.m_oByte, o.m_oWord), -103);
  EXPECT_EQ(Number(o.m_oFloat, o.m_oFloat), -33);
  const auto Region = [&](int nX, int nY, int nWidth, int nHeight) {
    return NumberOf(
        [&] { oAdjust.ApplyParam(o.m_oByte, o.m_oByte, o.m_oOut, 1.0, nX, nY, nWidth, nHeight); });
  };
  for (const auto& [nX, nY, nWidth, nHeight] : {std::array{1, 0, 0, 1},
                                                {0, 1, 1, 0},
                                                {-1, 0, 1, 1},
                                                {0, -1, 1, 1},
                                                {0, 0, -1, 1},
                                                {0, 0, 1, -1},
                                                {1, 0, INT32_MAX, 1}}) {
    EXPECT_EQ(Region(nX, nY, nWidth, nHeight), -44) << nX << ", " << nY;
  }
  EXPECT_EQ(Region(1, 1, 1, 1), 0);
  for (const double dMinimum : {0.0, 0.5, -3.0, std::nan("")}) {
    oAdjust.m_nInAdjustmentMin = dMinimum;
    EXPECT_EQ(Region(0, 0, 2, 2), -35);
  }
}

TEST(KeptSensorTools, LetGoOfABlockThatTheirCallerLentForOneRun) {
  ClIpAdjustBrightness oOverInput, oOverReference;
  ClIpLocalWhiteBalance oBalance;
  ClImage oOther(20, 16, 1, 19685, 19685);
  oOther = static_cast<unsigned char>(80);
  ExpectTheCallersBlockIsLetGo(
      {"over the input", [&](ClImage& o) { return oOverInput.ApplyParam(o, oOther, o, 100.0); }});
  ExpectTheCallersBlockIsLetGo(
      {"over the reference", [&](ClImage& o) { return oOverReference.ApplyParam(oOther, o, o, 100.0); }});
  ExpectTheCallersBlockIsLetGo({"balance", [&](ClImage& o) { return oBalance.ApplyParam(o); }});
}

class BalanceOfCells : public testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(Rows, BalanceOfCells, testing::Values(63, 93));

TEST_P(BalanceOfCells, UsesTheMeanFilterOfThePhasesWhateverItsWidth) {
  // Odd and even widths; one that the mean filter rounds; windows that just fit the picture, are too wide for
  // the arithmetic by rows, or for the picture.
  constexpr int cnCellsX = 97;
  const int nCellsY = GetParam();
  std::mt19937 oRandom(64);
  ClImage oIn, oOut, aPhases[4], aMeans[4];
  SetRandom<uint8_t>(oIn, 2 * cnCellsX, 2 * nCellsY, oRandom);
  for (int k = 0; k < 4; ++k) {
    aPhases[k].NewWithType(ClImage::eUint8, cnCellsX, nCellsY, 1, 0, 0, true);
    for (int n = 0; n < cnCellsX * nCellsY; ++n) {
      const int x = n % cnCellsX, y = n / cnCellsX;
      aPhases[k].Row<uint8_t>(y)[x] = oIn.Row<uint8_t>(2 * y + k / 2)[2 * x + k % 2];
    }
  }
  ClIpLocalWhiteBalance oBalance;
  for (const int nWidth : {1, 2, 3, 7, 50, 51, 63, 64, 89, 91, 93, 94, 200}) {
    SCOPED_TRACE(nWidth);
    SetParameter(oBalance, "nInFilterWidth", std::to_string(nWidth).c_str());
    ASSERT_EQ(oBalance.ApplyParam(oIn, oOut), 0);
    for (int k = 0; k < 4; ++k) ClIpFilterMid().ApplyParam(aPhases[k], aMeans[k], nWidth);
    ExpectSamples<uint8_t>(oOut, [&](int x, int y, int) {
      int nAll = 4;
      for (const ClImage& oMeans : aMeans) nAll += oMeans.Row<uint8_t>(y / 2)[x / 2];
      const int nMean = aMeans[2 * (y % 2) + x % 2].Row<uint8_t>(y / 2)[x / 2] + 1;
      return Limited<uint8_t>((oIn.Row<uint8_t>(y)[x] + 1) * (nAll / 4) / nMean - 1);
    });
  }
}

TEST(LocalWhiteBalance, ErrorsHaveTheirNumbers) {
  ClAnyImages o;
  ClImage oOdd;
  SetImage<uint8_t>(oOdd, 3, 2, {1, 2, 3, 4, 5, 6});
  ClIpLocalWhiteBalance oBalance;
  const auto Number = [&](ClImage& oIn) { return NumberOf([&] { oBalance.ApplyParam(oIn, o.m_oOut); }); };
  EXPECT_EQ(NumberOf([&] { oBalance.Apply(); }), -701);
  EXPECT_EQ(Number(oOdd), -44);
  EXPECT_EQ(Number(o.m_oNoPixels), -14);
  EXPECT_EQ(Number(o.m_oColor), -44);
  EXPECT_EQ(Number(o.m_oFloat), -33);
  EXPECT_EQ(Number(o.m_oByte), 0);
  SetParameter(oBalance, "nInFilterWidth", "0");
  EXPECT_EQ(Number(o.m_oByte), -44);
}

template <typename T>
class BayerDecomposition : public testing::Test {};
using MosaicTypes = testing::Types<uint8_t, int8_t, uint16_t, int16_t, float, double>;
TYPED_TEST_SUITE(BayerDecomposition, MosaicTypes, ClElementTypeNames);

TYPED_TEST(BayerDecomposition, PartsEachCellWhereverItsSamplesLie) {
  std::mt19937 oRandom(63);
  ClImage oIn, oRed, oGreen, oBlue;
  SetRandom<TypeParam>(oIn, 70, 4, oRandom);
  ClIpBayerDecomposition oBayer;
  oBayer.m_pInImage = &oIn;
  oBayer.m_pOutImageRed = &oRed;
  oBayer.m_pOutImageGreen = &oGreen;
  oBayer.m_pOutImageBlue = &oBlue;
  for (const bool bTurned : {false, true}) {
    if (bTurned) {
      oBayer.m_oRed = {0, 0};
      oBayer.m_oGreen1 = {1, 0};
      oBayer.m_oGreen2 = {0, 1};
      oBayer.m_oBlue = {1, 1};
    }
    ASSERT_EQ(oBayer.Apply(), 0);
    ASSERT_TRUE(oRed.HasSize(35, 2) && oGreen.HasSize(35, 2) && oBlue.HasSize(35, 2));
    const auto At = [&](int x, int y, int nX, int nY) {
      return static_cast<double>(oIn.Row<TypeParam>(2 * y + nY)[2 * x + (bTurned ? 1 - nX : nX)]);
    };
    ExpectSamples<TypeParam>(oRed, [&](int x, int y, int) { return static_cast<TypeParam>(At(x, y, 1, 0)); });
    ExpectSamples<TypeParam>(oBlue,
                             [&](int x, int y, int) { return static_cast<TypeParam>(At(x, y, 0, 1)); });
    ExpectSamples<TypeParam>(oGreen, [&](int x, int y, int) {
      return ElementFromDouble<TypeParam>((At(x, y, 0, 0) + At(x, y, 1, 1)) / 2);
    });
  }
  EXPECT_EQ(oGreen.PelsX(), 0);
}

TEST(BayerDecompositionErrors, HaveTheirNumbersInOrder) {
  ClAnyImages o;
  ClImage oOdd, oOut2, oOut3;
  SetImage<uint8_t>(oOdd, 2, 1, {1, 2});
  ClIpBayerDecomposition oBayer;
  const auto Number = [&](ClImage* pIn, ClImage* pRed, ClImage* pGreen, ClImage* pBlue) {
    oBayer.m_pInImage = pIn;
    oBayer.m_pOutImageRed = pRed;
    oBayer.m_pOutImageGreen = pGreen;
    oBayer.m_pOutImageBlue = pBlue;
    return NumberOf([&] { oBayer.Apply(); });
  };
  ClImage *pIn = &o.m_oByte, *pOut = &o.m_oOut;
  EXPECT_EQ(Number(nullptr, nullptr, nullptr, nullptr), -44);
  EXPECT_EQ(Number(&o.m_oEmpty, nullptr, nullptr, nullptr), -14);
  EXPECT_EQ(Number(&oOdd, nullptr, nullptr, nullptr), -44);
  EXPECT_EQ(Number(&o.m_oLong, nullptr, nullptr, nullptr), -33);
  EXPECT_EQ(Number(pIn, nullptr, pOut, pOut), -44);
  EXPECT_EQ(Number(pIn, pOut, nullptr, pOut), -44);
  EXPECT_EQ(Number(pIn, pOut, pOut, nullptr), -44);
  EXPECT_EQ(Number(pIn, pOut, &oOut2, pIn), -701);
  EXPECT_EQ(Number(pIn, pOut, &oOut2, pOut), -701);
  EXPECT_EQ(Number(&o.m_oColor, pOut, &oOut2, &oOut3), -44);
  EXPECT_EQ(Number(pIn, pOut, &oOut2, &oOut3), 0);
  oBayer.m_oBlue.m_nX = 2;
  EXPECT_EQ(Number(pIn, pOut, &oOut2, &oOut3), -44);
}
