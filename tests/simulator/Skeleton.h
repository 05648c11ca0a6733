// Finds minutiae in a picture of ridges by thinning them, with nothing of the simulator's own measure.
#pragma once

#include <array>
#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

#include "portable/Math.h"
#include "scene/Platen.h"

namespace Simulator {

/// Direction in radians, counter-clockwise from the right, as in ClPrintTruth.
struct ClFoundMinutia {
  bool bEnding;
  double dX, dY;
  double dDirection;
};

class ClSkeleton {
 public:
  explicit ClSkeleton(const ClPlatenMap& oMap)
      : m_oCover(oMap.oCover), m_oInk(oMap.oContact.Width(), oMap.oContact.Height()) {
    // A mean of five by five closes pores.
    for (int y = 2; y + 2 < m_oInk.Height(); ++y) {
      for (int x = 2; x + 2 < m_oInk.Width(); ++x) {
        if (m_oCover.At(x, y) < 128) continue;
        int nSum = 0;
        for (int r = -2; r <= 2; ++r)
          for (int c = -2; c <= 2; ++c) nSum += oMap.oContact.At(x + c, y + r);
        m_oInk.At(x, y) = nSum > 25 * 115;
        if (m_oInk.At(x, y)) m_aInk.emplace_back(x, y);
      }
    }
    for (size_t nGone = 1; nGone > 0;) {
      nGone = Peel(0);
      nGone += Peel(1);
    }
  }

  /// Endings (one crossing) and bifurcations (three) that lie 18 pixels within the skin. Those that have
  /// another within 7 pixels are spurs and bridges.
  std::vector<ClFoundMinutia> Minutiae() const {
    std::vector<ClFoundMinutia> aAll, aKept;
    for (const auto& [x, y] : m_aInk) {
      const int nCrossings = Crossings(x, y);
      if (!m_oInk.At(x, y) || (nCrossings != 1 && nCrossings != 3)) continue;
      aAll.push_back({nCrossings == 1, static_cast<double>(x), static_cast<double>(y), DirectionAt(x, y)});
    }
    for (const ClFoundMinutia& o : aAll) {
      int nNear = 0;
      for (const ClFoundMinutia& oOther : aAll) nNear += std::hypot(o.dX - oOther.dX, o.dY - oOther.dY) < 7.0;
      if (nNear == 1 && Inside(m_oCover, o.dX, o.dY)) aKept.push_back(o);
    }
    return aKept;
  }

  /// Whether skin lies on the glass for 18 pixels round a position.
  static bool Inside(const TpPlane<uint8_t>& oCover, double dX, double dY) {
    for (int i = 0; i < 24; ++i) {
      const double dTurn = i * Portable::cdPi / 12.0;
      const int nX = static_cast<int>(dX + 18.0 * std::cos(dTurn)),
                nY = static_cast<int>(dY + 18.0 * std::sin(dTurn));
      if (nX < 0 || nY < 0 || nX >= oCover.Width() || nY >= oCover.Height() || oCover.At(nX, nY) < 250)
        return false;
    }
    return true;
  }

 private:
  static constexpr int s_anX[8] = {1, 1, 0, -1, -1, -1, 0, 1};
  static constexpr int s_anY[8] = {0, -1, -1, -1, 0, 1, 1, 1};

  bool Ink(int nX, int nY, int i) const { return m_oInk.At(nX + s_anX[i & 7], nY + s_anY[i & 7]) != 0; }

  int Crossings(int nX, int nY) const {
    int n = 0;
    for (int i = 0; i < 8; ++i) n += !Ink(nX, nY, i) && Ink(nX, nY, i + 1);
    return n;
  }

  /// One half of a round of T. Y. Zhang and C. Y. Suen's thinning (1984).
  size_t Peel(int nHalf) {
    std::vector<std::pair<int, int>> aGone, aLeft;
    for (const auto& [x, y] : m_aInk) {
      int nNeighbours = 0;
      for (int i = 0; i < 8; ++i) nNeighbours += Ink(x, y, i);
      const bool bEast = Ink(x, y, 0), bNorth = Ink(x, y, 2), bWest = Ink(x, y, 4), bSouth = Ink(x, y, 6);
      const bool bSide = nHalf == 0 ? !(bNorth && bEast && bSouth) && !(bEast && bSouth && bWest)
                                    : !(bNorth && bEast && bWest) && !(bNorth && bSouth && bWest);
      const bool bGoes = nNeighbours >= 2 && nNeighbours <= 6 && Crossings(x, y) == 1 && bSide;
      (bGoes ? aGone : aLeft).emplace_back(x, y);
    }
    for (const auto& [x, y] : aGone) m_oInk.At(x, y) = 0;
    m_aInk.swap(aLeft);
    return aGone.size();
  }

  /// Follows the branch that leaves through a neighbour for 12 pixels and returns its direction.
  double Branch(int nX, int nY, int nFirst) const {
    int nBeforeX = nX, nBeforeY = nY, nHereX = nX + s_anX[nFirst], nHereY = nY + s_anY[nFirst];
    for (int nStep = 0; nStep < 12; ++nStep) {
      int nBest = -1;
      double dBest = 0.5;  // it goes on ahead, away from the origin
      for (int i = 0; i < 8; ++i) {
        if (!Ink(nHereX, nHereY, i)) continue;
        const int nToX = nHereX + s_anX[i], nToY = nHereY + s_anY[i];
        if (nToX == nBeforeX && nToY == nBeforeY) continue;
        const double dGain = std::hypot(nToX - nX, nToY - nY) - std::hypot(nHereX - nX, nHereY - nY);
        if (dGain > dBest) dBest = dGain, nBest = i;
      }
      if (nBest < 0) break;
      nBeforeX = nHereX, nBeforeY = nHereY;
      nHereX += s_anX[nBest], nHereY += s_anY[nBest];
    }
    return std::atan2(nY - nHereY, nHereX - nX);
  }

  double DirectionAt(int nX, int nY) const {
    std::vector<double> aBranches;
    for (int i = 0; i < 8; ++i)
      if (!Ink(nX, nY, i) && Ink(nX, nY, i + 1)) aBranches.push_back(Branch(nX, nY, (i + 1) & 7));
    if (aBranches.size() == 1) return aBranches[0];
    // Between the two branches that are closest.
    double dBest = -2.0, dDirection = 0.0;
    for (size_t i = 0; i < aBranches.size(); ++i) {
      const double dA = aBranches[i], dB = aBranches[(i + 1) % aBranches.size()];
      if (std::cos(dA - dB) <= dBest) continue;
      dBest = std::cos(dA - dB);
      dDirection = std::atan2(std::sin(dA) + std::sin(dB), std::cos(dA) + std::cos(dB));
    }
    return dDirection;
  }

  const TpPlane<uint8_t>& m_oCover;
  TpPlane<uint8_t> m_oInk;
  std::vector<std::pair<int, int>> m_aInk;
};

}  // namespace Simulator
