// Where each part of a finger's skin lies on the platen.
#include "scene/SkinMap.h"

#include <algorithm>
#include <cmath>

#include "portable/Math.h"
#include "scene/Platen.h"
#include "scene/SmoothNoise.h"

namespace Simulator {
namespace {

// Shares of the half print within which skin sticks, and from which on it goes with the bone.
constexpr double cdSticks = 0.25;
constexpr double cdFollows = 0.95;

}  // namespace

ClSkinMap::ClSkinMap(const ClFingerPose& oPose, const ClStretchDescription& oStretch, int nWidth, int nHeight)
    : m_dCos(Portable::Cos(oPose.dAngle * cdDegree)),
      m_dSin(Portable::Sin(oPose.dAngle * cdDegree)),
      m_dMidX(MmToPixel(oPose.dXMm)),
      m_dMidY(MmToPixel(oPose.dYMm)),
      m_dPrintMidX(0.5 * (nWidth - 1)),
      m_dPrintMidY(0.5 * (nHeight - 1)),
      m_bStretched(oStretch.Any()),
      m_dMovedU((oStretch.dXMm * m_dCos - oStretch.dYMm * m_dSin) / cdPixelMm),
      m_dMovedV((oStretch.dXMm * m_dSin + oStretch.dYMm * m_dCos) / cdPixelMm),
      m_dTurn(oStretch.dTurn * cdDegree) {}

void ClSkinMap::Relax(double& dU, double& dV) const {
  const double dA = dU / (m_dPrintMidX + 0.5), dB = dV / (m_dPrintMidY + 0.5);
  const double dAway = std::sqrt(dA * dA + dB * dB);
  const double dPart = Ease(std::clamp((dAway - cdSticks) / (cdFollows - cdSticks), 0.0, 1.0));
  if (dPart == 0.0) return;
  // With y down this turns clockwise.
  const double dCos = Portable::Cos(dPart * m_dTurn), dSin = Portable::Sin(dPart * m_dTurn), dWas = dU;
  dU = dWas * dCos - dV * dSin - dPart * m_dMovedU;
  dV = dWas * dSin + dV * dCos - dPart * m_dMovedV;
}

void ClSkinMap::ToPrint(double dX, double dY, double& dPrintX, double& dPrintY) const {
  // This turns from the platen back into the print.
  double dU = (dX - m_dMidX) * m_dCos - (dY - m_dMidY) * m_dSin;
  double dV = (dX - m_dMidX) * m_dSin + (dY - m_dMidY) * m_dCos;
  if (m_bStretched) Relax(dU, dV);
  dPrintX = dU + m_dPrintMidX;
  dPrintY = dV + m_dPrintMidY;
}

void ClSkinMap::ToPlaten(double dPrintX, double dPrintY, double& dX, double& dY) const {
  const double dU = dPrintX - m_dPrintMidX, dV = dPrintY - m_dPrintMidY;
  double dStretchedU = dU, dStretchedV = dV;
  // The stretch changes slowly with the position: what is off is taken back until nothing is.
  for (int i = 0; m_bStretched && i < 12; ++i) {
    double dBackU = dStretchedU, dBackV = dStretchedV;
    Relax(dBackU, dBackV);
    dStretchedU += dU - dBackU;
    dStretchedV += dV - dBackV;
  }
  dX = m_dMidX + dStretchedU * m_dCos + dStretchedV * m_dSin;
  dY = m_dMidY - dStretchedU * m_dSin + dStretchedV * m_dCos;
}

double ClSkinMap::TurnedDirection(double dPrintX, double dPrintY, double dDirection) const {
  const double dStepX = 3.0 * Portable::Cos(dDirection), dStepY = -3.0 * Portable::Sin(dDirection);
  double dFromX, dFromY, dToX, dToY;
  ToPlaten(dPrintX - dStepX, dPrintY - dStepY, dFromX, dFromY);
  ToPlaten(dPrintX + dStepX, dPrintY + dStepY, dToX, dToY);
  return Portable::Atan2(dFromY - dToY, dToX - dFromX);
}

}  // namespace Simulator
