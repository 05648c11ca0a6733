// The calibration target on the glass: a bright sheet with a grid of dark dots.
#include "scene/TargetContent.h"

#include <algorithm>
#include <cmath>

#include "portable/Math.h"
#include "scene/Random.h"

namespace Simulator {
namespace {

constexpr double cdHalfMm = 0.5 * cdPlatenMm;
/// Second prints of a dot lie this part of its radius beside it.
constexpr double cdSlip = 1.2;

}  // namespace

ClTargetDescription PlainTarget(uint64_t nSeed) {
  ClRandom oRandom(Mix(nSeed, MixText("target")));
  ClTargetDescription oTarget;
  oTarget.bThere = true;
  oTarget.nSeed = nSeed;
  oTarget.dRadiusMm = oRandom.Range(1.35, 2.1);
  oTarget.dUneven = oRandom.Range(0.1, 0.25);
  return oTarget;
}

std::array<ClPlaceMm, cnTargetDots> TargetDots(const ClTargetDescription& oTarget) {
  const double dTurn = oTarget.dAngle * Portable::cdPi / 180.0;
  const double dCos = Portable::Cos(dTurn), dSin = Portable::Sin(dTurn);
  constexpr double dMiddle = 0.5 * (cnTargetSide - 1);
  std::array<ClPlaceMm, cnTargetDots> aPlaces;
  for (int n = 0; n < static_cast<int>(cnTargetDots); ++n) {
    const int nColumn = n / cnTargetSide, nRow = n % cnTargetSide;
    const double dX = cdTargetPitchMm * (dMiddle - nColumn);
    const double dY = cdTargetPitchMm * (nRow - dMiddle);
    aPlaces[static_cast<size_t>(n)] = {oTarget.dXMm + dX * dCos + dY * dSin,
                                       oTarget.dYMm + dY * dCos - dX * dSin};
  }
  return aPlaces;
}

ClTargetContent::ClTargetContent(const ClTargetDescription& oDescription)
    : m_dUneven(oDescription.dUneven), m_dLightX(0.0), m_dLightY(0.0) {
  const std::array<ClPlaceMm, cnTargetDots> aDots = TargetDots(oDescription);
  const auto AddDot = [&](const ClPlaceMm& o) {
    m_aMarks.push_back({o, o, oDescription.dRadiusMm, 0.0F, 1.0F});
  };
  for (size_t n = 0; n < aDots.size(); ++n) {
    const auto Holds = [n](const std::vector<unsigned>& a) { return std::count(a.begin(), a.end(), n) > 0; };
    if (!Holds(oDescription.aMissing)) AddDot(aDots[n]);
    if (Holds(oDescription.aDoubled)) AddDot({aDots[n].dX + cdSlip * oDescription.dRadiusMm, aDots[n].dY});
  }
  ClRandom oRandom(Mix(oDescription.nSeed, MixText("marks")));
  const double dLight = oRandom.Range(0.0, 2.0 * Portable::cdPi);
  m_dLightX = Portable::Cos(dLight);
  m_dLightY = Portable::Sin(dLight);
  const auto Anywhere = [&oRandom] {
    const double dX = oRandom.Range(0.0, cdPlatenMm);
    return ClPlaceMm{dX, oRandom.Range(0.0, cdPlatenMm)};
  };
  for (unsigned n = 0; n < oDescription.nDust; ++n) {
    const ClPlaceMm oPlace = Anywhere();
    const double dRadius = oRandom.Range(0.04, 0.15);
    m_aMarks.push_back({oPlace, oPlace, dRadius, 0.4F, static_cast<float>(oRandom.Range(0.5, 1.0))});
  }
  for (unsigned n = 0; n < oDescription.nScratches; ++n) {
    const ClPlaceMm oPlace = Anywhere();
    const double dAngle = oRandom.Range(0.0, 2.0 * Portable::cdPi), dLength = oRandom.Range(2.0, 8.0);
    const ClPlaceMm oEnd{oPlace.dX + dLength * Portable::Cos(dAngle),
                         oPlace.dY + dLength * Portable::Sin(dAngle)};
    m_aMarks.push_back({oPlace, oEnd, 0.02, 0.5F, static_cast<float>(oRandom.Range(0.1, 0.6))});
  }
}

/// 1 at the brightest corner, less by m_dUneven at the opposite one.
double ClTargetContent::LightAt(const ClPlaceMm& oPlace) const noexcept {
  const double dAlong = (oPlace.dX - cdHalfMm) * m_dLightX + (oPlace.dY - cdHalfMm) * m_dLightY;
  return 1.0 - m_dUneven * 0.5 * (1.0 + dAlong / (1.41421356 * cdHalfMm));
}

void ClTargetContent::Draw(double, ClPlatenMap& oMap) const {
  oMap.bGoesOn = true;
  for (int y = 0; y < cnPictureSide; ++y) {
    uint8_t* pContact = oMap.oContact.Row(y);
    for (int x = 0; x < cnPictureSide; ++x) {
      const ClPlaceMm oPlace{(x + 0.5) * cdPixelMm, (y + 0.5) * cdPixelMm};
      const double dRounded = 255.0 * LightAt(oPlace) + 0.5;
      pContact[x] = static_cast<uint8_t>(dRounded);
    }
  }
  for (const ClMark& oMark : m_aMarks) DrawMark(oMark, oMap);
}

void ClTargetContent::DrawMark(const ClMark& oMark, ClPlatenMap& oMap) noexcept {
  const double dWayX = oMark.oTo.dX - oMark.oFrom.dX, dWayY = oMark.oTo.dY - oMark.oFrom.dY;
  const double dWay = dWayX * dWayX + dWayY * dWayY;
  const double dReach = oMark.dRadiusMm + cdPixelMm;
  const auto First = [dReach](double dA, double dB) {
    return std::max(0, static_cast<int>(std::floor(MmToPixel(std::min(dA, dB) - dReach))));
  };
  const auto Last = [dReach](double dA, double dB) {
    return std::min(cnPictureSide - 1, static_cast<int>(std::ceil(MmToPixel(std::max(dA, dB) + dReach))));
  };
  const int nLeft = First(oMark.oFrom.dX, oMark.oTo.dX), nRight = Last(oMark.oFrom.dX, oMark.oTo.dX);
  const int nBottom = Last(oMark.oFrom.dY, oMark.oTo.dY);
  for (int y = First(oMark.oFrom.dY, oMark.oTo.dY); y <= nBottom; ++y) {
    uint8_t* pContact = oMap.oContact.Row(y);
    for (int x = nLeft; x <= nRight; ++x) {
      const double dX = (x + 0.5) * cdPixelMm - oMark.oFrom.dX;
      const double dY = (y + 0.5) * cdPixelMm - oMark.oFrom.dY;
      const double dAlong = dWay > 0.0 ? std::clamp((dX * dWayX + dY * dWayY) / dWay, 0.0, 1.0) : 0.0;
      const double dOff = Portable::Hypot(dX - dAlong * dWayX, dY - dAlong * dWayY);
      // The share of the pixel that the mark covers, as if its edge were straight.
      const double dCover = std::clamp(0.5 + (oMark.dRadiusMm - dOff) / cdPixelMm, 0.0, 1.0);
      const float fPart = oMark.fStrength * static_cast<float>(dCover);
      const float fLight = static_cast<float>(pContact[x]);
      const float fRounded = fLight + (255.0F * oMark.fGrey - fLight) * fPart + 0.5F;
      pContact[x] = static_cast<uint8_t>(fRounded);
    }
  }
}

}  // namespace Simulator
