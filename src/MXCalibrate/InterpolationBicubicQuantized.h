// The weights with which a warp resamples and sharpens.
#pragma once

#include <cstdint>

#include "MXTools/TpArrayStatic.h"

/// 4 by 4 weights for each of 32 by 32 positions between source pixels.
///
/// The kernel is exp(-q / 2d^2) (2c^2 - q) / d^4 with q = (e v)^2 + u^2 of the distances u along and v across
/// the row: the Laplacian of a Gaussian for c = d; a larger c gives a strong centre and a mild negative ring.
/// Each weight is the kernel's mean over a box of about one source pixel.
///
/// Range    entry phaseX + 32 * phaseY; its 16 weights sum to 1024, less what each of them has lost by
///          truncation.
/// Threads  reentrant once made.
class ClInterpolationBicubicTable {
 public:
  static constexpr unsigned int cnPhaseBits = 5;
  static constexpr int cnSteps = 1 << cnPhaseBits;
  using Weights = int16_t[4][4];

  /// c and d in source pixels, e as a factor.
  ClInterpolationBicubicTable(double dC, double dD, double dE);

  const Weights* Data() const { return m_aWeights.Data(); }
  const Weights& operator[](unsigned int nPhase) const { return m_aWeights[nPhase]; }

 private:
  TpArrayStatic<Weights> m_aWeights;
};

/// The table of one kind of frame. The window reaches nBefore sample before the base position, phases have
/// nBits bits; zero-crossing width C, Gaussian width D and vertical scale E in thousandths.
template <int nBefore, int nBits, int C, int D, int E>
class ClInterpolationBicubicQuantized : public ClInterpolationBicubicTable {
  static_assert(nBefore == 1 && nBits == cnPhaseBits, "the window and phases that the maps are made for");

 public:
  ClInterpolationBicubicQuantized() : ClInterpolationBicubicTable(C / 1000.0, D / 1000.0, E / 1000.0) {}
};
