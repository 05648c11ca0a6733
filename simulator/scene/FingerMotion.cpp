// How a finger behaves over time: it touches, settles, slides, presses, lifts and comes back.
#include "scene/FingerMotion.h"

#include <algorithm>
#include <cmath>

#include "scene/Platen.h"

namespace Simulator {
namespace {

constexpr double g_cdPi = 3.14159265358979323846;

// Steps that nobody sees: a 32nd of a pixel, a 64th of a degree, a 128th of all pressure.
constexpr double g_cdPlaceStep = g_cdPixelMm / 32.0;
constexpr double g_cdTurnStep = 1.0 / 64.0;
constexpr double g_cdPressureStep = 1.0 / 128.0;

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
  // Skin sticks at the end rather than creeping to its place: the speed falls with the square root of the time
  // that is left.
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
    dAhead = oSlide.dRadiusMm * std::sin(dWay / oSlide.dRadiusMm);
    dAside = oSlide.dRadiusMm * (1.0 - std::cos(dWay / oSlide.dRadiusMm));
  }
  const double dTurn = oSlide.dDirection * g_cdPi / 180.0;
  o.dXMm += dAhead * std::cos(dTurn) - dAside * std::sin(dTurn);
  o.dYMm -= dAhead * std::sin(dTurn) + dAside * std::cos(dTurn);
  o.bMoving = o.bMoving || dSince < oSlide.dUntil;
}

void Press(const ClFingerDescription& oFinger, double dSince, ClDeviation& o) {
  const ClPressDescription& oPress = oFinger.oPress;
  if (dSince <= oPress.dStart) return;
  const double dPart = std::min(1.0, (dSince - oPress.dStart) / oPress.dSeconds);
  o.dPressure += dPart * (oPress.dPressure - oFinger.dPressure);
  o.bMoving = o.bMoving || dPart < 1.0;
}

}  // namespace

ClFingerPose ClFingerMotion::At(const ClFingerDescription& oFinger, double dSeconds) {
  const double dTouch = std::max(0.0, oFinger.dTouch);
  if (oFinger.dRepeat > 0.0 && dSeconds > dTouch)
    dSeconds = dTouch + std::fmod(dSeconds - dTouch, oFinger.dRepeat);
  double dDown = 1.0;
  if (oFinger.dTouch >= 0.0) dDown = std::min(dDown, (dSeconds - oFinger.dTouch) / oFinger.dTouchSeconds);
  if (oFinger.dLift < g_cdNever)
    dDown = std::min(dDown, 1.0 - (dSeconds - oFinger.dLift) / oFinger.dLiftSeconds);
  ClFingerPose oPose;
  oPose.nDown = static_cast<int>(std::ceil(std::clamp(dDown, 0.0, 1.0) * nSteps));
  if (oPose.nDown == 0) return oPose;

  ClDeviation oDeviation;
  Settle(oFinger, dSeconds - dTouch, oDeviation);
  Slide(oFinger.oSlide, dSeconds - dTouch, oDeviation);
  Press(oFinger, dSeconds - dTouch, oDeviation);
  oPose.dXMm = oFinger.dXMm + InSteps(oDeviation.dXMm, g_cdPlaceStep);
  oPose.dYMm = oFinger.dYMm + InSteps(oDeviation.dYMm, g_cdPlaceStep);
  oPose.dAngle = oFinger.dAngle + InSteps(oDeviation.dTurn, g_cdTurnStep);
  oPose.dPressure = oFinger.dPressure + InSteps(oDeviation.dPressure, g_cdPressureStep);
  oPose.bMoving = oPose.nDown < nSteps || oDeviation.bMoving;
  return oPose;
}

}  // namespace Simulator
