// Tests of the kernels of thin-plate splines.
#include <cmath>

#include "KernelRows.h"

using namespace MXKernels;

namespace {

using Doubles = std::vector<double>;

/// Places to both sides of the point, some of them on it.
Doubles Places(size_t nCount, ClSamples& oSamples) {
  Doubles aX(nCount);
  for (double& dX : aX) dX = oSamples.Number(3) == 0 ? 800 : oSamples.Number(1600000) / 1000.0;
  return aX;
}

}  // namespace

TEST(SplineRows, EveryLevelEqualsTheReferenceForEveryTail) {
  ForEveryLevelAndTail([](size_t nCount, ClSamples& oSamples) {
    const Doubles aX = Places(nCount, oSamples), aStart = Places(nCount, oSamples);
    for (const SplinePoint oPoint :
         {SplinePoint{800, 0}, SplinePoint{800, 1e-200}, SplinePoint{-3.7, 640000.3}}) {
      EXPECT_LIKE_REFERENCE(
          AddSplineBasisRow, [&](auto pfn, auto* pSum) { pfn(aX.data(), nCount, oPoint, 1.0 / 3, pSum); },
          aStart);
      EXPECT_LIKE_REFERENCE(
          AddSplineBasisPairRow,
          [&](auto pfn, auto* pA, auto* pB) { pfn(aX.data(), nCount, oPoint, -0.7, 1e-9, pA, pB); }, aStart,
          aStart);
    }
  });
}

TEST(SplineRows, AddWhatTheFormulaSaysAndNothingAtThePointItself) {
  const Doubles aX = {2, 5, 1e150, std::nan("")};
  Doubles aSum = {10, 10, 10, 10};
  AddSplineBasisRow(aX.data(), 4, {2, 0}, 0.5, aSum.data());
  EXPECT_EQ(aSum[0], 10);
  EXPECT_NEAR(aSum[1], 10 + 0.5 * 9 * std::log(9.0), 1e-12);
  EXPECT_NEAR(aSum[2] / (0.5 * 1e300 * std::log(1e300)), 1, 1e-12);
  EXPECT_TRUE(std::isnan(aSum[3]));
}
