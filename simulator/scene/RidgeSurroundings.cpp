// Tells endings of ridges from those of valleys by how ridges hang together.
#include "scene/RidgeSurroundings.h"

#include <cmath>
#include <utility>
#include <vector>

#include "portable/Math.h"

namespace Simulator {
namespace {

constexpr int cnMiddle = 12;
constexpr int cnAcross = 2 * cnMiddle + 1;
constexpr int cnMostParts = cnAcross * cnAcross + 1;
constexpr int cnRimSteps = 72;
constexpr double cdRim = 11.0;
// What ends further from the middle is another minutia.
constexpr int cnNear = 5;

bool InDisc(int nX, int nY) {
  const int nRight = nX - cnMiddle, nDown = nY - cnMiddle;
  return nRight * nRight + nDown * nDown <= cnMiddle * cnMiddle;
}

/// Ridges and valleys as parts that hang together.
class ClSurroundings {
 public:
  ClSurroundings(const TpPlane<uint8_t>& oSkin, int nMidX, int nMidY) {
    for (int y = 0; y < cnAcross; ++y) {
      for (int x = 0; x < cnAcross; ++x) {
        const int nX = nMidX + x - cnMiddle, nY = nMidY + y - cnMiddle;
        m_abRidge[y][x] =
            nX >= 0 && nY >= 0 && nX < oSkin.Width() && nY < oSkin.Height() && oSkin.At(nX, nY) >= 128;
      }
    }
    int nParts = 0;
    for (int y = 0; y < cnAcross; ++y)
      for (int x = 0; x < cnAcross; ++x)
        if (m_anPart[y][x] == 0 && InDisc(x, y)) Fill(x, y, ++nParts);
  }

  int WhatEnds() const {
    int anArcs[cnMostParts] = {}, nBefore = 0;
    bool abRidge[cnMostParts] = {};
    for (int i = 0; i <= cnRimSteps; ++i) {
      const double dTurn = 2.0 * Portable::cdPi * (i % cnRimSteps) / cnRimSteps;
      const int nX = cnMiddle + static_cast<int>(std::floor(cdRim * Portable::Cos(dTurn) + 0.5));
      const int nY = cnMiddle + static_cast<int>(std::floor(cdRim * Portable::Sin(dTurn) + 0.5));
      const int nPart = m_anPart[nY][nX];
      if (i > 0 && nPart != nBefore) ++anArcs[nPart];
      abRidge[nPart] = m_abRidge[nY][nX];
      nBefore = nPart;
    }
    int nRidges = 0, nValleys = 0;
    for (int i = 1; i < cnMostParts; ++i)
      if (anArcs[i] == 1 && ReachesMiddle(i)) ++(abRidge[i] ? nRidges : nValleys);
    return nRidges + nValleys == 1 ? nRidges - nValleys : 0;
  }

 private:
  void Fill(int nX, int nY, int nPart) {
    std::vector<std::pair<int, int>> aOpen{{nX, nY}};
    m_anPart[nY][nX] = nPart;
    while (!aOpen.empty()) {
      const auto [x, y] = aOpen.back();
      aOpen.pop_back();
      for (const auto& [nRight, nDown] : {std::pair<int, int>{1, 0}, {-1, 0}, {0, 1}, {0, -1}}) {
        const int nToX = x + nRight, nToY = y + nDown;
        if (nToX < 0 || nToY < 0 || nToX >= cnAcross || nToY >= cnAcross || !InDisc(nToX, nToY) ||
            m_anPart[nToY][nToX] != 0 || m_abRidge[nToY][nToX] != m_abRidge[y][x])
          continue;
        m_anPart[nToY][nToX] = nPart;
        aOpen.emplace_back(nToX, nToY);
      }
    }
  }

  bool ReachesMiddle(int nPart) const {
    for (int y = cnMiddle - cnNear; y <= cnMiddle + cnNear; ++y)
      for (int x = cnMiddle - cnNear; x <= cnMiddle + cnNear; ++x)
        if (m_anPart[y][x] == nPart) return true;
    return false;
  }

  bool m_abRidge[cnAcross][cnAcross] = {};
  int m_anPart[cnAcross][cnAcross] = {};
};

}  // namespace

int WhatEnds(const TpPlane<uint8_t>& oSkin, int nX, int nY) {
  return ClSurroundings(oSkin, nX, nY).WhatEnds();
}

}  // namespace Simulator
