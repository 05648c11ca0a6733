// The warp's weights against their definition.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <vector>

#include "MXCalibrate/InterpolationBicubicQuantized.h"

namespace {

/// The kernel of 160 by 160 samples, each replaced by the mean of the 31 by 31 around it that exist.
std::vector<int64_t> BoxedKernel(double c, double d, double e) {
  std::vector<int64_t> aKernel(160 * 160);
  for (int y = 0; y < 160; ++y) {
    for (int x = 0; x < 160; ++x) {
      const double v = (y - 80) / 32.0 * e;
      const double u = (x - 80) / 32.0;
      const double q = v * v + u * u;
      aKernel[static_cast<size_t>(y * 160 + x)] =
          static_cast<int64_t>(std::exp(-q / (2 * d * d)) * (2 * c * c - q) / (d * d * d * d) * 1024);
    }
  }
  std::vector<int64_t> aBoxed(160 * 160);
  for (int y = 0; y < 160; ++y) {
    for (int x = 0; x < 160; ++x) {
      int64_t nSum = 0;
      int64_t nCount = 0;
      for (int j = std::max(0, y - 15); j <= std::min(159, y + 15); ++j) {
        for (int i = std::max(0, x - 15); i <= std::min(159, x + 15); ++i, ++nCount) {
          nSum += aKernel[static_cast<size_t>(j * 160 + i)];
        }
      }
      aBoxed[static_cast<size_t>(y * 160 + x)] = nSum / nCount;
    }
  }
  return aBoxed;
}

template <int C, int D, int E>
void ExpectTable() {
  const ClInterpolationBicubicQuantized<1, 5, C, D, E> oTable;
  const std::vector<int64_t> aBoxed = BoxedKernel(C / 1000.0, D / 1000.0, E / 1000.0);
  for (int nPhaseY = 0; nPhaseY < 32; ++nPhaseY) {
    for (int nPhaseX = 0; nPhaseX < 32; ++nPhaseX) {
      double aSample[4][4];
      double dSum = 0;
      for (int r = 0; r < 4; ++r) {
        for (int k = 0; k < 4; ++k) {
          const int nRow = static_cast<int>(80 + (r - 1 - nPhaseY / 32.0) * 32 + 0.5);
          const int nColumn = static_cast<int>(80 + (k - 1 - nPhaseX / 32.0) * 32 + 0.5);
          aSample[r][k] = static_cast<double>(aBoxed[static_cast<size_t>(nRow * 160 + nColumn)]);
          dSum += aSample[r][k];
        }
      }
      for (int r = 0; r < 4; ++r) {
        for (int k = 0; k < 4; ++k) {
          const int nWeight = oTable[static_cast<unsigned int>(nPhaseY * 32 + nPhaseX)][r][k];
          ASSERT_EQ(nWeight, static_cast<int>(aSample[r][k] * 1024.0 / dSum)) << nPhaseY << ' ' << nPhaseX;
        }
      }
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
