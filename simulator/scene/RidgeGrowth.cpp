// Grows the ridges of a finger on a coarse grid.
#include "scene/RidgeGrowth.h"

#include <algorithm>
#include <cmath>

#include "scene/Platen.h"
#include "scene/Random.h"

namespace Simulator {
namespace {

// With more rounds minutiae that came up near each other vanish: this leaves as many as fingers have.
constexpr int cnRounds = 16;
constexpr float cfGain = 1.7f;

/// From which four values of the grid a pixel comes, and with which weights (a Catmull-Rom spline).
struct ClTaps {
  int nFirst;
  float afWeight[4];
};

std::vector<ClTaps> MakeTaps(int nPixels, int nGrid, double dStepMm) {
  std::vector<ClTaps> aTaps;
  for (int i = 0; i < nPixels; ++i) {
    const double dPlace = (i + 0.5 - 0.5 * nPixels) * cdPixelMm / dStepMm + 0.5 * nGrid - 0.5;
    const int nFirst = std::clamp(static_cast<int>(std::floor(dPlace)) - 1, -5, nGrid + 1);
    const double t = std::clamp(dPlace - nFirst - 1.0, 0.0, 1.0), s = 1.0 - t;
    aTaps.push_back(
        {nFirst,
         {static_cast<float>(-0.5 * t * s * s), static_cast<float>(1.0 - t * t * (2.5 - 1.5 * t)),
          static_cast<float>(1.0 - s * s * (2.5 - 1.5 * s)), static_cast<float>(-0.5 * s * t * t)}});
  }
  return aTaps;
}

}  // namespace

ClRidgeGrowth::ClRidgeGrowth(const ClPrintDescription& oDescription, const ClRidgeFlow& oFlow,
                             const ClPrintOutline& oOutline, const ClSkinMarks& oMarks)
    : m_dStepMm(RidgePeriodOf(oDescription) / ClRidgeKernels::cdStepsInPeriod),
      m_nWidth(static_cast<int>(std::ceil(oDescription.dWidthMm * 1.24 / m_dStepMm))),
      m_nHeight(static_cast<int>(std::ceil(oDescription.dHeightMm * 1.24 / m_dStepMm))),
      m_nStride(m_nWidth + 2 * cnMargin),
      m_bScars(oDescription.nScars > 0) {
  ChoosePlaces(oFlow, oOutline, oMarks);
  // A seed with another pattern is another finger, also where both flow alike.
  Grow(Mix(Mix(oDescription.nSeed, 2), static_cast<uint64_t>(PatternOf(oDescription))));
}

void ClRidgeGrowth::ChoosePlaces(const ClRidgeFlow& oFlow, const ClPrintOutline& oOutline,
                                 const ClSkinMarks& oMarks) {
  // Two columns and two rows share a kernel, or have none.
  std::vector<int> aKernels(static_cast<size_t>((m_nWidth + 1) / 2));
  m_aPlaces.reserve(static_cast<size_t>(m_nWidth) * static_cast<size_t>(m_nHeight));
  for (int y = 0; y < m_nHeight; ++y) {
    for (int x = 0; y % 2 == 0 && x < m_nWidth; x += 2) {
      const double dX = X(x + 0.5), dY = Y(y + 0.5);
      aKernels[static_cast<size_t>(x / 2)] =
          oOutline.Distance(dX, dY) > 1.15
              ? -1
              : ClRidgeKernels::Nearest(oFlow.Direction(dX, dY), oFlow.Period(dX, dY));
    }
    for (int x = 0; x < m_nWidth; ++x) {
      const int nKernel = aKernels[static_cast<size_t>(x / 2)];
      if (nKernel < 0 || (m_bScars && oMarks.InScar(X(x), Y(y)))) continue;
      m_aPlaces.push_back({(y + cnMargin) * m_nStride + x + cnMargin, nKernel});
    }
  }
}

void ClRidgeGrowth::Grow(uint64_t nSeed) {
  m_aHeights.resize(static_cast<size_t>(m_nStride) * static_cast<size_t>(m_nHeight + 2 * cnMargin));
  std::vector<float> aNext(m_aHeights.size());
  ClRandom oRandom(nSeed);
  for (const ClPlace& o : m_aPlaces)
    m_aHeights[static_cast<size_t>(o.nOffset)] = static_cast<float>(oRandom.Range(-1.0, 1.0));
  const ClRidgeKernels& oKernels = ClRidgeKernels::Even();
  for (int i = 0; i < cnRounds; ++i) {
    const float* pIn = m_aHeights.data();
    for (const ClPlace& o : m_aPlaces)
      aNext[static_cast<size_t>(o.nOffset)] =
          std::clamp(cfGain * oKernels.Answer(o.nKernel, pIn + o.nOffset, m_nStride), -1.0f, 1.0f);
    m_aHeights.swap(aNext);
  }
}

TpPlane<float> ClRidgeGrowth::Enlarge(int nWidth, int nHeight) const {
  const std::vector<ClTaps> aAcross = MakeTaps(nWidth, m_nWidth, m_dStepMm);
  const int nRows = m_nHeight + 2 * cnMargin;
  TpPlane<float> oWide(nWidth, nRows), oOut(nWidth, nHeight);
  for (int y = 0; y < nRows; ++y) {
    const float* pIn = m_aHeights.data() + static_cast<ptrdiff_t>(y) * m_nStride + cnMargin;
    float* pOut = oWide.Row(y);
    for (int x = 0; x < nWidth; ++x) {
      const ClTaps& o = aAcross[static_cast<size_t>(x)];
      const float* p = pIn + o.nFirst;
      pOut[x] = (p[0] * o.afWeight[0] + p[1] * o.afWeight[1]) + (p[2] * o.afWeight[2] + p[3] * o.afWeight[3]);
    }
  }
  const std::vector<ClTaps> aDown = MakeTaps(nHeight, m_nHeight, m_dStepMm);
  for (int y = 0; y < nHeight; ++y) {
    const ClTaps& o = aDown[static_cast<size_t>(y)];
    const float* apRow[4];
    for (int i = 0; i < 4; ++i) apRow[i] = oWide.Row(o.nFirst + cnMargin + i);
    float* pOut = oOut.Row(y);
    for (int x = 0; x < nWidth; ++x)
      pOut[x] = (apRow[0][x] * o.afWeight[0] + apRow[1][x] * o.afWeight[1]) +
                (apRow[2][x] * o.afWeight[2] + apRow[3][x] * o.afWeight[3]);
  }
  return oOut;
}

}  // namespace Simulator
