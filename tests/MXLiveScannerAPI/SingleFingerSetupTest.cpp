// Frames of the single-finger scanner against a slow version of what becomes of them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "MXLiveScannerAPI/VT4SetupCalibrationData.h"
#include "MXTools/Exception.h"

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

template <typename TCall>
long NumberOf(TCall&& oCall) {
  try {
    oCall();
  } catch (const ClException& e) {
    return e.Number();
  }
  return 0;
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
  const double dStepX = cnWidth / 360.0;
  const double dStepY = cnHeight / 256.0;
  const auto Overlap = [](int n, double dFrom, double dTo) {
    return std::max(0.0, std::min(n + 1.0, dTo) - std::max<double>(n, dFrom));
  };
  for (int y = 0; y < 256; y += 5) {
    for (int x = 0; x < 360; x += 7) {
      double dSum = 0;
      for (int v = static_cast<int>(y * dStepY); v < std::min((y + 1) * dStepY, 430.0); ++v) {
        for (int u = static_cast<int>(x * dStepX); u < std::min((x + 1) * dStepX, 620.0); ++u) {
          dSum += Overlap(u, x * dStepX, (x + 1) * dStepX) * Overlap(v, y * dStepY, (y + 1) * dStepY) *
                  Halved(oFrame, 650, 220, u, v);
        }
      }
      // Truncated once along each axis; the weights are cut from single-precision ratios.
      const double dMean = dSum / (dStepX * dStepY);
      ASSERT_GE(dMean + 0.1, oOut.Row<uint8_t>(y)[x]) << x << ", " << y;
      ASSERT_LE(dMean - 2.1, oOut.Row<uint8_t>(y)[x]) << x << ", " << y;
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
    try {
      Update(oSetup, aBlock);
      ADD_FAILURE() << nSize;
    } catch (const ClException& e) {
      EXPECT_EQ(e.Number(), -101);
      EXPECT_THAT(e.What(), EndsWith("Wrong size of geometric calibration data."));
    }
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
  EXPECT_FALSE(oSetup.GetGeometricDataFull(false).IsValid());
  oSetup.StoreData("missing directory");
}

}  // namespace
