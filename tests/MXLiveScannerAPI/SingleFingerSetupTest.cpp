// Frames of the single-finger scanner against a slow version of the processing.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "MXLiveScannerAPI/VT4SetupCalibrationData.h"
#include "MXTools/Exception.h"
#include "Raised.h"

namespace {

using testing::EndsWith;
using Bytes = std::vector<unsigned char>;

constexpr int cnWidth = 620;
constexpr int cnHeight = 430;

Bytes Block(uint32_t nCentreX, uint32_t nCentreY) {
  Bytes aBytes(4, 0xA5);
  for (const uint32_t n : {nCentreX, nCentreY}) {
    for (int nShift = 0; nShift < 32; nShift += 8) aBytes.push_back(static_cast<unsigned char>(n >> nShift));
  }
  return aBytes;
}

void Update(ClVT4SetupCalibrationData& oSetup, const Bytes& aBlock) {
  oSetup.Setup(aBlock.data(), static_cast<unsigned int>(aBlock.size()), nullptr, 0);
}

void FillFrame(ClImage& oFrame, int nWidth, int nHeight) {
  oFrame.NewWithType(ClImage::eUint8, nWidth, nHeight, 1, 40000, 20000, true);
  std::mt19937 oRandom(5);
  for (int y = 0; y < nHeight; ++y) {
    for (int x = 0; x < nWidth; ++x) {
      oFrame.Row<uint8_t>(y)[x] = static_cast<uint8_t>(x / 8 + y / 9 + static_cast<int>(oRandom() % 60));
    }
  }
}

/// The mean of the two columns of the window that become column x.
int Halved(const ClImage& oFrame, int nCentreX, int nCentreY, int x, int y) {
  const uint8_t* pRow = oFrame.Row<uint8_t>(nCentreY - 215 + y) + nCentreX - 620;
  return (pRow[2 * x] + pRow[2 * x + 1]) / 2;
}

/// The mean of the samples that [n * nStep, (n + 1) * nStep) covers.
template <typename TSample>
int AreaMean(int n, int nStep, const TSample& fnSample) {
  int nSum = 0;
  for (int nAt = n * nStep; nAt < (n + 1) * nStep;) {
    const int nNext = std::min((nAt / 4096 + 1) * 4096, (n + 1) * nStep);
    nSum += (nNext - nAt) * fnSample(nAt / 4096);
    nAt = nNext;
  }
  return nSum / nStep;
}

/// A triangle of light with its peak in row 180, smoothed over the 15 rows that exist.
int Reference(int nRow) {
  int nSum = 0;
  int nCount = 0;
  for (int y = std::max(nRow - 7, 0); y <= std::min(nRow + 7, cnHeight - 1); ++y, ++nCount) {
    nSum += y < 180 ? 165 + y / 2 : y < 360 ? 165 + (360 - y) / 2 : 165;
  }
  return nSum / nCount;
}

TEST(SingleFinger, AFullImageIsTheWindowHalvedAndFlattened) {
  ClImage oFrame;
  FillFrame(oFrame, 1400, 600);
  ClVT4SetupCalibrationData oSetup("VT41AC0001");
  ClImage oOut;
  for (const auto& [nX, nY] : {std::pair{700, 300}, {620, 215}, {780, 385}}) {
    Update(oSetup, Block(static_cast<uint32_t>(nX), static_cast<uint32_t>(nY)));
    oSetup.CalibrateFull(oFrame, oOut);
    ASSERT_TRUE(oOut.HasSize(cnWidth, cnHeight));
    for (int y = 0; y < cnHeight; ++y) {
      for (int x = 0; x < cnWidth; ++x) {
        const int nExpected = std::min(Halved(oFrame, nX, nY, x, y) * 255 / Reference(y), 255);
        ASSERT_EQ(oOut.Row<uint8_t>(y)[x], nExpected) << x << ", " << y;
      }
    }
  }
}

TEST(SingleFinger, AMiniImageIsTheWindowsAreaMeansWithoutFlattening) {
  ClImage oFrame;
  FillFrame(oFrame, 1300, 450);
  ClVT4SetupCalibrationData oSetup(nullptr);
  Update(oSetup, Block(650, 220));
  ClImage oOut;
  oSetup.CalibrateMini(oFrame, oOut);
  ASSERT_TRUE(oOut.HasSize(360, 256));
  EXPECT_EQ(oOut.PelsX(), 19685);
  EXPECT_EQ(oOut.PelsY(), 19685);
  // Areas in 4096ths of a pixel, by the ratio of whole pels, truncated along x and then along y.
  const int nStepX = (19685 << 12) / (19685 * 360 / cnWidth);
  const int nStepY = (19685 << 12) / (19685 * 256 / cnHeight);
  for (int x = 0; x < 359; x += 7) {
    std::vector<int> aColumn;
    aColumn.reserve(cnHeight);
    for (int v = 0; v < cnHeight; ++v)
      aColumn.push_back(AreaMean(x, nStepX, [&](int u) { return Halved(oFrame, 650, 220, u, v); }));
    for (int y = 0; y < 255; ++y) {
      const int nExpected = AreaMean(y, nStepY, [&](int v) { return aColumn[static_cast<size_t>(v)]; });
      ASSERT_EQ(oOut.Row<uint8_t>(y)[x], nExpected) << x << ", " << y;
    }
  }
}

TEST(SingleFinger, RefusesOtherBlocksAndKeepsWhatItHas) {
  ClImage oFrame;
  FillFrame(oFrame, 1240, 430);
  ClVT4SetupCalibrationData oSetup("VT41AB0001");
  ClImage oBefore;
  ClImage oAfter;
  EXPECT_NE(NumberOf([&] { oSetup.CalibrateFull(oFrame, oBefore); }), 0) << "no centre yet";
  Update(oSetup, Block(620, 215));
  oSetup.CalibrateFull(oFrame, oBefore);
  for (const size_t nSize : {0u, 11u, 13u}) {
    Bytes aBlock = Block(1, 1);
    aBlock.resize(nSize, 0);
    EXPECT_THAT(Raised([&] { Update(oSetup, aBlock); }),
                testing::Pair(-101, EndsWith("Wrong size of geometric calibration data.")))
        << nSize;
  }
  oSetup.Reset(true, true);
  oSetup.CalibrateFull(oFrame, oAfter);
  EXPECT_TRUE(std::equal(oBefore.Data(), oBefore.Data() + oBefore.DataBytes(), oAfter.Data()));
  for (const auto& [nX, nY] : {std::pair{619u, 215u}, {621u, 215u}, {620u, 214u}, {0x80000000u, 215u}}) {
    Update(oSetup, Block(nX, nY));
    EXPECT_EQ(NumberOf([&] { oSetup.CalibrateMini(oFrame, oAfter); }), -35) << nX << ", " << nY;
  }
}

TEST(SingleFinger, HasOneExposureAndNoPreview) {
  ClVT4SetupCalibrationData oSetup("VT41ZZ0001");
  EXPECT_EQ(oSetup.GetExposure(), 288u);
  EXPECT_EQ(oSetup.GetScannerRevision(), 675u);
  ClImage oFrame;
  FillFrame(oFrame, 40, 30);
  ClImage oOut;
  oSetup.CalibratePreview(oFrame, oOut);
  EXPECT_EQ(oOut.Data(), nullptr);
}

}  // namespace
