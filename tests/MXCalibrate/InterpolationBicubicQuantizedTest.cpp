// The warp's weights against their definition.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "MXCalibrate/InterpolationBicubicQuantized.h"

namespace {

/// Each weight is the kernel at its position, smoothed over 31 by 31 samples of a 32nd of a pixel, in
/// 1024ths.
template <int C, int D, int E>
void ExpectTable() {
  constexpr double c = C / 1000.0, d = D / 1000.0, e = E / 1000.0;
  std::vector<int64_t> aKernel;
  for (int n = 0; n < 160 * 160; ++n) {
    const double v = (n / 160 - 80) / 32.0 * e;
    const double u = (n % 160 - 80) / 32.0;
    const double q = v * v + u * u;
    aKernel.push_back(
        static_cast<int64_t>(std::exp(-q / (2 * d * d)) * (2 * c * c - q) / (d * d * d * d) * 1024));
  }
  const auto Smoothed = [&aKernel](int nRow, int nColumn) {
    int64_t nSum = 0;
    for (int y = nRow - 15; y <= nRow + 15; ++y)
      for (int x = nColumn - 15; x <= nColumn + 15; ++x) nSum += aKernel[static_cast<size_t>(y * 160 + x)];
    return static_cast<double>(nSum / (31 * 31));
  };
  const ClInterpolationBicubicQuantized<1, 5, C, D, E> oTable;
  for (int nPhase = 0; nPhase < 32 * 32; ++nPhase) {
    double aSamples[16];
    double dSum = 0;
    for (int n = 0; n < 16; ++n) {
      aSamples[n] = Smoothed(80 + 32 * (n / 4 - 1) - nPhase / 32, 80 + 32 * (n % 4 - 1) - nPhase % 32);
      dSum += aSamples[n];
    }
    for (int n = 0; n < 16; ++n) {
      ASSERT_EQ(oTable[static_cast<unsigned int>(nPhase)][n / 4][n % 4],
                static_cast<int>(aSamples[n] * 1024.0 / dSum))
          << nPhase;
    }
  }
}

TEST(BicubicTable, EachInstanceEqualsItsDefinition) {
  ExpectTable<600, 530, 1000>();
  ExpectTable<450, 398, 750>();
  ExpectTable<800, 500, 1000>();
  ExpectTable<600, 375, 750>();
}

}  // namespace
