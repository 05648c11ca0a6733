// Linear equations over Boost's linear algebra.
#pragma once

// uBLAS's own checks fail when products differ by rounding, and whether they run depends on the build type.
#ifndef BOOST_UBLAS_NDEBUG
#define BOOST_UBLAS_NDEBUG
#endif
#include <boost/noncopyable.hpp>
#include <boost/numeric/ublas/lu.hpp>
#include <boost/numeric/ublas/matrix.hpp>
#include <boost/numeric/ublas/vector.hpp>
#include <cmath>
#include <cstddef>

/// Holds n equations for n unknowns, which are factorised once for any number of right-hand sides.
///
/// Domain   T is float or double.
/// Threads  thread-bound.
/// Cost     n^3 / 3 multiplications to factorise, n^2 a right-hand side.
template <typename T>
class TpLinearSystem : private boost::noncopyable {
 public:
  using Vector = boost::numeric::ublas::vector<T>;

  explicit TpLinearSystem(size_t nUnknowns) : m_oMatrix(nUnknowns, nUnknowns), m_oPermutation(nUnknowns) {}

  /// Row i and column j, until Factorize.
  T& operator()(size_t i, size_t j) { return m_oMatrix(i, j); }

  /// Factorises with partial pivoting. False when the equations have no unique solution. Rounding may hide
  /// that by making a pivot small that should be 0: one of at most tMostZero counts as 0.
  bool Factorize(T tMostZero = T(0)) {
    try {
      if (boost::numeric::ublas::lu_factorize(m_oMatrix, m_oPermutation) != 0) return false;
    } catch (const boost::numeric::ublas::singular&) {
      return false;
    }
    for (size_t n = 0; n < m_oMatrix.size1(); ++n) {
      // NaN must fail as well.
      if (!(std::fabs(m_oMatrix(n, n)) > tMostZero)) return false;
    }
    return true;
  }

  /// Replaces the right-hand side by the solution; to be called after a Factorize that returned true.
  void Solve(Vector& oRightSide) const {
    boost::numeric::ublas::lu_substitute(m_oMatrix, m_oPermutation, oRightSide);
  }

 private:
  boost::numeric::ublas::matrix<T> m_oMatrix;
  boost::numeric::ublas::permutation_matrix<std::size_t> m_oPermutation;
};
