// Where ridges run and how far apart: the direction and the period of ridges, position by position.
#include "scene/RidgeFlow.h"

#include <algorithm>

#include "portable/Math.h"
#include "scene/Random.h"

namespace Simulator {
namespace {

constexpr double cdTurn = 2.0 * Portable::cdPi;
// Half the height of the finger to which positions of cores and deltas apply as they stand here.
constexpr double cdUsualHalfHeight = 11.5;

/// The angle of a direction seen from a singularity, bent by its corrections.
double Bent(double dAngle, const double (&adBend)[8]) {
  const double dEighth = (dAngle + Portable::cdPi) * (8.0 / cdTurn);
  const int nEighth = std::clamp(static_cast<int>(dEighth), 0, 7);
  const double dPart = Ease(std::clamp(dEighth - nEighth, 0.0, 1.0));
  return dAngle + adBend[nEighth] + (adBend[(nEighth + 1) & 7] - adBend[nEighth]) * dPart;
}

}  // namespace

EPattern PatternOf(const ClPrintDescription& oDescription) {
  if (oDescription.ePattern != ePatternAny) return oDescription.ePattern;
  // Shares of natural prints after C. L. Wilson, G. T. Candela and C. I. Watson, "Neural network fingerprint
  // classification", Journal of Artificial Neural Networks 1 (1994); of its whorls a sixth are double loops.
  const double d = ClRandom(Mix(oDescription.nSeed, 0x4B696E64)).Uniform();
  if (d < 0.338) return ePatternLeftLoop;
  if (d < 0.655) return ePatternRightLoop;
  if (d < 0.888) return ePatternWhorl;
  if (d < 0.934) return ePatternDoubleLoop;
  return d < 0.971 ? ePatternArch : ePatternTentedArch;
}

double RidgePeriodOf(const ClPrintDescription& oDescription) {
  if (oDescription.dRidgePeriodMm > 0.0) return oDescription.dRidgePeriodMm;
  ClRandom oRandom(Mix(oDescription.nSeed, 0x57696465));
  const double dFinger = 1.0 + 0.1 * (oRandom.Uniform() - oRandom.Uniform());
  return dFinger * (oDescription.eSkin == eSkinChild ? 0.345 : 0.457);
}

ClRidgeFlow::ClRidgeFlow(const ClPrintDescription& oDescription)
    : m_ePattern(PatternOf(oDescription)),
      m_dHalfWidth(0.5 * oDescription.dWidthMm),
      m_dHalfHeight(0.5 * oDescription.dHeightMm),
      m_dScale(m_dHalfHeight / cdUsualHalfHeight),
      m_oBroad(Mix(oDescription.nSeed, 11), 4.2 * m_dScale),
      m_oFine(Mix(oDescription.nSeed, 12), 1.7 * m_dScale),
      m_oSpacing(Mix(oDescription.nSeed, 13), 3.4 * m_dScale),
      m_oFineSpacing(Mix(oDescription.nSeed, 14), 1.5 * m_dScale) {
  ClRandom oRandom(Mix(oDescription.nSeed, 0x466C6F77));
  m_dWiden = oRandom.Range(0.12, 0.3);
  m_dTilt = oRandom.Range(-0.07, 0.07);
  m_dCoreX = m_dScale * oRandom.Range(-1.3, 1.3);
  m_dCoreY = m_dScale * oRandom.Range(-0.6, 3.0);
  m_dBowLeft = oRandom.Range(0.25, 0.6);
  m_dBowRight = oRandom.Range(0.25, 0.6);
  switch (m_ePattern) {
    case ePatternArch:
    case ePatternTentedArch:
      PlaceArch(oRandom);
      break;
    case ePatternRightLoop:
      PlaceLoop(oRandom, 1.0);
      break;
    case ePatternLeftLoop:
      PlaceLoop(oRandom, -1.0);
      break;
    case ePatternWhorl:
      PlaceWhorl(oRandom, false);
      break;
    default:
      PlaceWhorl(oRandom, true);
      break;
  }
}

void ClRidgeFlow::Add(ClRandom& oRandom, bool bCore, double dX, double dY) {
  ClSingularity o{dX, dY, bCore, {}};
  const double dMost = bCore ? 0.18 : 0.26;
  for (double& d : o.adBend) d = oRandom.Range(-dMost, dMost);
  m_aSingularities.push_back(o);
}

void ClRidgeFlow::PlaceArch(ClRandom& oRandom) {
  m_oArch = {oRandom.Range(0.55, 1.5),   oRandom.Range(0.34, 0.56), oRandom.Range(4.0, 13.0), m_dCoreX,
             oRandom.Range(-0.12, 0.12), oRandom.Range(1.25, 1.75)};
  if (m_ePattern != ePatternTentedArch) return;
  // The ridges that hold up the tent stand between a core and a delta right below it.
  const double dApart = m_dScale * oRandom.Range(2.4, 5.0), dLean = oRandom.Range(-0.16, 0.16);
  const double dY = m_dCoreY - m_dScale * oRandom.Range(0.0, 1.5);
  m_dBowLeft += 0.2;
  m_dBowRight += 0.2;
  Add(oRandom, true, m_dCoreX, dY);
  Add(oRandom, false, m_dCoreX + dLean * dApart, dY - dApart);
}

void ClRidgeFlow::PlaceLoop(ClRandom& oRandom, double dSide) {
  // A loop that opens to the right (side 1) has its delta on the left; for the other loop it is the reverse.
  // One delta makes ridges steep on its side; the open side needs the steepness added.
  (dSide > 0.0 ? m_dBowRight : m_dBowLeft) = oRandom.Range(0.45, 0.85);
  const double dDeltaX = m_dCoreX - dSide * m_dScale * oRandom.Range(3.0, 7.6);
  const double dDeltaY = m_dCoreY - m_dScale * oRandom.Range(4.0, 9.0);
  Add(oRandom, true, m_dCoreX, m_dCoreY);
  // Both legs of a loop run alongside each other: the one on the open side is as steep as the other.
  double* pBend = m_aSingularities[0].adBend;
  pBend[dSide > 0.0 ? 3 : 1] -= dSide * oRandom.Range(0.2, 0.55);
  pBend[dSide > 0.0 ? 4 : 0] -= dSide * oRandom.Range(0.15, 0.45);
  Add(oRandom, false, dDeltaX, dDeltaY);
}

void ClRidgeFlow::PlaceWhorl(ClRandom& oRandom, bool bDouble) {
  // Two cores: one above the other in a whorl, side by side in a double loop.
  const double dApart = m_dScale * (bDouble ? oRandom.Range(1.5, 2.9) : oRandom.Range(0.25, 2.0));
  const double dSide = oRandom.Uniform() < 0.5 ? -1.0 : 1.0;
  const double dLean = bDouble ? dSide * oRandom.Range(0.6, 1.3) : oRandom.Range(-0.5, 0.5);
  const double dX = dApart * Portable::Sin(dLean), dY = dApart * Portable::Cos(dLean);
  const double dMiddleY = m_dCoreY - m_dScale * 0.6;
  if (!bDouble) m_dTwist = oRandom.Range(-0.45, 0.45);
  m_dTwistReach = m_dScale * oRandom.Range(1.6, 3.2);
  Add(oRandom, true, m_dCoreX + dX, dMiddleY + dY);
  Add(oRandom, true, m_dCoreX - dX, dMiddleY - dY);
  for (const double d : {-1.0, 1.0}) {
    const double dDeltaX = m_dCoreX + d * m_dScale * oRandom.Range(4.2, 8.0);
    Add(oRandom, false, dDeltaX, dMiddleY - m_dScale * oRandom.Range(4.8, 8.8));
  }
  m_dCoreY = dMiddleY;
}

double ClRidgeFlow::ArchDirection(double dX, double dY) const {
  const double dUp = std::clamp((dY + m_dHalfHeight) / (2.0 * m_dHalfHeight), 0.0, 1.0);
  const double dFromPeak = dUp - m_oArch.dPeak;
  const double dHump = Portable::Exp(-m_oArch.dNarrow * dFromPeak * dFromPeak);
  // The bend is that of the finger, not of the part that is pressed on, which is wider when it rolls.
  const double dHalf = std::min(m_dHalfWidth, 8.5 * m_dScale);
  const double dAcross = std::clamp((dX - m_oArch.dMiddle - m_oArch.dLean * dY) / dHalf, -1.7, 1.7);
  return -Portable::Atan((m_oArch.dSteep * dHump * 1.3 + (0.4 + 1.2 * m_dBowLeft) * dUp * dUp) *
                         Portable::Sin(m_oArch.dWave * dAcross));
}

double ClRidgeFlow::Direction(double dX, double dY) const {
  const double dWaves = 0.11 * m_oBroad.At(dX, dY) + 0.06 * m_oFine.At(dX, dY);
  if (m_aSingularities.empty()) return ArchDirection(dX, dY) + dWaves;
  double dAngle = 0.0;
  for (const ClSingularity& o : m_aSingularities) {
    const double dSeen = Bent(Portable::Atan2(dY - o.dY, dX - o.dX), o.adBend);
    dAngle += o.bCore ? dSeen : -dSeen;
  }
  // Ridges bow over the finger tip and lie flat at the crease below.
  const double dUp = std::clamp((dY + m_dHalfHeight) / (2.0 * m_dHalfHeight), 0.0, 1.0);
  const double dAcross = std::clamp(dX / m_dHalfWidth, -1.2, 1.2);
  double dTwist = 0.0;
  if (m_dTwist != 0.0) {
    const double dU = (dX - m_dCoreX) / m_dTwistReach, dV = (dY - m_dCoreY) / m_dTwistReach;
    dTwist = m_dTwist * Portable::Exp(-0.5 * (dU * dU + dV * dV));
  }
  const double dRight = Ease(std::clamp(0.5 + dAcross, 0.0, 1.0));
  const double dBow = m_dBowLeft + (m_dBowRight - m_dBowLeft) * dRight;
  return 0.5 * dAngle - dBow * dUp * dAcross + dTwist + dWaves;
}

double ClRidgeFlow::Period(double dX, double dY) const {
  // Ridges are widest towards the crease of the joint and finest round the core.
  const double dUp = std::clamp((dY + m_dHalfHeight) / (2.0 * m_dHalfHeight), 0.0, 1.0);
  const double dBelow = std::max(0.0, 0.5 - dUp) / 0.5;
  const double dU = (dX - m_dCoreX) / (3.0 * m_dScale), dV = (dY - m_dCoreY) / (3.0 * m_dScale);
  const double dCore = Portable::Exp(-0.5 * (dU * dU + dV * dV));
  return 0.94 + m_dWiden * dBelow - 0.07 * dCore + m_dTilt * dX / (8.0 * m_dScale) +
         0.17 * m_oSpacing.At(dX, dY) + 0.1 * m_oFineSpacing.At(dX, dY);
}

}  // namespace Simulator
