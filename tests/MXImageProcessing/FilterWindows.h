// The windows of the neighbourhood filters, gathered sample by sample.
#pragma once

#include <algorithm>
#include <cmath>
#include <utility>

#include "TestImages.h"

/// The samples of the window round (nX, nY) that exist.
template <typename T>
std::vector<T> Window(const ClImage& oImage, int nX, int nY, long nHalfX, long nHalfY) {
  std::vector<T> aWindow;
  for (long y = nY - nHalfY; y <= nY + nHalfY; ++y) {
    for (long x = nX - nHalfX; x <= nX + nHalfX; ++x) {
      if (x < 0 || y < 0 || x >= oImage.Width() || y >= oImage.Height()) continue;
      aWindow.push_back(oImage.Row<T>(static_cast<int>(y))[x]);
    }
  }
  return aWindow;
}

/// The samples from nFirst to nLast steps along (or across) a pixel's direction.
template <typename T>
std::vector<T> DirectedWindow(const ClImage& oImage, const ClImage& oDx, const ClImage& oDy, int nX, int nY,
                              bool bAcross, long nFirst, long nLast) {
  const double dX = oDx.Row<int8_t>(nY)[nX] / 128.0, dY = oDy.Row<int8_t>(nY)[nX] / 128.0;
  std::vector<T> aWindow;
  for (long k = nFirst; k <= nLast; ++k) {
    const double x = std::floor(nX + 0.5 + static_cast<double>(k) * (bAcross ? -dY : dX));
    const double y = std::floor(nY + 0.5 + static_cast<double>(k) * (bAcross ? dX : dY));
    const int nRow = static_cast<int>(std::clamp(y, 0.0, oImage.Height() - 1.0));
    aWindow.push_back(oImage.Row<T>(nRow)[static_cast<int>(std::clamp(x, 0.0, oImage.Width() - 1.0))]);
  }
  return aWindow;
}

inline const std::pair<int, int> g_aSizes[] = {{1, 1}, {2, 5}, {7, 3}, {16, 9}, {33, 40}, {70, 21}};
