// Row functions of the finger mask's texture: counts of classes in a window, and their distance to skin.
#pragma once

#include "MXKernels/Kernel.h"

namespace MXKernels {

/// Class 0 is not counted: it has what the other five leave of the pixels that have a class.
constexpr size_t cnCountedClasses = 5;
constexpr size_t cnTextureHalf = 7;

/// pCounts[k * nStride + i] += (pEnter[i] == k + 1) - (pLeave[i] == k + 1) for the five classes k + 1, and
/// pTriples[k * nStride + i] = the sum of pCounts[k * nStride + i - 7 .. i - 5] for i in [0, nCount + 12).
///
/// Domain  the counts stay below 16; those of [-7, 0) and [nCount, nCount + 7) are read as well.
/// Cost    only rows of whole vectors, as multiples of 64 are, take the vector form.
extern const TpKernel<void(const uint8_t* pEnter, const uint8_t* pLeave, uint8_t* pCounts, uint8_t* pTriples,
                           size_t nStride, size_t nCount) noexcept>
    MoveClassCountsRow;

/// A row of windows of 15 by 15 pixels, clipped at the image's borders.
struct TextureWindows {
  const uint8_t* m_pTriples;    ///< of MoveClassCountsRow
  size_t m_nStride;             ///< from one class to the next
  const uint8_t* m_pInner;      ///< pixels of each window that have a class
  const uint16_t* m_pFactors;   ///< TextureFactor of each window's pixels
  const uint8_t* m_pReference;  ///< the shares that skin has, one for each of the six classes
};

/// count * 4 * factor / 65536 is 255 * count / nArea, truncated, for all windows of 8 to 15 by 8 to 15
/// pixels.
constexpr uint16_t TextureFactor(uint32_t nArea) {
  return static_cast<uint16_t>((255U * 16384U + nArea - 1) / nArea);
}

/// What a pixel's brightness decides, before its texture is looked at.
struct BrightnessLimits {
  uint8_t m_nBack;    ///< darker signals get m_nLimit
  uint8_t m_nFront;   ///< brighter signals get 0
  uint16_t m_nLimit;  ///< distance of what is background for sure
};

/// pDistance[i] = limit, 0, or 256 * sqrt(d), truncated, by the brightness of pSignal[i]. d is the sum over
/// the six classes of (share - reference)^2 / 6, each division truncated, where a share is 255 * count / area
/// of the window.
extern const TpKernel<void(const TextureWindows& oWindows, const uint8_t* pSignal,
                           const BrightnessLimits& oLimits, uint16_t* pDistance, size_t nCount) noexcept>
    TextureDistanceRow;

}  // namespace MXKernels
