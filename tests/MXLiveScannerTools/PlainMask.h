// The finger mask once more, written as plainly as possible: numbers on a grid, one loop for each step.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <numeric>
#include <vector>

#include "PlainLabels.h"

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
  const auto First = [nFilter](int n) { return std::max(n - nFilter / 2, 0); };
  const auto End = [nFilter](int n, int nExtent) { return std::min(n + nFilter / 2 + 1, nExtent); };
  const Grid oSums = MakeGrid(oIn.m_nWidth, oIn.m_nHeight, [&](int x, int y) {
    int nSum = 0;
    for (int u = First(x); u < End(x, oIn.m_nWidth); ++u) nSum += oIn.At(u, y);
    return nSum;
  });
  return MakeGrid(oIn.m_nWidth, oIn.m_nHeight, [&](int x, int y) {
    int64_t nSum = 0;
    for (int v = First(y); v < End(y, oIn.m_nHeight); ++v) nSum += oSums.At(x, v);
    const int nArea = (End(x, oIn.m_nWidth) - First(x)) * (End(y, oIn.m_nHeight) - First(y));
    return static_cast<int>(nSum / nArea);
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

inline void PlainFade(Grid& oSignal, int nBottom) {
  const int nWidth = oSignal.m_nWidth, nHeight = oSignal.m_nHeight;
  const auto Fade = [&](bool bApplies, int x, int y, int nNumerator, int nDenominator) {
    if (bApplies) oSignal.At(x, y) = oSignal.At(x, y) * nNumerator / nDenominator;
  };
  for (int y = 0; y < nHeight; ++y) {
    for (int x = 0; x < nWidth; ++x) {
      Fade(y < nBottom, x, y, y, nBottom);
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
    oDistance = MakeGrid(oSignal.m_nWidth, oSignal.m_nHeight, [&](int x, int y) {
      const int nDifference = oShare.At(x, y) - aReference[nClass];
      return oDistance.At(x, y) + nDifference * nDifference / 6;
    });
  }
  return oDistance;
}

/// Regions of nOf with at most nLargest pixels become the other value; those that hold an upper corner are
/// kept when bKeepCorners.
inline void PlainReplace(Grid& oMask, int nOf, int nLargest, bool bKeepCorners) {
  int nLabels = 0;
  const auto aLabels = PlainLabels(
      oMask.m_nWidth, oMask.m_nHeight, [&](int x, int y) { return oMask.At(x, y) == nOf; }, nLabels);
  std::vector<int> aSizes(static_cast<size_t>(nLabels) + 1, 0);
  const auto SizeAt = [&](size_t n) -> int& { return aSizes[static_cast<size_t>(aLabels[n])]; };
  for (size_t n = 0; n < aLabels.size(); ++n) ++SizeAt(n);
  aSizes[0] = nLargest + 1;
  if (bKeepCorners) SizeAt(0) = SizeAt(static_cast<size_t>(oMask.m_nWidth) - 1) = nLargest + 1;
  for (size_t n = 0; n < aLabels.size(); ++n) {
    if (SizeAt(n) <= nLargest) oMask.m_aNumbers[n] = 255 - nOf;
  }
}

/// What the mask processor makes of a frame, by its default parameters but for the fade at the bottom.
inline Grid PlainMask(const Grid& oIn, bool bHalf, int nBottomFade = 100) {
  const int nWidth = bHalf ? oIn.m_nWidth / 2 : oIn.m_nWidth;
  const int nHeight = bHalf ? oIn.m_nHeight / 2 : oIn.m_nHeight;
  using Cell = std::initializer_list<int>;
  const auto Reduced = [&](int (*pfnPick)(Cell)) {
    if (!bHalf) return oIn;
    return MakeGrid(nWidth, nHeight, [&](int x, int y) {
      return pfnPick({oIn.At(2 * x, 2 * y), oIn.At(2 * x + 1, 2 * y), oIn.At(2 * x, 2 * y + 1),
                      oIn.At(2 * x + 1, 2 * y + 1)});
    });
  };
  const Grid oMean = Reduced([](Cell o) { return std::accumulate(o.begin(), o.end(), 0) / 4; });
  const Grid oMax = Reduced([](Cell o) { return std::max(o); });
  const Grid oMin = Reduced([](Cell o) { return std::min(o); });
  Grid oBackground = PlainExtreme(PlainExtreme(oMin, -1), 1);
  for (int& n : oBackground.m_aNumbers) n = std::min(n, 64);
  oBackground = PlainMean(oBackground, 7);
  Grid oSignal = PlainDifference(oMean, oBackground);
  const Grid oUpper = PlainDifference(oMax, oBackground);
  const Grid oEnvelope = PlainMean(PlainExtreme(PlainExtreme(oUpper, 1), -1), 7);
  PlainFade(oSignal, nBottomFade);

  const Grid oTexture = PlainTexture(oSignal);
  const Grid oDistance = MakeGrid(nWidth, nHeight, [&](int x, int y) {
    if (oSignal.At(x, y) < 14) return 8847;
    const double dTexture = oTexture.At(x, y);
    return oSignal.At(x, y) > 64 ? 0 : static_cast<int>(std::sqrt(dTexture) * 256);
  });
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
