// Where the light from a place on the platen meets the sensor, and how brightly the platen is lit.
#include "sensor/Optics.h"

#include <cmath>

#include "portable/Math.h"
#include "scene/Platen.h"
#include "scene/Random.h"
#include "sensor/SensorMode.h"

namespace Simulator {
namespace {

constexpr double cdPictureMid = 0.5 * (cnPictureSide - 1);
constexpr double cdHalfPicture = 0.5 * cnPictureSide;
constexpr double cdHalfPlatenInch = 0.5 * cdPlatenMm / 25.4;

}  // namespace

ClOptics::ClOptics(uint64_t nSeed, const ClOpticsDescription& oWrong)
    : m_dBend(oWrong.dBendMm / cdPixelMm), m_dShade(oWrong.dShade) {
  ClRandom oRandom(Mix(nSeed, 0x4F707469));
  m_dMidX = 0.5 * (cnSensorWidth - 1) + oRandom.Range(-12.0, 12.0);
  m_dMidY = 0.5 * (cnSensorHeight - 1) + oRandom.Range(-10.0, 10.0);
  m_dScaleX = 1052.0 * cdHalfPlatenInch * oRandom.Range(1.003, 1.009);
  m_dScaleY = 768.0 * cdHalfPlatenInch * oRandom.Range(1.003, 1.009);
  m_dKeystoneX = oRandom.Range(-0.006, 0.006);
  m_dKeystoneY = oRandom.Range(0.012, 0.026);
  m_dBarrel = oRandom.Range(0.006, 0.012);
  const double dTwist = oRandom.Range(-0.005, 0.005);
  m_dCos = Portable::Cos(dTwist);
  m_dSin = Portable::Sin(dTwist);
  m_dFallX = oRandom.Range(0.15, 0.18);
  m_dFallY = oRandom.Range(0.11, 0.14);
  m_dTiltX = oRandom.Range(-0.003, 0.003);
  m_dTiltY = oRandom.Range(-0.03, 0.03);
  m_dSpreadX = oWrong.dBlur * oRandom.Range(0.30, 0.45);
  m_dSpreadY = oWrong.dBlur * oRandom.Range(0.30, 0.45);
}

ClPoint ClOptics::PixelMm() const noexcept {
  return {0.5 * cdPlatenMm / m_dScaleX, 0.5 * cdPlatenMm / m_dScaleY};
}

/// By how much a point lies further to the right: one wave from the top to the bottom of the platen.
double ClOptics::Bend(double dY) const noexcept {
  return m_dBend == 0.0 ? 0.0 : m_dBend * Portable::Sin(Portable::cdPi * (dY - cdPictureMid) / cdHalfPicture);
}

ClPoint ClOptics::PictureToSensor(double dX, double dY) const noexcept {
  dX += Bend(dY);
  const double dU = (cdPictureMid - dX) / cdHalfPicture, dV = (dY - cdPictureMid) / cdHalfPicture;
  const double dDepth = 1.0 + m_dKeystoneX * dU + m_dKeystoneY * dV;
  const double dA = (dU * m_dCos - dV * m_dSin) / dDepth, dB = (dU * m_dSin + dV * m_dCos) / dDepth;
  const double dPull = 1.0 - m_dBarrel * (dA * dA + dB * dB);
  return {m_dMidX + m_dScaleX * dA * dPull, m_dMidY + m_dScaleY * dB * dPull};
}

ClPoint ClOptics::SensorToPicture(double dX, double dY) const noexcept {
  double dA = (dX - m_dMidX) / m_dScaleX, dB = (dY - m_dMidY) / m_dScaleY;
  // Barrel distortion shortens a radius r to r * (1 - barrel * r * r); Newton's method undoes that in a few
  // steps.
  const double dPulled = std::sqrt(dA * dA + dB * dB);
  double dRadius = dPulled;
  for (int i = 0; i < 5; ++i)
    dRadius -= (dRadius * (1.0 - m_dBarrel * dRadius * dRadius) - dPulled) /
               (1.0 - 3.0 * m_dBarrel * dRadius * dRadius);
  if (dPulled > 0.0) {
    dA *= dRadius / dPulled;
    dB *= dRadius / dPulled;
  }
  const double dU = dA * m_dCos + dB * m_dSin, dV = dB * m_dCos - dA * m_dSin;
  const double dDepth = 1.0 / (1.0 - m_dKeystoneX * dU - m_dKeystoneY * dV);
  const double dY1 = cdPictureMid + dV * dDepth * cdHalfPicture;
  return {cdPictureMid - dU * dDepth * cdHalfPicture - Bend(dY1), dY1};
}

double ClOptics::Illumination(double dX, double dY) const noexcept {
  const double dU = (dX - cdPictureMid) / cdHalfPicture, dV = (dY - cdPictureMid) / cdHalfPicture;
  const double dLight = 1.0 - m_dFallX * dU * dU - m_dFallY * dV * dV + m_dTiltX * dU + m_dTiltY * dV;
  return m_dShade == 0.0 ? dLight : dLight * (1.0 - 0.5 * m_dShade * (dU * dU + dV * dV));
}

}  // namespace Simulator
