// Where each part of a finger's skin lies on the platen.
#pragma once

#include "portable/Math.h"
#include "scene/FingerMotion.h"
#include "scene/SceneDescription.h"

namespace Simulator {

constexpr double cdDegree = Portable::cdPi / 180.0;

/// Maps pixels of a print to pixels of the platen's picture for one pose. Skin in the middle of the contact
/// sticks to the glass; when the finger moves on, skin at its edge goes with the bone, and what is between
/// gives way.
///
/// R. Cappelli, D. Maio, D. Maltoni, "Modelling plastic distortion in fingerprint images", ICAPR 2001,
/// describe these three parts.
///
/// Units      pixels, whole numbers being pixel centres; y runs down.
/// Threads    const operations are thread-safe.
class ClSkinMap {
 public:
  /// nWidth, nHeight: of the print.
  ClSkinMap(const ClFingerPose& oPose, const ClStretchDescription& oStretch, int nWidth, int nHeight);

  /// Without it, rows of the platen are straight and even in the print.
  bool Stretched() const noexcept { return m_bStretched; }
  double Cos() const noexcept { return m_dCos; }
  double Sin() const noexcept { return m_dSin; }
  double MiddleX() const noexcept { return m_dMidX; }
  double MiddleY() const noexcept { return m_dMidY; }

  void ToPrint(double dX, double dY, double& dPrintX, double& dPrintY) const;
  void ToPlaten(double dPrintX, double dPrintY, double& dX, double& dY) const;
  /// The direction on the platen of one in the print at a position; radians, counter-clockwise from the
  /// right.
  double TurnedDirection(double dPrintX, double dPrintY, double dDirection) const;

 private:
  /// Takes the stretch off a position that counts from the middle of the print.
  void Relax(double& dU, double& dV) const;

  double m_dCos, m_dSin;
  double m_dMidX, m_dMidY;
  double m_dPrintMidX, m_dPrintMidY;
  bool m_bStretched;
  double m_dMovedU, m_dMovedV, m_dTurn;
};

}  // namespace Simulator
