// The tip of a pen on the glass.
#include "scene/PenContent.h"

#include <algorithm>
#include <cmath>

#include "portable/Math.h"
#include "scene/Random.h"

namespace Simulator {
namespace {

constexpr double cdRimPixels = 3.0;  // over which the light of the tip falls off

}  // namespace

uint64_t ClPenContent::StateAt(double dSeconds) const {
  const ClPenTip oTip = m_pPath->At(dSeconds);
  if (!oTip.bDown) return 0;
  // Both are whole numbers of steps.
  return Mix(static_cast<uint64_t>(std::llround(oTip.dXMm * 32.0 / cdPixelMm)),
             static_cast<uint64_t>(std::llround(oTip.dYMm * 32.0 / cdPixelMm)));
}

void ClPenContent::Draw(double dSeconds, ClPlatenMap& oMap) const {
  const ClPenTip oTip = m_pPath->At(dSeconds);
  if (!oTip.bDown) return;
  const double dMidX = MmToPixel(oTip.dXMm), dMidY = MmToPixel(oTip.dYMm);
  const double dReach = m_dRadius + 0.5 * cdRimPixels;
  const int nLeft = std::max(0, static_cast<int>(std::floor(dMidX - dReach)));
  const int nRight = std::min(cnPictureSide - 1, static_cast<int>(std::ceil(dMidX + dReach)));
  const int nTop = std::max(0, static_cast<int>(std::floor(dMidY - dReach)));
  const int nBottom = std::min(cnPictureSide - 1, static_cast<int>(std::ceil(dMidY + dReach)));
  for (int y = nTop; y <= nBottom; ++y) {
    uint8_t* pContact = oMap.oContact.Row(y);
    for (int x = nLeft; x <= nRight; ++x) {
      const double dInside = (dReach - Portable::Hypot(x - dMidX, y - dMidY)) / cdRimPixels;
      pContact[x] =
          std::max(pContact[x], static_cast<uint8_t>(255.0 * m_dStrength * std::clamp(dInside, 0.0, 1.0)));
    }
  }
}

}  // namespace Simulator
