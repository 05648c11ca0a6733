// Row functions of the finger mask: texture classes, distance to the reference texture, decisions.
#pragma once

#include "MXKernels/Kernel.h"

namespace MXKernels {

/// pOut[i] = pClasses[pattern]. Bit 0 of the pattern is set when pAbove[i] is greater than pCentre[i], bit 1
/// when pCentre[i + 1] is, bit 2 when pBelow[i] is, bit 3 when pCentre[i - 1] is. Reads pCentre[-1] and
/// pCentre[nCount] as well. pClasses has 16 entries. No overlap.
extern const TpKernel<void(const uint8_t* pAbove, const uint8_t* pCentre, const uint8_t* pBelow,
                           uint8_t* pOut, size_t nCount, const uint8_t* pClasses) noexcept>
    TextureClassRow;

/// pDistance[i] += (pShare[i] - nReference)^2 / 6, the division truncated, modulo 65536.
extern const TpKernel<void(const uint8_t* pShare, uint8_t nReference, uint16_t* pDistance,
                           size_t nCount) noexcept>
    AddSquaredDistanceRow;

/// The limits that DecideByBrightnessRow decides by.
struct BrightnessDecision {
  uint8_t m_nBack;          ///< darker signals get m_nLimit
  uint8_t m_nFront;         ///< brighter signals get 0
  uint16_t m_nLimit;        ///< distance of what is background for sure
  const uint16_t* m_pRoot;  ///< 65536 entries, applied to the distance of all other samples
};

/// pDistance[i] = limit, 0 or root[pDistance[i]], by the brightness of pSignal[i].
void DecideByBrightnessRow(const uint8_t* pSignal, uint16_t* pDistance, size_t nCount,
                           const BrightnessDecision& oDecision) noexcept;

/// pMask[i] = pDistance[i] < nDistanceLimit and pNear[i] * 100 > pFar[i] * nFog ? 255 : 0.
/// |nFog| <= 1 << 20.
extern const TpKernel<void(const uint16_t* pDistance, const uint8_t* pNear, const uint8_t* pFar,
                           uint8_t* pMask, size_t nCount, uint16_t nDistanceLimit, int32_t nFog) noexcept>
    FingerRow;

}  // namespace MXKernels
