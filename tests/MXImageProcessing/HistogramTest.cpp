// Tests of the histogram.
#include <gmock/gmock.h>

#include <cmath>
#include <utility>

#include "MXImageProcessing/Histogram.h"
#include "TestImages.h"

namespace {

template <typename T>
ClHistogram HistogramOf(const std::vector<T>& aSamples) {
  ClImage oImage;
  SetImage(oImage, static_cast<int>(aSamples.size()), 1, aSamples);
  ClHistogram oHistogram;
  oHistogram.Create(oImage);
  return oHistogram;
}

}  // namespace

TEST(Histogram, CountsARectangleWithExclusiveEndsClampedToTheImage) {
  ClImage oImage;
  SetImage<uint8_t>(oImage, 3, 2, {1, 2, 2, 9, 2, 1});
  ClHistogram oHistogram;
  const auto CountOfTwo = [&](int nX0, int nY0, int nX1, int nY1) {
    oHistogram.Create(oImage, nX0, nY0, nX1, nY1);
    return std::pair(oHistogram.Count(2), oHistogram.GetColorCount());
  };
  EXPECT_EQ(CountOfTwo(0, 0, 3, 2), std::pair(3, 3));
  EXPECT_EQ(std::pair(oHistogram.FirstValue(), oHistogram.LastValue()), std::pair(1, 9));
  EXPECT_EQ(std::pair(oHistogram.MinCount(), oHistogram.MaxCount()), std::pair(0, 3));
  EXPECT_EQ(CountOfTwo(1, -5, 2, 99), std::pair(2, 1));
  EXPECT_EQ(CountOfTwo(3, 0, 9, 2), std::pair(0, 0));
}

TEST(Histogram, SignedImagesAreShiftedBy128) {
  ClImage oImage;
  SetImage<int8_t>(oImage, 4, 1, {-128, -3, 0, 127});
  ClHistogram oHistogram;
  oHistogram.Create(oImage);
  EXPECT_EQ(std::pair(oHistogram.Offset(), oHistogram.Count(125)), std::pair(128, 1));
  EXPECT_EQ(std::pair(oHistogram.FirstValue(), oHistogram.LastValue()), std::pair(-128, 127));
  EXPECT_DOUBLE_EQ(oHistogram.GetGreyMid(0, 255), -1.0);
  EXPECT_DOUBLE_EQ(oHistogram.GetBrightestAvrg(1), 255.0);
  EXPECT_DOUBLE_EQ(oHistogram.GetDarkestAvrg(2), (0 + 125) / 2.0);
  oHistogram.Create(oImage, 90, 0, 99, 1);
  EXPECT_EQ(oHistogram.Offset(), 128) << "of a rectangle outside the image";
}

TEST(Histogram, MeansAndDeviationsAreThoseOfTheSamples) {
  const ClHistogram oHistogram = HistogramOf(Bytes{2, 4, 4, 4, 5, 5, 7, 9});
  EXPECT_DOUBLE_EQ(oHistogram.GetGreyMid(0, 255), 5.0);
  EXPECT_DOUBLE_EQ(oHistogram.GetGreyMid(5, 7), 17.0 / 3);
  EXPECT_DOUBLE_EQ(oHistogram.GetGreyMid(10, 21), 15.0);
  EXPECT_DOUBLE_EQ(oHistogram.GetGreyMid(21, 10), 15.0);
  EXPECT_DOUBLE_EQ(oHistogram.GetStdDeviation(0, 255), std::sqrt(32.0 / 7));
  EXPECT_DOUBLE_EQ(oHistogram.GetStdDeviation(9, 9), 0.0);
  EXPECT_DOUBLE_EQ(oHistogram.GetAverageDeviation(), 12.0 / 8);
  EXPECT_DOUBLE_EQ(oHistogram.GetUniformity(), (1 + 9 + 4 + 1 + 1) / 64.0);
  // The brightest five are 9, 7, 5, 5 and one of the three 4.
  EXPECT_DOUBLE_EQ(oHistogram.GetBrightestAvrg(5), 30.0 / 5);
  EXPECT_DOUBLE_EQ(oHistogram.GetDarkestAvrg(3), 10.0 / 3);
  EXPECT_DOUBLE_EQ(oHistogram.GetBrightestAvrg(8), 5.0);
  // Without the lowest and the highest quarter 4, 4, 5, 5 are left.
  EXPECT_DOUBLE_EQ(oHistogram.GetAverage(0.25, 0.75), 4.5);
  EXPECT_DOUBLE_EQ(oHistogram.GetAverage(0.0, 1.0), 5.0);
}

TEST(Histogram, RangesOfBinsGiveWhatCountingOneByOneGives) {
  std::mt19937 oRandom(22);
  ClHistogram oHistogram;
  for (int n = 0; n < 40; ++n) {
    ClImage oImage;
    if (n % 2 == 0) SetRandom<uint8_t>(oImage, 13, 31, oRandom);
    if (n % 2 == 1) SetRandom<int8_t>(oImage, 40, 7, oRandom);
    oHistogram.Create(oImage);
    const int nFirst = static_cast<int>(oRandom() % 256);
    const int nLast = nFirst + static_cast<int>(oRandom() % static_cast<unsigned>(256 - nFirst));
    const auto nPos1 = static_cast<uint8_t>(nFirst), nPos2 = static_cast<uint8_t>(nLast);
    int nSum = 0, nWeighted = 0, nMin = nFirst, nMax = nFirst;
    const auto CountAt = [&](int i) { return oHistogram.Count(static_cast<uint8_t>(i)); };
    for (int i = nFirst; i <= nLast; ++i) {
      nSum += CountAt(i);
      nWeighted += i * CountAt(i);
      if (CountAt(i) < CountAt(nMin)) nMin = i;
      if (CountAt(i) > CountAt(nMax)) nMax = i;
    }
    const int nShift = oHistogram.Offset();
    EXPECT_EQ(oHistogram.GetMid(nPos1, nPos2), nSum / (nLast - nFirst + 1));
    EXPECT_EQ(oHistogram.GetLocalMin(nPos1, nPos2), nMin - nShift);
    EXPECT_EQ(oHistogram.GetLocalMax(nPos1, nPos2), nMax - nShift);
    EXPECT_EQ(oHistogram.GetCentreOfMass(nPos1, nPos2),
              nSum > 0 ? nWeighted / nSum - nShift : (nFirst + nLast) / 2);
    double aSlopes[256];
    const int nWidth = 1 + n;
    oHistogram.CalcFirstDerivation(nWidth, aSlopes);
    for (int i = nWidth; i <= 255 - nWidth; ++i) {
      double dSlopes = 0;
      for (int k = 1; k <= nWidth; ++k) dSlopes += (CountAt(i + k) - CountAt(i - k)) * 0.5 / k;
      ASSERT_NEAR(aSlopes[i], dSlopes / nWidth, 1e-12);
    }
    const ClHistogram oBefore = oHistogram;
    oHistogram.LowPass(nWidth);
    for (int i = 0; i < 256; ++i) {
      int nBins = 0, nTotal = 0;
      for (int k = std::max(0, i - nWidth / 2); k <= std::min(255, i + nWidth / 2); ++k, ++nBins)
        nTotal += oBefore.Count(static_cast<uint8_t>(k));
      ASSERT_EQ(CountAt(i), nTotal / nBins) << nWidth;
    }
  }
}

TEST(Histogram, SmoothingWithoutAWidthAveragesThreeBinsTwice) {
  ClHistogram oHistogram = HistogramOf(Bytes(27, 1));
  oHistogram.LowPass();
  // 0 27 0 0 0 becomes 13 9 9 0 0 and then (13 + 9) / 2, 31 / 3, 18 / 3, 9 / 3, 0.
  constexpr int aExpected[] = {11, 10, 6, 3, 0};
  for (uint8_t i = 0; i < 5; ++i) EXPECT_EQ(oHistogram.Count(i), aExpected[i]);
}

TEST(Histogram, TheNoiseFreeRangeCountsEachShareFromItsOwnEnd) {
  ClImage oImage;
  SetImage<int8_t>(oImage, 10, 1, {-3, -2, -2, 5, 5, 5, 5, 5, 9, 11});
  ClHistogram oHistogram;
  unsigned char nFirst, nLast;
  oHistogram.GetRange(oImage, 0.0, 0.0, nFirst, nLast);
  EXPECT_EQ(std::make_pair(int{nFirst}, int{nLast}), std::make_pair(125, 139));
  const auto RangeOf = [&](const ClHistogram& o, double dLow, double dHigh) {
    o.GetNoiseFreeRange(dLow, dHigh, nFirst, nLast);
    return std::make_pair(int{nFirst}, int{nLast});
  };
  EXPECT_EQ(RangeOf(oHistogram, 0.1, 0.2), std::make_pair(126, 133));
  EXPECT_EQ(RangeOf(oHistogram, 1.0, 1.0), std::make_pair(255, 0));
  EXPECT_EQ(RangeOf(ClHistogram(), 0.1, 0.1), std::make_pair(255, 0));
}

TEST(Histogram, WalksEndOnTheHillAndInTheValley) {
  // The counts go up to bin 60, down to nFoot, and up to 255: bin i holds 10 * |i - foot| samples.
  const auto Ramps = [](int nFoot) {
    Bytes aSamples;
    for (int i = 0; i < 256; ++i) {
      const int nHeight = 10 * (i <= 60 ? i : i <= nFoot ? nFoot - i : i - nFoot);
      aSamples.insert(aSamples.end(), static_cast<size_t>(nHeight), static_cast<uint8_t>(i));
    }
    return HistogramOf(aSamples);
  };
  const ClHistogram oHistogram = Ramps(120);
  EXPECT_EQ(oHistogram.Climb(20, 4), 60);
  EXPECT_EQ(oHistogram.Climb(100, 4), 60);
  EXPECT_EQ(oHistogram.Climb(200, 4), 255);
  EXPECT_EQ(oHistogram.Descend(80, 4), 120);
  EXPECT_EQ(oHistogram.Descend(255, 4), 120);
  EXPECT_EQ(oHistogram.Descend(1, 4), 0);
  EXPECT_FALSE(oHistogram.IsUnimodal(0));
  // The counts rise one bin after the foot; only from bin 240 on this does not matter.
  EXPECT_FALSE(Ramps(238).IsUnimodal(0));
  EXPECT_TRUE(Ramps(239).IsUnimodal(0));
}

TEST(Histogram, TwoClustersAreParted) {
  // Means 15 and 210 part at 112.5, rounded up; the lower cluster is the wider one.
  const ClHistogram oHistogram = HistogramOf(Bytes{0, 10, 20, 30, 208, 210, 210, 212});
  EXPECT_EQ(oHistogram.TwoMeansClustering(false), 113);
  double dMean1, dDeviation1, dMean2, dDeviation2;
  EXPECT_EQ(oHistogram.TwoMeansClustering(dMean1, dMean2, 100), 113U);
  EXPECT_EQ(std::make_pair(dMean1, dMean2), std::make_pair(15.0, 210.0));
  const auto nLevel = oHistogram.TwoMeansClustering(dMean1, dDeviation1, dMean2, dDeviation2, 100);
  EXPECT_DOUBLE_EQ(dDeviation1, std::sqrt(500.0 / 3));
  EXPECT_DOUBLE_EQ(dDeviation2, std::sqrt(8.0 / 3));
  EXPECT_EQ(oHistogram.TwoMeansClustering(true), static_cast<int>(nLevel));
  const auto DensityAt = [](double dX, double dMean, double dDeviation) {
    return std::exp(-0.5 * std::pow((dX - dMean) / dDeviation, 2)) / (dDeviation * dDeviation);
  };
  EXPECT_GT(DensityAt(nLevel, dMean2, dDeviation2), DensityAt(nLevel, dMean1, dDeviation1));
  EXPECT_LE(DensityAt(nLevel - 1, dMean2, dDeviation2), DensityAt(nLevel - 1, dMean1, dDeviation1));
  // A signed image gives the same threshold, less the shift.
  const std::vector<int8_t> aSigned{-128, -118, -108, -98, 80, 82, 82, 84};
  EXPECT_EQ(HistogramOf(aSigned).TwoMeansClustering(false), 113 - 128);
  EXPECT_EQ(HistogramOf(Bytes(3, 255)).TwoMeansClustering(false), 255);
  // All samples are in one bin: the middle of the empty upper cluster rises to 237, where the threshold
  // stays.
  EXPECT_EQ(HistogramOf(Bytes(3, 200)).TwoMeansClustering(false), 219);
}

TEST(Histogram, AnEmptyOneDividesByNothing) {
  const ClHistogram oHistogram;
  EXPECT_EQ(oHistogram.FirstValue(), 255);
  EXPECT_EQ(oHistogram.LastValue(), 0);
  EXPECT_DOUBLE_EQ(oHistogram.GetAverageDeviation(), 0.0);
  EXPECT_DOUBLE_EQ(oHistogram.GetUniformity(), 0.0);
  EXPECT_TRUE(std::isfinite(oHistogram.GetAverage(0.1, 0.9)));
  EXPECT_DOUBLE_EQ(oHistogram.GetBrightestAvrg(0), 0.0);
}

TEST(Histogram, ErrorsHaveTheirNumbers) {
  ClAnyImages o;
  ClHistogram oHistogram;
  EXPECT_EQ(NumberOf([&] { oHistogram.Create(o.m_oColor); }), -101);
  EXPECT_EQ(NumberOf([&] { oHistogram.Create(o.m_oByte, 1, 0, 1, 1); }), -101);
  EXPECT_EQ(NumberOf([&] { oHistogram.Create(o.m_oWord); }), -33);
  oHistogram.Create(o.m_oByte);
  EXPECT_EQ(NumberOf([&] { oHistogram.GetBrightestAvrg(5); }), -44);
  EXPECT_EQ(NumberOf([&] { oHistogram.GetDarkestAvrg(5); }), -44);
  for (const auto& [pfnGet, szName] : {std::pair(&ClHistogram::GetMid, "GetMid"),
                                       {&ClHistogram::GetLocalMin, "GetLocalMin"},
                                       {&ClHistogram::GetLocalMax, "GetLocalMax"},
                                       {&ClHistogram::GetCentreOfMass, "GetCentreOfMass"}}) {
    const std::string sText = std::string(szName) + "(BYTE nPos1, BYTE nPos2): nPos2 >= nPos1 must given.";
    EXPECT_THAT(Raised([&, pfn = pfnGet] { (oHistogram.*pfn)(3, 2); }),
                testing::Pair(-35, testing::HasSubstr("ClHistogram::" + sText)));
  }
}
