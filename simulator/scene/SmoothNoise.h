// Smooth random surfaces, seeded and the same on every machine.
#pragma once

#include <cmath>
#include <cstddef>
#include <vector>

#include "scene/Random.h"

namespace Simulator {

/// The value of a knot, from -1 to 1.
inline double NoiseKnot(uint64_t nSeed, int nX, int nY) noexcept {
  const uint64_t nPlace =
      (static_cast<uint64_t>(static_cast<uint32_t>(nX)) << 32) | static_cast<uint32_t>(nY);
  return static_cast<double>(Mix(nSeed, nPlace) >> 11) * (2.0 / 9007199254740992.0) - 1.0;
}

/// Goes from 0 to 1 without a kink at either end.
inline double Ease(double d) noexcept {
  return d * d * (3.0 - 2.0 * d);
}

/// A smooth random surface from -1 to 1 with knots that lie dKnot apart, at single points.
///
/// Threads    reentrant.
class ClSmoothNoise {
 public:
  ClSmoothNoise(uint64_t nSeed, double dKnot) : m_nSeed(nSeed), m_dKnot(dKnot) {}

  double At(double dX, double dY) const noexcept {
    const double dU = dX / m_dKnot, dV = dY / m_dKnot;
    const int nX = static_cast<int>(std::floor(dU)), nY = static_cast<int>(std::floor(dV));
    const double dA = Ease(dU - nX), dB = Ease(dV - nY);
    const double dTop = NoiseKnot(m_nSeed, nX, nY) * (1.0 - dA) + NoiseKnot(m_nSeed, nX + 1, nY) * dA;
    const double dLow = NoiseKnot(m_nSeed, nX, nY + 1) * (1.0 - dA) + NoiseKnot(m_nSeed, nX + 1, nY + 1) * dA;
    return dTop * (1.0 - dB) + dLow * dB;
  }

 private:
  uint64_t m_nSeed;
  double m_dKnot;
};

/// The same kind of surface for a whole picture, row after row, at the cost of one multiplication a pixel.
///
/// Threads    thread-bound.
class ClNoiseRows {
 public:
  /// nKnot: pixels from knot to knot.
  ClNoiseRows(uint64_t nSeed, int nKnot, int nWidth)
      : m_nSeed(nSeed), m_nKnot(nKnot), m_nWidth(nWidth), m_aEase(static_cast<size_t>(nKnot)) {
    for (int i = 0; i < nKnot; ++i)
      m_aEase[static_cast<size_t>(i)] = static_cast<float>(Ease((i + 0.5) / nKnot));
    const size_t nKnots = static_cast<size_t>(nWidth / nKnot + 2);
    for (std::vector<float>& aRow : m_aRows) aRow.resize(nKnots);
    m_aBetween.resize(nKnots);
  }

  /// Adds fStrength times the noise of row nY, which is not below 0, to nWidth values.
  void Add(int nY, float fStrength, float* pOut) {
    if (nY / m_nKnot != m_nRow) {
      m_nRow = nY / m_nKnot;
      for (int r = 0; r < 2; ++r)
        for (size_t k = 0; k < m_aBetween.size(); ++k)
          m_aRows[r][k] = static_cast<float>(NoiseKnot(m_nSeed, static_cast<int>(k), m_nRow + r));
    }
    const float fDown = m_aEase[static_cast<size_t>(nY % m_nKnot)];
    for (size_t k = 0; k < m_aBetween.size(); ++k)
      m_aBetween[k] = fStrength * (m_aRows[0][k] + (m_aRows[1][k] - m_aRows[0][k]) * fDown);
    for (int nLeft = 0; nLeft < m_nWidth; nLeft += m_nKnot) {
      const size_t k = static_cast<size_t>(nLeft / m_nKnot);
      const float fLeft = m_aBetween[k], fStep = m_aBetween[k + 1] - fLeft;
      const int nCount = m_nWidth - nLeft < m_nKnot ? m_nWidth - nLeft : m_nKnot;
      for (int i = 0; i < nCount; ++i) pOut[nLeft + i] += fLeft + fStep * m_aEase[static_cast<size_t>(i)];
    }
  }

 private:
  uint64_t m_nSeed;
  int m_nKnot;
  int m_nWidth;
  int m_nRow = -1;
  std::vector<float> m_aEase;
  std::vector<float> m_aRows[2];
  std::vector<float> m_aBetween;
};

}  // namespace Simulator
