// Grows the ridges of a finger on a coarse grid.
#pragma once

#include <cstdint>
#include <vector>

#include "scene/Plane.h"
#include "scene/PrintDescription.h"
#include "scene/PrintOutline.h"
#include "scene/RidgeFlow.h"
#include "scene/RidgeKernels.h"
#include "scene/SkinMarks.h"

namespace Simulator {

/// Ridges at the grid's positions: noise is filtered again and again with Gabor kernels that follow the ridge
/// flow until there are ridges, with the endings and bifurcations that the flow forces and those that the
/// ridges of different parts make where they meet.
///
/// R. Cappelli, D. Maio, D. Maltoni, "Synthetic fingerprint-database generation", ICPR 2002, describe the
/// method.
///
/// Cost       some 10 milliseconds for a finger of 16 by 23 mm.
/// Threads    const operations are thread-safe.
class ClRidgeGrowth {
 public:
  /// A position on which ridges grow, and the kernel that suits it.
  struct ClPlace {
    int nOffset;
    int nKernel;
  };

  ClRidgeGrowth(const ClPrintDescription& oDescription, const ClRidgeFlow& oFlow,
                const ClPrintOutline& oOutline, const ClSkinMarks& oMarks);

  int Width() const noexcept { return m_nWidth; }
  int Height() const noexcept { return m_nHeight; }
  double StepMm() const noexcept { return m_dStepMm; }
  /// Millimetres from the middle of the print, x to the right, y up.
  double X(double dColumn) const noexcept { return (dColumn + 0.5 - 0.5 * m_nWidth) * m_dStepMm; }
  double Y(double dRow) const noexcept { return (0.5 * m_nHeight - dRow - 0.5) * m_dStepMm; }

  const std::vector<ClPlace>& Places() const noexcept { return m_aPlaces; }
  /// Column and row of a place.
  int Column(const ClPlace& o) const noexcept { return o.nOffset % m_nStride - cnMargin; }
  int Row(const ClPlace& o) const noexcept { return o.nOffset / m_nStride - cnMargin; }
  int Stride() const noexcept { return m_nStride; }
  /// Heights from -1 to 1 at the offsets of places, 0 elsewhere.
  const std::vector<float>& Heights() const noexcept { return m_aHeights; }

  /// The heights at 500 dots per inch, with the middle of the print in the middle.
  TpPlane<float> Enlarge(int nWidth, int nHeight) const;

 private:
  static constexpr int cnMargin = ClRidgeKernels::cnReach + 1;

  void ChoosePlaces(const ClRidgeFlow& oFlow, const ClPrintOutline& oOutline, const ClSkinMarks& oMarks);
  void Grow(uint64_t nSeed);

  double m_dStepMm;
  int m_nWidth;
  int m_nHeight;
  int m_nStride;
  bool m_bScars;
  std::vector<ClPlace> m_aPlaces;
  std::vector<float> m_aHeights;
};

}  // namespace Simulator
