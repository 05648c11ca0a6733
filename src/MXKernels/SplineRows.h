// Row functions that sum the radial basis of thin-plate splines.
#pragma once

#include "MXKernels/Kernel.h"

namespace MXKernels {

/// A control point of a spline as a row of positions sees it.
struct SplinePoint {
  double m_dX;
  double m_dSquaredY;  ///< its squared distance from the row
};

/// pSum[i] += dWeight * U(d) for i in [0, nCount), with d = (pX[i] - x)^2 + dSquaredY and U(d) = d log d, the
/// logarithm of portable/Math.h; U(0) = 0. All levels give the same bits, NaN for NaN.
///
/// Domain  d is 0 or normal. pSum doesn't overlap pX.
/// Cost    one logarithm an element.
extern const TpKernel<void(const double* pX, size_t nCount, SplinePoint oPoint, double dWeight,
                           double* pSum) noexcept>
    AddSplineBasisRow;

/// The same for two sums at once, which share the logarithm; they don't overlap each other.
extern const TpKernel<void(const double* pX, size_t nCount, SplinePoint oPoint, double dWeightA,
                           double dWeightB, double* pSumA, double* pSumB) noexcept>
    AddSplineBasisPairRow;

}  // namespace MXKernels
