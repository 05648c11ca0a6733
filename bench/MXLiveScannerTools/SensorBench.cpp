// Times of the sensor processors and of the finger mask over whole frames.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "MXLiveScannerTools/IpAdjustBrightness.h"
#include "MXLiveScannerTools/IpLocalWhiteBalance.h"
#include "MXLiveScannerTools/IpVT40R4Mask.h"
#include "portable/Math.h"

namespace {

/// A noisy platen with four discs of ridges on it.
void FillFingers(ClImage& oImage, int nWidth, int nHeight, double dPeriod, int nPels) {
  oImage.NewWithType(ClImage::eUint8, nWidth, nHeight, 1, nPels, nPels, true);
  std::mt19937 oRandom(1);
  for (int y = 0; y < nHeight; ++y) {
    unsigned char* pRow = oImage.Row<unsigned char>(y);
    for (int x = 0; x < nWidth; ++x) {
      double dLevel = 6.0 + static_cast<double>(oRandom() % 3);
      for (int n = 0; n < 4; ++n) {
        const double dX = x - nWidth * (0.14 + 0.24 * n), dY = y - nHeight * 0.5;
        if (std::hypot(dX / nWidth, dY / nHeight / 2) < 0.1) {
          dLevel = 90.0 + 70.0 * std::cos(std::hypot(dX, dY) * 2.0 * Portable::cdPi / dPeriod);
        }
      }
      pRow[x] = static_cast<unsigned char>(std::min(dLevel, 255.0));
    }
  }
}

void MaskPreview800(benchmark::State& oState) {
  ClImage oIn, oOut;
  FillFingers(oIn, 800, 800, 4.5, 9842);
  ClIpVT40R4Mask oMask;
  for (auto _ : oState) oMask.ApplyParam(oIn, oOut);
}

void MaskFull1600(benchmark::State& oState) {
  ClImage oIn, oOut;
  FillFingers(oIn, 1600, 1600, 9.0, 19685);
  ClIpVT40R4Mask oMask;
  for (auto _ : oState) oMask.ApplyParam(oIn, oOut);
}

void LocalWhiteBalance(benchmark::State& oState) {
  ClImage oIn, oOut;
  FillFingers(oIn, static_cast<int>(oState.range(0)), static_cast<int>(oState.range(1)), 6.0, 0);
  ClIpLocalWhiteBalance oBalance;
  for (auto _ : oState) oBalance.ApplyParam(oIn, oOut);
}

void AdjustBrightness1600(benchmark::State& oState) {
  ClImage oIn, oReference, oOut;
  FillFingers(oIn, 1600, 1600, 9.0, 19685);
  FillFingers(oReference, 1600, 1600, 900.0, 19685);
  ClIpAdjustBrightness oAdjust;
  for (auto _ : oState) oAdjust.ApplyParam(oIn, oReference, oOut, 200.0);
}

BENCHMARK(MaskPreview800)->Unit(benchmark::kMillisecond);
BENCHMARK(MaskFull1600)->Unit(benchmark::kMillisecond);
BENCHMARK(LocalWhiteBalance)->Args({960, 1360})->Args({1920, 2720})->Unit(benchmark::kMillisecond);
BENCHMARK(AdjustBrightness1600)->Unit(benchmark::kMillisecond);

}  // namespace
