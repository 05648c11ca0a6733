// Thin-plate splines over Boost's linear algebra.
#pragma once

#include <algorithm>
#include <boost/noncopyable.hpp>
#include <memory>
#include <type_traits>

#include "MXKernels/SplineRows.h"
#include "MXMath/LinearSystemBOOST.h"
#include "MXTools/Exception.h"
#include "MXTools/TpArrayStatic.h"
#include "MXTools/Vector.h"
#include "portable/Math.h"

/// The functions of T that a spline takes from outside. Log must be finite for 0.
template <typename T>
struct Default {
  static T Log(T tValue) { return static_cast<T>(Portable::Log(static_cast<double>(tValue))); }
};

/// The radial basis U = d log d of a squared distance d; 0 for d = 0, NaN for NaN.
template <typename T, class TMath = Default<T>>
inline T SplineBasis(T tSquaredDistance) {
  // There is no test for 0, which would keep loops from being vectorised; the logarithm is finite for it.
  return tSquaredDistance * TMath::Log(tSquaredDistance);
}

/// A smooth mapping of the plane onto itself that takes each control point to its destination (Bookstein,
/// "Principal Warps", IEEE PAMI 11, 1989).
///
/// Domain     T is float or double; at least 3 control points that are not on one line, all different.
/// Range      U is the basis of SplineBasis; the sum over the points runs first, in their order, then the
///            affine part.
/// Ownership  keeps copies of the control points.
/// Threads    thread-bound in Setup; Transform and TransformRow are reentrant after it.
/// Errors     -44 for missing arguments; -600 when the points allow no mapping; ClExKelvarin -1 before Setup.
/// Cost       Setup solves n + 3 equations; a Transform takes n logarithms.
template <typename T, class TMath = Default<T>>
class TpThinPlateSplines : private boost::noncopyable {
 public:
  TpThinPlateSplines() = default;
  virtual ~TpThinPlateSplines() = default;

  /// Above 0 the mapping may miss its points, and Setup does not check that it meets them.
  T m_tSmoothing{};

  /// Replaces points and coefficients. After an error only another Setup helps.
  void Setup(long nPoints, const ClVector* pvOrigin, const ClVector* pvTarget) {
    if (pvOrigin == nullptr) KLV_RAISE(ClException, "pvOrigin is NULL.", -44);
    if (pvTarget == nullptr) KLV_RAISE(ClException, "pvTarget is NULL.", -44);
    if (nPoints <= 0) KLV_RAISE(ClException, "nSize == NULL.", -44);
    const size_t nCount = static_cast<size_t>(nPoints);
    if (!SpanThePlane(nCount, pvOrigin)) RaiseSingular();
    TpLinearSystem<T> oSystem(nCount + 3);
    FillSystem(oSystem, nCount, pvOrigin);
    auto pCoeffX = std::make_unique<Coefficients>(nCount + 3, T(0));
    auto pCoeffY = std::make_unique<Coefficients>(nCount + 3, T(0));
    for (size_t n = 0; n < nCount; ++n) {
      (*pCoeffX)(n) = static_cast<T>(pvTarget[n].x);
      (*pCoeffY)(n) = static_cast<T>(pvTarget[n].y);
    }
    if (!oSystem.Factorize()) RaiseSingular();
    oSystem.Solve(*pCoeffX);
    oSystem.Solve(*pCoeffY);
    m_pCoeffX = std::move(pCoeffX);
    m_pCoeffY = std::move(pCoeffY);
    m_aOrigin.New(static_cast<unsigned int>(nPoints));
    std::copy(pvOrigin, pvOrigin + nCount, m_aOrigin.Data());
    CheckSetup(nPoints, pvOrigin, pvTarget);
  }

  /// Raises -600 when a control point misses its destination by more than 0.01, unless the spline is
  /// smoothed.
  void CheckSetup(long nPoints, const ClVector* pvOrigin, const ClVector* pvTarget) const {
    if (m_tSmoothing != T(0)) return;
    for (long n = 0; n < nPoints; ++n) {
      T tX;
      T tY;
      Transform(static_cast<T>(pvOrigin[n].x), static_cast<T>(pvOrigin[n].y), &tX, &tY);
      const ClVector oMiss = ClVector(static_cast<double>(tX), static_cast<double>(tY)) - pvTarget[n];
      // NaN must fail as well.
      if (!(oMiss.Length() <= 0.01)) {
        KLV_RAISE(ClException, "Generation of Geometric Calibration data not possible, contact Kelvarin",
                  -600);
      }
    }
  }

  void Transform(T tX, T tY, T* pX, T* pY) const { TransformRow(tX, tY, T(1), 1, pX, pY); }

  /// pX[i], pY[i] = Transform(tX + i * tStep, tY) for i in [0, nCount), the same bits as single calls give as
  /// long as tX + i * tStep is exact.
  void TransformRow(T tX, T tY, T tStep, size_t nCount, T* pX, T* pY) const {
    if (m_aOrigin.Entries() == 0 || m_pCoeffX == nullptr) KLV_RAISE_NUMBER(-1);
    for (size_t nFrom = 0; nFrom < nCount; nFrom += cnBlock) {
      const size_t nBlock = std::min(cnBlock, nCount - nFrom);
      TransformBlock(tX + static_cast<T>(nFrom) * tStep, tY, tStep, nBlock, pX + nFrom, pY + nFrom);
    }
  }

 private:
  using Coefficients = typename TpLinearSystem<T>::Vector;
  /// Positions of a row that are summed side by side: vectors can then hold them, and the order of each sum
  /// stays.
  static constexpr size_t cnBlock = 64;

  void FillSystem(TpLinearSystem<T>& oSystem, size_t nCount, const ClVector* pvOrigin) const {
    for (size_t i = 0; i < nCount; ++i) {
      for (size_t j = 0; j < nCount; ++j) {
        const ClVector oBetween = pvOrigin[i] - pvOrigin[j];
        oSystem(i, j) = SplineBasis<T, TMath>(static_cast<T>(oBetween.SquaredLength()));
      }
      oSystem(i, i) += m_tSmoothing;
      oSystem(i, nCount) = oSystem(nCount, i) = T(1);
      oSystem(i, nCount + 1) = oSystem(nCount + 1, i) = static_cast<T>(pvOrigin[i].x);
      oSystem(i, nCount + 2) = oSystem(nCount + 2, i) = static_cast<T>(pvOrigin[i].y);
    }
    for (size_t i = nCount; i < nCount + 3; ++i) {
      for (size_t j = nCount; j < nCount + 3; ++j) oSystem(i, j) = T(0);
    }
  }

  [[noreturn]] static void RaiseSingular() {
    KLV_RAISE(ClException,
              "Generation of Geometric Calibration data not possible, singularity detected, contact Kelvarin",
              -600);
  }

  /// False when the points lie on one line. The system then has many solutions, and rounding lets the solver
  /// find one of them that meets every point and means nothing elsewhere.
  static bool SpanThePlane(size_t nCount, const ClVector* pvOrigin) {
    ClVector oFarthest;
    for (size_t n = 1; n < nCount; ++n) {
      const ClVector oTo = pvOrigin[n] - pvOrigin[0];
      if (oTo.SquaredLength() > oFarthest.SquaredLength()) oFarthest = oTo;
    }
    double dArea = 0;
    for (size_t n = 1; n < nCount; ++n) {
      const ClVector oTo = pvOrigin[n] - pvOrigin[0];
      dArea = std::max(dArea, std::fabs(oFarthest.x * oTo.y - oFarthest.y * oTo.x));
    }
    return dArea > 1e-12 * oFarthest.SquaredLength();
  }

  void TransformBlock(T tX, T tY, T tStep, size_t nCount, T* pX, T* pY) const {
    T aAtX[cnBlock];
    T aSumX[cnBlock] = {};
    T aSumY[cnBlock] = {};
    for (size_t i = 0; i < nCount; ++i) aAtX[i] = tX + static_cast<T>(static_cast<int>(i)) * tStep;
    const size_t nPoints = m_aOrigin.Entries();
    const T* pCoeffX = &(*m_pCoeffX)(0);
    const T* pCoeffY = &(*m_pCoeffY)(0);
    for (size_t n = 0; n < nPoints; ++n) {
      const ClVector& oOrigin = m_aOrigin[static_cast<unsigned int>(n)];
      AddBasis(aAtX, nCount, oOrigin, tY, pCoeffX[n], pCoeffY[n], aSumX, aSumY);
    }
    for (size_t i = 0; i < nCount; ++i) {
      pX[i] = aSumX[i] + pCoeffX[nPoints] + pCoeffX[nPoints + 1] * aAtX[i] + pCoeffX[nPoints + 2] * tY;
      pY[i] = aSumY[i] + pCoeffY[nPoints] + pCoeffY[nPoints + 1] * aAtX[i] + pCoeffY[nPoints + 2] * tY;
    }
  }

  static void AddBasis(const T* pAtX, size_t nCount, const ClVector& oOrigin, T tY, T tCoeffX, T tCoeffY,
                       T* pSumX, T* pSumY) {
    const T tPointX = static_cast<T>(oOrigin.x);
    const T tPointY = static_cast<T>(oOrigin.y);
    const T tSquaredY = (tY - tPointY) * (tY - tPointY);
    if constexpr (std::is_same_v<TMath, Default<double>>) {
      MXKernels::AddSplineBasisPairRow(pAtX, nCount, {tPointX, tSquaredY}, tCoeffX, tCoeffY, pSumX, pSumY);
    } else {
      for (size_t i = 0; i < nCount; ++i) {
        const T tBetween = pAtX[i] - tPointX;
        const T tBasis = SplineBasis<T, TMath>(tBetween * tBetween + tSquaredY);
        pSumX[i] += tCoeffX * tBasis;
        pSumY[i] += tCoeffY * tBasis;
      }
    }
  }

  TpArrayStatic<ClVector> m_aOrigin;
  std::unique_ptr<Coefficients> m_pCoeffX;
  std::unique_ptr<Coefficients> m_pCoeffY;
};
