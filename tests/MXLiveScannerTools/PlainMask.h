// The finger mask once more, as plainly as it can be told: numbers on a grid, one loop a step.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

/// A rectangle of numbers.
struct Grid {
  int m_nWidth = 0;
  int m_nHeight = 0;
  std::vector<int> m_aNumbers;

  Grid() = default;
  Grid(int nWidth, int nHeight)
      : m_nWidth(nWidth), m_nHeight(nHeight), m_aNumbers(static_cast<size_t>(nWidth * nHeight), 0) {}
  int& At(int x, int y) { return m_aNumbers[static_cast<size_t>(y * m_nWidth + x)]; }
  int At(int x, int y) const { return m_aNumbers[static_cast<size_t>(y * m_nWidth + x)]; }
  bool Has(int x, int y) const { return x >= 0 && y >= 0 && x < m_nWidth && y < m_nHeight; }
};

/// A grid whose number at (x, y) is fnNumber(x, y).
template <typename TNumber>
Grid MakeGrid(int nWidth, int nHeight, TNumber&& fnNumber) {
  Grid oGrid(nWidth, nHeight);
  for (int y = 0; y < nHeight; ++y) {
    for (int x = 0; x < nWidth; ++x) oGrid.At(x, y) = fnNumber(x, y);
  }
  return oGrid;
}

inline Grid PlainMean(const Grid& oIn, int nFilter) {
  if (oIn.m_nWidth < nFilter || oIn.m_nHeight < nFilter) return oIn;
  // Sums of all rectangles that begin in the corner.
  std::vector<int64_t> aCorner(static_cast<size_t>((oIn.m_nWidth + 1) * (oIn.m_nHeight + 1)), 0);
  const auto Corner = [&](int x, int y) -> int64_t& {
    return aCorner[static_cast<size_t>(y * (oIn.m_nWidth + 1) + x)];
  };
  for (int y = 0; y < oIn.m_nHeight; ++y) {
    for (int x = 0; x < oIn.m_nWidth; ++x) {
      Corner(x + 1, y + 1) = oIn.At(x, y) + Corner(x, y + 1) + Corner(x + 1, y) - Corner(x, y);
    }
  }
  const int nHalf = nFilter / 2;
  return MakeGrid(oIn.m_nWidth, oIn.m_nHeight, [&](int x, int y) {
    const int nX0 = std::max(x - nHalf, 0), nX1 = std::min(x + nHalf + 1, oIn.m_nWidth);
    const int nY0 = std::max(y - nHalf, 0), nY1 = std::min(y + nHalf + 1, oIn.m_nHeight);
    const int64_t nSum = Corner(nX1, nY1) - Corner(nX0, nY1) - Corner(nX1, nY0) + Corner(nX0, nY0);
    return static_cast<int>(nSum / ((nX1 - nX0) * (nY1 - nY0)));
  });
}

/// Largest (nSign 1) or smallest (nSign -1) number of each 7 by 7 window.
inline Grid PlainExtreme(const Grid& oIn, int nSign) {
  return MakeGrid(oIn.m_nWidth, oIn.m_nHeight, [&](int x, int y) {
    int nBest = oIn.At(x, y);
    for (int v = y - 3; v <= y + 3; ++v) {
      for (int u = x - 3; u <= x + 3; ++u) {
        if (oIn.Has(u, v) && nSign * oIn.At(u, v) > nSign * nBest) nBest = oIn.At(u, v);
      }
    }
    return nBest;
  });
}

inline Grid PlainDifference(const Grid& oA, const Grid& oB) {
  return MakeGrid(oA.m_nWidth, oA.m_nHeight,
                  [&](int x, int y) { return std::max(oA.At(x, y) - oB.At(x, y), 0); });
}

inline Grid PlainTwice(const Grid& oIn) {
  return MakeGrid(2 * oIn.m_nWidth, 2 * oIn.m_nHeight, [&](int x, int y) { return oIn.At(x / 2, y / 2); });
}

inline void PlainFade(Grid& oSignal) {
  const int nWidth = oSignal.m_nWidth, nHeight = oSignal.m_nHeight;
  const auto Fade = [&](bool bApplies, int x, int y, int nNumerator, int nDenominator) {
    if (bApplies) oSignal.At(x, y) = oSignal.At(x, y) * nNumerator / nDenominator;
  };
  for (int y = 0; y < nHeight; ++y) {
    for (int x = 0; x < nWidth; ++x) {
      Fade(y < 100, x, y, y, 100);
      Fade(y >= nHeight - 20, x, y, nHeight - 1 - y, 20);
      Fade(x < 10, x, y, x, 10);
      Fade(x >= nWidth - 10, x, y, nWidth - 1 - x, 10);
    }
  }
}

/// Mean square deviation of the local class shares from those of skin.
inline Grid PlainTexture(const Grid& oSignal) {
  const int aReference[6] = {36, 49, 92, 44, 23, 11};
  Grid oDistance(oSignal.m_nWidth, oSignal.m_nHeight);
  for (int nClass = 0; nClass < 6; ++nClass) {
    const Grid oMembers = MakeGrid(oSignal.m_nWidth, oSignal.m_nHeight, [&](int x, int y) {
      if (x == 0 || y == 0 || x == oSignal.m_nWidth - 1 || y == oSignal.m_nHeight - 1) return 0;
      const int nCentre = oSignal.At(x, y);
      const bool bAbove = oSignal.At(x, y - 1) > nCentre, bBelow = oSignal.At(x, y + 1) > nCentre;
      const bool bLeft = oSignal.At(x - 1, y) > nCentre, bRight = oSignal.At(x + 1, y) > nCentre;
      int nIs = bAbove + bBelow + bLeft + bRight;
      if (nIs == 2 && bAbove == bBelow) nIs = 5;
      return nIs == nClass ? 255 : 0;
    });
    const Grid oShare = PlainMean(oMembers, 15);
    for (int y = 0; y < oSignal.m_nHeight; ++y) {
      for (int x = 0; x < oSignal.m_nWidth; ++x) {
        const int nDifference = oShare.At(x, y) - aReference[nClass];
        oDistance.At(x, y) += nDifference * nDifference / 6;
      }
    }
  }
  return oDistance;
}

/// Regions of nOf with at most nLargest pixels become the other value; those that hold an upper corner are kept when
/// bKeepCorners.
inline void PlainReplace(Grid& oMask, int nOf, int nLargest, bool bKeepCorners) {
  Grid oSeen(oMask.m_nWidth, oMask.m_nHeight);
  for (int y = 0; y < oMask.m_nHeight; ++y) {
    for (int x = 0; x < oMask.m_nWidth; ++x) {
      if (oMask.At(x, y) != nOf || oSeen.At(x, y) != 0) continue;
      std::vector<std::pair<int, int>> aRegion = {{x, y}};
      oSeen.At(x, y) = 1;
      bool bCorner = false;
      for (size_t n = 0; n < aRegion.size(); ++n) {
        const auto [nX, nY] = aRegion[n];
        bCorner = bCorner || (nY == 0 && (nX == 0 || nX == oMask.m_nWidth - 1));
        for (const auto& [u, v] : {std::pair{nX - 1, nY}, {nX + 1, nY}, {nX, nY - 1}, {nX, nY + 1}}) {
          if (!oMask.Has(u, v) || oMask.At(u, v) != nOf || oSeen.At(u, v) != 0) continue;
          oSeen.At(u, v) = 1;
          aRegion.emplace_back(u, v);
        }
      }
      if (static_cast<int>(aRegion.size()) > nLargest || (bKeepCorners && bCorner)) continue;
      for (const auto& [nX, nY] : aRegion) oMask.At(nX, nY) = 255 - nOf;
    }
  }
}

/// What the mask processor makes of a frame, by its default parameters.
inline Grid PlainMask(const Grid& oIn, bool bHalf) {
  const auto Cell = [&](int x, int y, int n) { return oIn.At(2 * x + n % 2, 2 * y + n / 2); };
  const int nWidth = bHalf ? oIn.m_nWidth / 2 : oIn.m_nWidth,
            nHeight = bHalf ? oIn.m_nHeight / 2 : oIn.m_nHeight;
  Grid oMean = oIn, oMax = oIn, oMin = oIn;
  if (bHalf) {
    oMean = MakeGrid(nWidth, nHeight, [&](int x, int y) {
      return (Cell(x, y, 0) + Cell(x, y, 1) + Cell(x, y, 2) + Cell(x, y, 3)) / 4;
    });
    oMax = MakeGrid(nWidth, nHeight, [&](int x, int y) {
      return std::max({Cell(x, y, 0), Cell(x, y, 1), Cell(x, y, 2), Cell(x, y, 3)});
    });
    oMin = MakeGrid(nWidth, nHeight, [&](int x, int y) {
      return std::min({Cell(x, y, 0), Cell(x, y, 1), Cell(x, y, 2), Cell(x, y, 3)});
    });
  }
  Grid oBackground = PlainExtreme(PlainExtreme(oMin, -1), 1);
  for (int& n : oBackground.m_aNumbers) n = std::min(n, 64);
  oBackground = PlainMean(oBackground, 7);
  Grid oSignal = PlainDifference(oMean, oBackground);
  const Grid oUpper = PlainDifference(oMax, oBackground);
  const Grid oEnvelope = PlainMean(PlainExtreme(PlainExtreme(oUpper, 1), -1), 7);
  PlainFade(oSignal);

  Grid oDistance = PlainTexture(oSignal);
  for (int y = 0; y < nHeight; ++y) {
    for (int x = 0; x < nWidth; ++x) {
      int& nDistance = oDistance.At(x, y);
      nDistance = static_cast<int>(std::sqrt(static_cast<double>(nDistance)) * 256);
      if (oSignal.At(x, y) > 64) nDistance = 0;
      if (oSignal.At(x, y) < 14) nDistance = 8847;
    }
  }
  const Grid oSmoothed = PlainMean(oDistance, 15);
  const Grid oBright =
      MakeGrid(nWidth, nHeight, [&](int x, int y) { return 2 * std::min(oEnvelope.At(x, y), 127); });
  const Grid oNear = PlainMean(oBright, 11), oFar = PlainMean(oBright, 101);
  Grid oMask = MakeGrid(nWidth, nHeight, [&](int x, int y) {
    return oSmoothed.At(x, y) < 8200 && oNear.At(x, y) * 100 > oFar.At(x, y) * 80 ? 255 : 0;
  });
  oMask = PlainMean(oMask, 21);
  for (int& n : oMask.m_aNumbers) n = n >= 192 ? 255 : 0;
  PlainReplace(oMask, 255, 2999, false);
  PlainReplace(oMask, 0, 3999, true);

  const Grid oSoft = bHalf ? PlainMean(PlainTwice(oMask), 15) : PlainMean(oMask, 7);
  const Grid oFinalEnvelope = bHalf ? PlainTwice(oEnvelope) : oEnvelope;
  const Grid oFinalSignal = bHalf ? PlainDifference(oIn, PlainTwice(oBackground)) : oSignal;
  return MakeGrid(oIn.m_nWidth, oIn.m_nHeight, [&](int x, int y) {
    const int nFlat = std::min(oFinalSignal.At(x, y) * 255 / std::max(oFinalEnvelope.At(x, y), 1), 255);
    return 255 - nFlat * oSoft.At(x, y) / 255;
  });
}
