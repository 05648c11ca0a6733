// The walk over windows that lie along or across the direction of each pixel.
#pragma once

#include <algorithm>
#include <cstdint>

#include "MXTools/FpImage.h"

/// Calls fnStore(x, y, fnTap) for every pixel of the input; fnTap(k), for k of [nFirst, nLast], is the sample
/// k steps from the pixel's centre, in 8.8 fixed point, clamped to the image.
///
/// Domain  one plane; the direction images have the input's size and hold eInt8 components, 128 of which are
///         a step of one pixel. Across means turned by a right angle.
template <typename T, typename TStore>
void ForDirectedWindows(const ClImage& oIn, const ClImage& oDx, const ClImage& oDy, bool bAcross, long nFirst,
                        long nLast, const TStore& fnStore) {
  const int64_t nWidth = oIn.Width(), nHeight = oIn.Height();
  const int64_t nStride = oIn.ElementsPerRow();
  const int64_t nMargin = std::max(-nFirst, nLast);
  const T* const pIn = nHeight > 0 ? oIn.Row<T>(0) : nullptr;
  for (int64_t y = 0; y < nHeight; ++y) {
    const int8_t* pDx = oDx.Row<int8_t>(static_cast<int>(y));
    const int8_t* pDy = oDy.Row<int8_t>(static_cast<int>(y));
    const bool bInnerRow = y >= nMargin && y < nHeight - nMargin;
    for (int64_t x = 0; x < nWidth; ++x) {
      const int64_t nStepX = 2 * (bAcross ? -pDy[x] : pDx[x]);
      const int64_t nStepY = 2 * (bAcross ? pDx[x] : pDy[x]);
      const int64_t nCentreX = x * 256 + 128, nCentreY = y * 256 + 128;
      if (bInnerRow && x >= nMargin && x < nWidth - nMargin) {
        // No step is longer than a pixel.
        fnStore(x, y, [&](int64_t k) {
          return pIn[((nCentreY + k * nStepY) >> 8) * nStride + ((nCentreX + k * nStepX) >> 8)];
        });
      } else {
        fnStore(x, y, [&](int64_t k) {
          const int64_t nX = std::clamp<int64_t>((nCentreX + k * nStepX) >> 8, 0, nWidth - 1);
          const int64_t nY = std::clamp<int64_t>((nCentreY + k * nStepY) >> 8, 0, nHeight - 1);
          return pIn[nY * nStride + nX];
        });
      }
    }
  }
}
