// The direction in which ridges run, place by place.
#include "scene/RidgeFlow.h"

#include <algorithm>

#include "portable/Math.h"
#include "scene/Random.h"

namespace Simulator {

ClRidgeFlow::ClRidgeFlow(const ClPrintDescription& oDescription)
    : m_ePattern(oDescription.ePattern),
      m_dHalfWidth(0.5 * oDescription.dWidthMm),
      m_dHalfHeight(0.5 * oDescription.dHeightMm) {
  ClRandom oRandom(Mix(oDescription.nSeed, 0x466C6F77));
  const double dCoreX = oRandom.Range(-0.8, 0.8);
  const double dCoreY = oRandom.Range(0.5, 1.6);
  const double dDeltaX = m_dHalfWidth * oRandom.Range(0.66, 0.82);
  const double dDeltaY = -m_dHalfHeight * oRandom.Range(0.52, 0.66);
  m_dSteepness = oRandom.Range(0.9, 1.25);
  switch (m_ePattern) {
    case ePatternArch:
      break;
    case ePatternRightLoop:
    case ePatternLeftLoop: {
      // A loop that opens to the right has its delta on the left; for the other loop it is the reverse.
      const double dSide = m_ePattern == ePatternRightLoop ? -1.0 : 1.0;
      m_aCore[0] = {dCoreX, dCoreY};
      m_aDelta[0] = {dSide * dDeltaX, dDeltaY};
      m_nSingularities = 1;
      break;
    }
    case ePatternWhorl: {
      const double dApart = oRandom.Range(0.7, 1.8);
      const double dTilt = oRandom.Range(-0.5, 0.5);
      m_aCore[0] = {dCoreX - dTilt, dCoreY + dApart};
      m_aCore[1] = {dCoreX + dTilt, dCoreY - dApart};
      m_aDelta[0] = {-dDeltaX, dDeltaY};
      m_aDelta[1] = {dDeltaX * oRandom.Range(0.9, 1.05), dDeltaY * oRandom.Range(0.92, 1.08)};
      m_nSingularities = 2;
      break;
    }
  }
}

double ClRidgeFlow::Direction(double dX, double dY) const {
  // Ridges bow over the finger tip and lie flat at the crease below; an arch has no other bend.
  const double dUp = std::clamp((dY + m_dHalfHeight) / (2.0 * m_dHalfHeight), 0.0, 1.0);
  const double dAcross = std::clamp(dX / m_dHalfWidth, -1.2, 1.2);
  if (m_nSingularities == 0) {
    const double dHump = Portable::Exp(-8.0 * (dUp - 0.45) * (dUp - 0.45));
    return -Portable::Atan((m_dSteepness * dHump * 1.3 + 0.9 * dUp * dUp) * Portable::Sin(1.45 * dAcross));
  }
  double dAngle = 0.0;
  for (int i = 0; i < m_nSingularities; ++i) {
    dAngle += Portable::Atan2(dY - m_aCore[i].dY, dX - m_aCore[i].dX);
    dAngle -= Portable::Atan2(dY - m_aDelta[i].dY, dX - m_aDelta[i].dX);
  }
  // A loop has only one delta, which makes ridges steep on its side; the open side needs the steepness added.
  double dBow = 0.15;
  if (m_ePattern == ePatternRightLoop) dBow = dX > 0.0 ? 0.95 : 0.2;
  if (m_ePattern == ePatternLeftLoop) dBow = dX < 0.0 ? 0.95 : 0.2;
  return 0.5 * dAngle - dBow * dUp * dAcross;
}

}  // namespace Simulator
