// How bright each point of a sheet is, seen by an optics with a point spread.
#include "scene/Sheet.h"

#include <algorithm>
#include <cmath>

#include "portable/Math.h"

namespace Simulator {
namespace {

constexpr double cdReach = 4.0;  // deviations beyond which an edge is not felt
constexpr double cdCellMm = 0.5;

double Radians(double dDegrees) {
  return dDegrees * Portable::cdPi / 180.0;
}

/// The deviation along an axis that is turned against those of the spread.
double Along(double dSpreadX, double dSpreadY, double dTurn) {
  const double dCos = Portable::Cos(dTurn), dSin = Portable::Sin(dTurn);
  return std::sqrt(dSpreadX * dSpreadX * dCos * dCos + dSpreadY * dSpreadY * dSin * dSin);
}

}  // namespace

ClSheetView::ClSheetView(const ClSheetDescription& oSheet, double dSpreadXMm, double dSpreadYMm)
    : m_fMidX(static_cast<float>(oSheet.dXMm)),
      m_fMidY(static_cast<float>(oSheet.dYMm)),
      m_fCos(static_cast<float>(Portable::Cos(Radians(oSheet.dAngle)))),
      m_fSin(static_cast<float>(Portable::Sin(Radians(oSheet.dAngle)))),
      m_fPaper(static_cast<float>(oSheet.eKind == eSheetDark ? cdSheetDark : cdSheetBright)),
      m_aCells(static_cast<size_t>(m_cnCells) * m_cnCells) {
  // The integral of the Gaussian, by the middles of its steps.
  double dSum = 0.0;
  std::array<double, m_cnSteps + 1> adSum{};
  for (int n = 0; n < m_cnSteps; ++n) {
    const double dAt = cdReach * (2.0 * (n + 0.5) / m_cnSteps - 1.0);
    dSum += Portable::Exp(-0.5 * dAt * dAt);
    adSum[static_cast<size_t>(n) + 1] = dSum;
  }
  for (size_t n = 0; n <= m_cnSteps; ++n) m_afStep[n] = static_cast<float>(adSum[n] / dSum);
  const double dTurn = Radians(oSheet.dAngle);
  const double dX = Along(dSpreadXMm, dSpreadYMm, dTurn), dY = Along(dSpreadYMm, dSpreadXMm, dTurn);
  for (const ClSheetField& oField : SheetFields(oSheet.eKind)) {
    m_aFields.push_back(Ready(oField, dX, dY));
    Enter(m_aFields.back(), std::max(dX, dY));
  }
}

ClSheetView::ClReady ClSheetView::Ready(const ClSheetField& oField, double dSpreadX, double dSpreadY) const {
  const double dTurn = Radians(oField.dTurn);
  ClReady o{};
  o.fX = static_cast<float>(oField.dX);
  o.fY = static_cast<float>(oField.dY);
  o.fCos = static_cast<float>(Portable::Cos(dTurn));
  o.fSin = static_cast<float>(Portable::Sin(dTurn));
  o.fHalfX = static_cast<float>(0.5 * oField.dWidth);
  o.fHalfY = static_cast<float>(0.5 * oField.dHeight);
  o.fPerSpreadX = static_cast<float>(1.0 / std::max(Along(dSpreadX, dSpreadY, dTurn), 1e-6));
  o.fPerSpreadY = static_cast<float>(1.0 / std::max(Along(dSpreadY, dSpreadX, dTurn), 1e-6));
  o.fOver = static_cast<float>((oField.eKind == ClSheetField::eDisc ? oField.dLow : oField.dHigh) - m_fPaper);
  o.bDisc = oField.eKind == ClSheetField::eDisc;
  o.bAlongX = oField.bAlongX;
  if (oField.dFrequency > 0.0) {
    o.fPerMm = static_cast<float>(oField.dFrequency * m_cnPhases);
    o.aWave = Wave(oField, oField.bAlongX ? dSpreadX : dSpreadY, m_fPaper);
  }
  return o;
}

/// One period over the light of the paper. The spread takes exp(-2 pi^2 s^2 f^2) of each harmonic, of which
/// bars have the odd ones with 4 / (pi n).
std::vector<float> ClSheetView::Wave(const ClSheetField& oField, double dSpread, double dPaper) {
  const double dMiddle = 0.5 * (oField.dLow + oField.dHigh), dHalf = 0.5 * (oField.dHigh - oField.dLow);
  const bool bBars = oField.eKind == ClSheetField::eBars;
  std::vector<double> aAmplitudes;
  for (int n = 1; n <= (bBars ? 199 : 1); n += 2) {
    const double dF = 2.0 * Portable::cdPi * dSpread * oField.dFrequency * n;
    const double dLeft = 0.5 * dF * dF > 40.0 ? 0.0 : Portable::Exp(-0.5 * dF * dF);
    if (dLeft < 1e-6) break;
    aAmplitudes.push_back(dHalf * dLeft * (bBars ? 4.0 / (Portable::cdPi * n) : 1.0));
  }
  std::vector<float> aWave;
  for (int i = 0; i < m_cnPhases; ++i) {
    double dLight = dMiddle - dPaper;
    for (size_t k = 0; k < aAmplitudes.size(); ++k)
      dLight += aAmplitudes[k] *
                Portable::Sin(2.0 * Portable::cdPi *
                              std::fmod((2.0 * static_cast<double>(k) + 1.0) * i, m_cnPhases) / m_cnPhases);
    aWave.push_back(static_cast<float>(dLight));
  }
  return aWave;
}

/// Enters the newest field into the cells in which it is felt.
void ClSheetView::Enter(const ClReady& o, double dSpread) {
  const double dReach = cdReach * dSpread + cdCellMm;
  const double dX = o.fHalfX * std::fabs(o.fCos) + o.fHalfY * std::fabs(o.fSin) + dReach;
  const double dY = o.fHalfX * std::fabs(o.fSin) + o.fHalfY * std::fabs(o.fCos) + dReach;
  const auto Cell = [](double dMm) {
    return std::clamp(static_cast<int>(std::floor(dMm / cdCellMm)) + m_cnCells / 2, 0, m_cnCells - 1);
  };
  for (int y = Cell(o.fY - dY); y <= Cell(o.fY + dY); ++y) {
    for (int x = Cell(o.fX - dX); x <= Cell(o.fX + dX); ++x) {
      ClCell& oCell = m_aCells[static_cast<size_t>(y) * m_cnCells + static_cast<size_t>(x)];
      if (oCell.nCount < m_cnMost)
        oCell.anField[oCell.nCount++] = static_cast<uint16_t>(m_aFields.size() - 1);
    }
  }
}

float ClSheetView::Step(float fDistance) const noexcept {
  const float fAt =
      (fDistance + static_cast<float>(cdReach)) * static_cast<float>(m_cnSteps / (2.0 * cdReach));
  if (!(fAt > 0.0F)) return 0.0F;
  if (fAt >= static_cast<float>(m_cnSteps)) return 1.0F;
  const int n = static_cast<int>(fAt);
  const size_t i = static_cast<size_t>(n);
  return m_afStep[i] + (m_afStep[i + 1] - m_afStep[i]) * (fAt - static_cast<float>(n));
}

/// What a strip of that half width covers of the spread. Far from both edges it is all of it.
float ClSheetView::Cover(float fAt, float fHalf, float fPerSpread) const noexcept {
  const float fInside = (fHalf - std::fabs(fAt)) * fPerSpread;
  if (fInside >= static_cast<float>(cdReach)) return 1.0F;
  if (fInside <= -static_cast<float>(cdReach)) return 0.0F;
  return Step((fAt + fHalf) * fPerSpread) - Step((fAt - fHalf) * fPerSpread);
}

float ClSheetView::OverAt(const ClReady& o, float fX, float fY) const noexcept {
  const float fDx = fX - o.fX, fDy = fY - o.fY;
  if (o.bDisc) {
    const float fAway = std::sqrt(fDx * fDx + fDy * fDy);
    return o.fOver * Step((o.fHalfX - fAway) * o.fPerSpreadX);
  }
  // Counter-clockwise turns with y down.
  const float fU = fDx * o.fCos - fDy * o.fSin, fV = fDx * o.fSin + fDy * o.fCos;
  const float fCover = Cover(fU, o.fHalfX, o.fPerSpreadX) * Cover(fV, o.fHalfY, o.fPerSpreadY);
  if (o.aWave.empty() || fCover == 0.0F) return o.fOver * fCover;
  const float fPhase = (o.bAlongX ? fU + o.fHalfX : fV + o.fHalfY) * o.fPerMm;
  const int n = static_cast<int>(std::floor(fPhase));
  const float fRest = fPhase - static_cast<float>(n);
  const float fA = o.aWave[static_cast<size_t>(n & (m_cnPhases - 1))];
  const float fB = o.aWave[static_cast<size_t>((n + 1) & (m_cnPhases - 1))];
  return (fA + (fB - fA) * fRest) * fCover;
}

float ClSheetView::LightAt(float fXMm, float fYMm) const noexcept {
  const float fDx = fXMm - m_fMidX, fDy = fYMm - m_fMidY;
  const float fX = fDx * m_fCos - fDy * m_fSin, fY = fDx * m_fSin + fDy * m_fCos;
  const int nX = static_cast<int>(fX * static_cast<float>(1.0 / cdCellMm) + 0.5F * m_cnCells);
  const int nY = static_cast<int>(fY * static_cast<float>(1.0 / cdCellMm) + 0.5F * m_cnCells);
  if (nX < 0 || nY < 0 || nX >= m_cnCells || nY >= m_cnCells) return m_fPaper;
  const ClCell& oCell = m_aCells[static_cast<size_t>(nY) * m_cnCells + static_cast<size_t>(nX)];
  float fLight = m_fPaper;
  for (unsigned n = 0; n < oCell.nCount; ++n) fLight += OverAt(m_aFields[oCell.anField[n]], fX, fY);
  return fLight;
}

}  // namespace Simulator
