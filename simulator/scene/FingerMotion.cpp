// How a finger behaves over time: it touches, settles, slides, presses, rolls, lifts and comes back.
#include "scene/FingerMotion.h"

#include <algorithm>
#include <cmath>

#include "portable/Math.h"
#include "scene/Platen.h"

namespace Simulator {
namespace {

// Steps that nobody sees: a 32nd of a pixel, a 64th of a degree, a 128th of all pressure.
constexpr double cdTurnStep = 1.0 / 64.0;
constexpr double cdPressureStep = 1.0 / 128.0;

double InSteps(double dValue, double dStep) {
  return std::round(dValue / dStep) * dStep;
}

/// Deviations from the pose in which the finger would lie still.
struct ClDeviation {
  double dXMm = 0.0, dYMm = 0.0, dTurn = 0.0, dPressure = 0.0;
  bool bMoving = false;
};

void Settle(const ClFingerDescription& oFinger, double dSince, ClDeviation& o) {
  const ClSettleDescription& oSettle = oFinger.oSettle;
  if (dSince >= oSettle.dSeconds) return;
  // At the end the skin sticks at once and does not creep to its position: the speed falls with the square
  // root of the time that is left.
  const double dLeft = std::min(1.0, 1.0 - dSince / oSettle.dSeconds), dPart = dLeft * std::sqrt(dLeft);
  o.dXMm += dPart * oSettle.dXMm;
  o.dYMm += dPart * oSettle.dYMm;
  o.dTurn += dPart * oSettle.dTurn;
  o.dPressure += dPart * (oSettle.dPressure - oFinger.dPressure);
  o.bMoving = true;
}

void Slide(const ClSlideDescription& oSlide, double dSince, ClDeviation& o) {
  if (oSlide.dSpeed == 0.0 || dSince <= oSlide.dStart) return;
  const double dWay = oSlide.dSpeed * (std::min(dSince, oSlide.dUntil) - oSlide.dStart);
  double dAhead = dWay, dAside = 0.0;
  if (oSlide.dRadiusMm > 0.0) {
    dAhead = oSlide.dRadiusMm * Portable::Sin(dWay / oSlide.dRadiusMm);
    dAside = oSlide.dRadiusMm * (1.0 - Portable::Cos(dWay / oSlide.dRadiusMm));
  }
  const double dTurn = oSlide.dDirection * Portable::cdPi / 180.0;
  o.dXMm += dAhead * Portable::Cos(dTurn) - dAside * Portable::Sin(dTurn);
  o.dYMm -= dAhead * Portable::Sin(dTurn) + dAside * Portable::Cos(dTurn);
  o.bMoving = o.bMoving || dSince < oSlide.dUntil;
}

void Press(const ClFingerDescription& oFinger, double dSince, ClDeviation& o) {
  const ClPressDescription& oPress = oFinger.oPress;
  if (dSince <= oPress.dStart) return;
  const double dPart = std::min(1.0, (dSince - oPress.dStart) / oPress.dSeconds);
  o.dPressure += dPart * (oPress.dPressure - oFinger.dPressure);
  o.bMoving = o.bMoving || dPart < 1.0;
}

/// The moment of a roll, and whether anything changes in it.
ClRollMoment Roll(const std::vector<ClRollMoment>& aPath, double dSince, bool& bMoving) {
  const auto itNext =
      std::upper_bound(aPath.begin(), aPath.end(), dSince,
                       [](double dMoment, const ClRollMoment& o) { return dMoment < o.dSeconds; });
  if (itNext == aPath.begin()) return aPath.front();
  if (itNext == aPath.end()) return aPath.back();
  const ClRollMoment &oBefore = *(itNext - 1), &oNext = *itNext;
  const double dPart = (dSince - oBefore.dSeconds) / (oNext.dSeconds - oBefore.dSeconds);
  const auto Between = [dPart](double dFrom, double dTo) { return dFrom + dPart * (dTo - dFrom); };
  bMoving = bMoving || oBefore.dStripMm != oNext.dStripMm || oBefore.dTurn != oNext.dTurn ||
            oBefore.dDown != oNext.dDown;
  return {dSince, Between(oBefore.dStripMm, oNext.dStripMm), Between(oBefore.dTurn, oNext.dTurn),
          Between(oBefore.dDown, oNext.dDown)};
}

}  // namespace

double ClFingerMotion::PressureOf(const ClFingerPose& oPose) {
  if (oPose.nDown == nSteps) return oPose.dPressure;
  const double dDown = static_cast<double>(oPose.nDown) / nSteps;
  return oPose.dPressure * (0.4 + 0.6 * dDown) - 0.4 * (1.0 - dDown);
}

ClFingerPose ClFingerMotion::At(const ClFingerDescription& oFinger, double dSeconds) {
  const double dTouch = std::max(0.0, oFinger.dTouch);
  if (oFinger.dRepeat > 0.0 && dSeconds > dTouch)
    dSeconds = dTouch + std::fmod(dSeconds - dTouch, oFinger.dRepeat);
  double dDown = 1.0;
  if (oFinger.dTouch >= 0.0) dDown = std::min(dDown, (dSeconds - oFinger.dTouch) / oFinger.dTouchSeconds);
  if (oFinger.dLift < cdNever)
    dDown = std::min(dDown, 1.0 - (dSeconds - oFinger.dLift) / oFinger.dLiftSeconds);
  ClDeviation oDeviation;
  ClRollMoment oRoll;
  if (oFinger.oRoll.dWidthMm > 0.0) {
    oRoll = Roll(oFinger.oRoll.aPath, dSeconds - dTouch, oDeviation.bMoving);
    dDown = std::min(dDown, oRoll.dDown);
  }
  ClFingerPose oPose;
  oPose.nDown = static_cast<int>(std::ceil(std::clamp(dDown, 0.0, 1.0) * nSteps));
  if (oPose.nDown == 0) return oPose;

  Settle(oFinger, dSeconds - dTouch, oDeviation);
  Slide(oFinger.oSlide, dSeconds - dTouch, oDeviation);
  Press(oFinger, dSeconds - dTouch, oDeviation);
  oPose.dXMm = oFinger.dXMm + InSteps(oDeviation.dXMm, cdPlaceStep);
  oPose.dYMm = oFinger.dYMm + InSteps(oDeviation.dYMm, cdPlaceStep);
  oPose.dAngle = oFinger.dAngle + InSteps(oDeviation.dTurn + oRoll.dTurn, cdTurnStep);
  oPose.dStripMm = InSteps(oRoll.dStripMm, cdPlaceStep);
  oPose.dPressure = oFinger.dPressure + InSteps(oDeviation.dPressure, cdPressureStep);
  oPose.bMoving = oPose.nDown < nSteps || oDeviation.bMoving;
  return oPose;
}

}  // namespace Simulator
