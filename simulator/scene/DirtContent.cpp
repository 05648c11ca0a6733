// Dirt on the glass: a speck, or a smear of streaks.
#include "scene/DirtContent.h"

#include <algorithm>
#include <cmath>

#include "portable/Math.h"
#include "scene/Random.h"

namespace Simulator {
namespace {

constexpr double cdStreakMm = 0.25;
constexpr double cdRimMm = 0.08;  // over which dirt thins out

}  // namespace

ClDirtContent::ClDirtContent(const ClDirtDescription& oDescription) : m_oDescription(oDescription) {
  if (m_oDescription.dLengthMm <= m_oDescription.dWidthMm) return;
  ClRandom oRandom(Mix(static_cast<uint64_t>(std::lround(1000.0 * (oDescription.dXMm + 100.0))),
                       static_cast<uint64_t>(std::lround(1000.0 * (oDescription.dYMm + 100.0)))));
  const int nStreaks = static_cast<int>(oDescription.dWidthMm / cdStreakMm) + 1;
  for (int i = 0; i < nStreaks; ++i)
    m_aStreaks.push_back(i % 2 ? oRandom.Range(0.0, 0.3) : oRandom.Range(0.5, 1.0));
}

bool ClDirtContent::ThereAt(double dSeconds) const noexcept {
  return dSeconds >= m_oDescription.dFrom && dSeconds < m_oDescription.dUntil;
}

uint64_t ClDirtContent::StateAt(double dSeconds) const {
  return ThereAt(dSeconds) ? 1 : 0;
}

/// The share of a ridge's light at a position, in millimetres from the middle.
double ClDirtContent::LightAt(double dAlong, double dAcross) const noexcept {
  const double dHalfWidth = 0.5 * m_oDescription.dWidthMm;
  double dInside = dHalfWidth - std::sqrt(dAlong * dAlong + dAcross * dAcross), dStreak = 1.0;
  if (!m_aStreaks.empty()) {
    dInside = std::min(dHalfWidth - std::fabs(dAcross), 0.5 * m_oDescription.dLengthMm - std::fabs(dAlong));
    if (dInside <= 0.0) return 0.0;
    const auto nStreak = static_cast<size_t>((dAcross + dHalfWidth) / cdStreakMm);
    dStreak = m_aStreaks[std::min(nStreak, m_aStreaks.size() - 1)];
  }
  return m_oDescription.dStrength * dStreak * std::clamp(dInside / cdRimMm, 0.0, 1.0);
}

void ClDirtContent::Draw(double dSeconds, ClPlatenMap& oMap) const {
  if (!ThereAt(dSeconds)) return;
  const double dTurn = m_oDescription.dAngle * Portable::cdPi / 180.0;
  const double dCos = Portable::Cos(dTurn), dSin = Portable::Sin(dTurn);
  const double dReach = 0.5 * Portable::Hypot(m_oDescription.dWidthMm, m_oDescription.dLengthMm) / cdPixelMm;
  const double dMidX = MmToPixel(m_oDescription.dXMm), dMidY = MmToPixel(m_oDescription.dYMm);
  const int nLeft = std::max(0, static_cast<int>(std::floor(dMidX - dReach)));
  const int nRight = std::min(cnPictureSide - 1, static_cast<int>(std::ceil(dMidX + dReach)));
  const int nTop = std::max(0, static_cast<int>(std::floor(dMidY - dReach)));
  const int nBottom = std::min(cnPictureSide - 1, static_cast<int>(std::ceil(dMidY + dReach)));
  for (int y = nTop; y <= nBottom; ++y) {
    uint8_t* pContact = oMap.oContact.Row(y);
    for (int x = nLeft; x <= nRight; ++x) {
      const double dX = (x - dMidX) * cdPixelMm, dY = (dMidY - y) * cdPixelMm;
      const double dLight = LightAt(dX * dCos + dY * dSin, dY * dCos - dX * dSin);
      pContact[x] = std::max(pContact[x], static_cast<uint8_t>(255.0 * dLight));
    }
  }
}

}  // namespace Simulator
