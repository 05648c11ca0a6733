// Resizing against its definition.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include "../MXImageProcessing/CallersBlock.h"
#include "MXLiveScannerTools/TpIpSubsampleFilter.h"
#include "MXTools/Exception.h"
#include "MXTools/FpImage.h"
#include "Raised.h"

namespace {

using ClFilter = ClIpSubsampleFilter<ClFilterLanczos2>;

void FillRandom(ClImage& oImage, int nWidth, int nHeight) {
  oImage.NewWithType(ClImage::eUint8, nWidth, nHeight, 1, 4000, 3000, true);
  std::mt19937 oRandom(5);
  for (size_t n = 0; n < oImage.DataBytes(); ++n) oImage.Data()[n] = static_cast<unsigned char>(oRandom());
}

/// One axis by its definition, sample by sample.
std::vector<uint8_t> SlowAxis(const std::vector<uint8_t>& aIn, int nOut) {
  const int nIn = static_cast<int>(aIn.size());
  std::vector<uint8_t> aOut;
  for (int j = 0; j < nOut; ++j) {
    const double c = static_cast<double>(nIn) * j / nOut;
    const double w = 2.0 * nIn / nOut;
    if (w < 2.0) {
      aOut.push_back(aIn[static_cast<size_t>(std::max(0.0, c - w))]);
      continue;
    }
    const double dPi = std::acos(-1.0);
    int nSum = 0;
    int nWeights = 0;
    for (int i = std::max(0, static_cast<int>(c - w) - 1);
         i <= std::min(nIn - 1, static_cast<int>(c + w) + 1); ++i) {
      const double x = 2 * (i - c) / w;
      double dWeight = 0;
      if (x == 0) {
        dWeight = 1;
      } else if (std::fabs(x) < w) {
        dWeight = std::sin(dPi * x) * std::sin(dPi * x * 0.5) / (dPi * dPi * x * x * 0.5);
      }
      nSum += static_cast<int>(dWeight * 1024) * aIn[static_cast<size_t>(i)];
      nWeights += static_cast<int>(dWeight * 1024);
    }
    aOut.push_back(static_cast<uint8_t>(std::min(255, std::max(0, nSum / nWeights))));
  }
  return aOut;
}

void ExpectResized(int nWidth, int nHeight, int nNewWidth, int nNewHeight) {
  SCOPED_TRACE(testing::Message() << nWidth << 'x' << nHeight << " to " << nNewWidth << 'x' << nNewHeight);
  ClImage oIn;
  ClImage oOut;
  FillRandom(oIn, nWidth, nHeight);
  ASSERT_EQ(ClFilter().ApplyParam(oIn, oOut, nNewWidth, nNewHeight), 0);
  ASSERT_TRUE(oOut.HasSize(nNewWidth, nNewHeight));
  EXPECT_EQ(oOut.PelsX(), 4000 * nNewWidth / nWidth);
  EXPECT_EQ(oOut.PelsY(), 3000 * nNewHeight / nHeight);
  std::vector<std::vector<uint8_t>> aColumns;
  for (int nX = 0; nX < nWidth; ++nX) {
    std::vector<uint8_t> aColumn;
    for (int nY = 0; nY < nHeight; ++nY) aColumn.push_back(oIn.Row<uint8_t>(nY)[nX]);
    aColumns.push_back(nHeight == nNewHeight ? aColumn : SlowAxis(aColumn, nNewHeight));
  }
  for (int nY = 0; nY < nNewHeight; ++nY) {
    std::vector<uint8_t> aRow;
    for (const auto& aColumn : aColumns) aRow.push_back(aColumn[static_cast<size_t>(nY)]);
    if (nWidth != nNewWidth) aRow = SlowAxis(aRow, nNewWidth);
    ASSERT_TRUE(std::equal(aRow.begin(), aRow.end(), oOut.Row<uint8_t>(nY))) << "row " << nY;
  }
}

TEST(SubsampleFilter, EachWayOfResizingEqualsItsDefinition) {
  ExpectResized(96, 20, 64, 20);
  ExpectResized(61, 9, 17, 9);
  ExpectResized(33, 50, 33, 21);
  ExpectResized(40, 60, 20, 30);
  ExpectResized(47, 31, 13, 29);
  ExpectResized(30, 30, 20, 45);
  ExpectResized(20, 40, 50, 30);
}

TEST(SubsampleFilter, AFlatImageStaysFlat) {
  ClImage oIn;
  ClImage oOut;
  FillRandom(oIn, 90, 80);
  oIn = static_cast<unsigned char>(173);
  ClFilter().ApplyParam(oIn, oOut, 40, 37);
  for (int nY = 0; nY < 37; ++nY) {
    for (int nX = 0; nX < 40; ++nX) ASSERT_EQ(oOut.Row<uint8_t>(nY)[nX], 173);
  }
}

TEST(SubsampleFilter, AFilterIsUsedForImagesOfSeveralSizesAndInPlace) {
  ClFilter oFilter;
  ClImage oFirst;
  ClImage oSecond;
  ClImage oExpected;
  FillRandom(oFirst, 60, 40);
  FillRandom(oSecond, 50, 44);
  ClFilter().ApplyParam(oSecond, oExpected, 32, 22);
  oFilter.ApplyParam(oFirst, oFirst, 32, 20);
  oFilter.ApplyParam(oSecond, oSecond, 32, 22);
  EXPECT_TRUE(oFirst.HasSize(32, 20));
  EXPECT_EQ(std::vector<uint8_t>(oSecond.Data(), oSecond.Data() + oSecond.DataBytes()),
            std::vector<uint8_t>(oExpected.Data(), oExpected.Data() + oExpected.DataBytes()));
}

TEST(SubsampleFilter, LetsGoOfABlockThatItsCallerLentForOneRun) {
  ClFilter oAcross, oBoth;
  ExpectTheCallersBlockIsLetGo({"across", [&](ClImage& o) { return oAcross.ApplyParam(o, o, 17, 16); }});
  ExpectTheCallersBlockIsLetGo({"both", [&](ClImage& o) { return oBoth.ApplyParam(o, o, 16, 20); }});
}

TEST(SubsampleFilter, RefusesWhatItCannotResize) {
  ClImage oIn;
  ClImage oOut;
  FillRandom(oIn, 300, 40);
  const auto oRefused = [&](int nWidth, int nHeight) {
    return NumberOf([&] { ClFilter().ApplyParam(oIn, oOut, nWidth, nHeight); });
  };
  EXPECT_EQ(oRefused(300, 40), -44) << "the size that it has";
  EXPECT_EQ(oRefused(301, 40), -44);
  EXPECT_EQ(oRefused(0, 40), -44);
  EXPECT_EQ(oRefused(30, -1), -44);
  EXPECT_EQ(oRefused(5, 40), -44) << "more taps than there is room for";
  EXPECT_EQ(oRefused(10, 40), 0);
  oIn.NewWithType(ClImage::eUint8, 90, 40, 3, 0, 0, true);
  EXPECT_EQ(oRefused(30, 20), -44);
  oIn.NewWithType(ClImage::eInt16, 90, 40, 1, 0, 0, true);
  EXPECT_EQ(oRefused(30, 20), -44);
  oIn.Delete();
  EXPECT_EQ(oRefused(30, 20), -44);
}

}  // namespace
