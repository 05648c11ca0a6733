// How far a picture looks like living skin: pores on its ridges against the ridges themselves.
#include "KelvarinFakeFingerDetectionVT40/LivenessScore.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace Simulator {
namespace {

constexpr uint8_t cnInk = 160;       // the mask's ridges are darker
constexpr int cnNeighbourhood = 16;  // reach of the window that separates a finger from its surroundings
// The limits of the ink in that window: below three tenths it is the rim of a finger, or dirt; above 85 % it
// is a smudge without ridges.
constexpr uint32_t cnLeastInk = 327;
constexpr uint32_t cnMostInk = 925;
constexpr int cnPeriod = 8;       // reach of a mean over a ridge and a valley
constexpr int cnPore = 2;         // reach of a mean that covers a pore
constexpr double cdClear = 15.0;  // by which ridges and valleys stand out of that mean
constexpr size_t cnLeastPlaces = 5000;
// The strength of living skin with many pores, as measured on the generated prints.
constexpr double cdFullStrength = 0.03;

/// Sums of rectangles by four look-ups. The sums may wrap: the differences for small rectangles are exact all
/// the same.
class ClSums {
 public:
  template <typename F>
  ClSums(int nWidth, int nHeight, F&& fnValue)
      : m_nStride(static_cast<size_t>(nWidth) + 1), m_aSums(m_nStride * (static_cast<size_t>(nHeight) + 1)) {
    for (int y = 0; y < nHeight; ++y) {
      uint32_t nRow = 0;
      uint32_t* pOut = &m_aSums[(static_cast<size_t>(y) + 1) * m_nStride + 1];
      for (int x = 0; x < nWidth; ++x) {
        nRow += fnValue(static_cast<size_t>(y) * static_cast<size_t>(nWidth) + static_cast<size_t>(x));
        pOut[x] = pOut[static_cast<ptrdiff_t>(x) - static_cast<ptrdiff_t>(m_nStride)] + nRow;
      }
    }
  }

  template <int nReach>
  uint32_t Sum(int nX, int nY) const noexcept {
    constexpr size_t nSide = 2 * nReach + 1;
    const uint32_t* pTop =
        &m_aSums[static_cast<size_t>(nY - nReach) * m_nStride + static_cast<size_t>(nX - nReach)];
    const uint32_t* pLow = pTop + nSide * m_nStride;
    return pLow[nSide] - pTop[nSide] - pLow[0] + pTop[0];
  }
  template <int nReach>
  double Mean(int nX, int nY) const noexcept {
    return Sum<nReach>(nX, nY) * (1.0 / ((2 * nReach + 1) * (2 * nReach + 1)));
  }

 private:
  size_t m_nStride;
  std::vector<uint32_t> m_aSums;
};

/// By how much a pixel is a hole (or, with nSign -1, a dot) between its neighbours on both sides, in the
/// direction in which it is most: along a ridge they are alike.
int Depth(const uint8_t* pPlace, const ptrdiff_t (&anStep)[4], int nSign) noexcept {
  int nDepth = 0;
  for (const ptrdiff_t nStep : anStep)
    nDepth =
        std::max(nDepth, std::min(nSign * (pPlace[nStep] - *pPlace), nSign * (pPlace[-nStep] - *pPlace)));
  return nDepth;
}

}  // namespace

ClLivenessMeasures MeasureLiveness(const uint8_t* pImage, const uint8_t* pMask, int nWidth, int nHeight) {
  const ClSums oLight(nWidth, nHeight, [pImage](size_t n) { return static_cast<uint32_t>(pImage[n]); });
  const ClSums oInk(nWidth, nHeight, [pMask](size_t n) { return pMask[n] < cnInk ? 1u : 0u; });
  const ptrdiff_t nStride = nWidth;
  const ptrdiff_t anStep[4] = {3, 3 * nStride, 2 * nStride + 2, 2 * nStride - 2};
  ClLivenessMeasures o;
  double dHoles = 0.0, dDots = 0.0, dRidges = 0.0;
  size_t nCrests = 0, nValleys = 0;
  for (int y = cnNeighbourhood; y < nHeight - cnNeighbourhood; ++y) {
    const uint8_t* pRow = pImage + y * nStride;
    for (int x = cnNeighbourhood; x < nWidth - cnNeighbourhood; ++x) {
      const uint32_t nInk = oInk.Sum<cnNeighbourhood>(x, y);
      if (nInk < cnLeastInk || nInk > cnMostInk) continue;
      const double dMean = oLight.Mean<cnPeriod>(x, y), dHere = oLight.Mean<cnPore>(x, y);
      const double dFine = oLight.Mean<1>(x, y) - dMean;
      dRidges += dFine * dFine;
      ++o.nPixels;
      if (dHere >= dMean + cdClear) {
        dHoles += Depth(pRow + x, anStep, 1);
        ++nCrests;
      } else if (dHere < dMean - cdClear) {
        dDots += Depth(pRow + x, anStep, -1);
        ++nValleys;
      }
    }
  }
  if (nCrests == 0 || nValleys == 0) return o;
  o.dHoles = dHoles / static_cast<double>(nCrests);
  o.dDots = dDots / static_cast<double>(nValleys);
  o.dRidges = std::sqrt(dRidges / static_cast<double>(o.nPixels));
  return o;
}

double LivenessScore(const ClLivenessMeasures& oMeasures) noexcept {
  if (oMeasures.nPixels < cnLeastPlaces || oMeasures.dRidges <= 0.0) return 0.0;
  const double dStrength = (oMeasures.dHoles - oMeasures.dDots) / oMeasures.dRidges;
  return 100.0 * std::clamp(dStrength / cdFullStrength, 0.0, 1.0);
}

}  // namespace Simulator
