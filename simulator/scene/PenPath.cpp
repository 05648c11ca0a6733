// The way of a pen over the platen: strokes, pauses and lifts, as a function of time.
#include "scene/PenPath.h"

#include <algorithm>
#include <cmath>

#include "portable/Math.h"
#include "scene/Platen.h"

namespace Simulator {
namespace {

// How long the pen is down at a point that it only touches.
constexpr double cdTapSeconds = 0.08;
// A curve from point to point is drawn in pieces about as long as a picture pixel.
constexpr double cdPieceMm = 0.05;
constexpr int cnMostPieces = 32;
// Hands draw a bend at a speed that grows with the third root of its radius.
constexpr double cdUsualRadiusMm = 2.0;
constexpr double cdSlowest = 0.55;
constexpr double cdFastest = 1.5;

struct ClPosition {
  double dX, dY;
};

/// The smooth line through four points, from the second (dPart 0) to the third (1).
ClPosition Between(const ClPenPoint* const (&aPoints)[4], double dPart) {
  const auto Blend = [dPart](double a, double b, double c, double d) {
    return b + 0.5 * dPart *
                   (c - a + dPart * (2.0 * a - 5.0 * b + 4.0 * c - d + dPart * (3.0 * (b - c) + d - a)));
  };
  return {Blend(aPoints[0]->dXMm, aPoints[1]->dXMm, aPoints[2]->dXMm, aPoints[3]->dXMm),
          Blend(aPoints[0]->dYMm, aPoints[1]->dYMm, aPoints[2]->dYMm, aPoints[3]->dYMm)};
}

/// The share of the usual speed on the way from one position over the next to a third.
double SpeedInBend(const ClPosition& oA, const ClPosition& oB, const ClPosition& oC) {
  const double dFirst = Portable::Hypot(oB.dX - oA.dX, oB.dY - oA.dY);
  const double dSecond = Portable::Hypot(oC.dX - oB.dX, oC.dY - oB.dY);
  const double dCross = (oB.dX - oA.dX) * (oC.dY - oB.dY) - (oB.dY - oA.dY) * (oC.dX - oB.dX);
  const double dAlong = (oB.dX - oA.dX) * (oC.dX - oB.dX) + (oB.dY - oA.dY) * (oC.dY - oB.dY);
  const double dTurn = std::fabs(Portable::Atan2(dCross, dAlong));
  const double dRadius = 0.5 * (dFirst + dSecond) / std::max(dTurn, 1e-9);
  return std::clamp(Portable::CubeRoot(dRadius / cdUsualRadiusMm), cdSlowest, cdFastest);
}

}  // namespace

ClPenPath::ClPenPath(const std::vector<ClStrokeDescription>& aStrokes) {
  for (const ClStrokeDescription& oStroke : aStrokes) Draw(oStroke);
}

void ClPenPath::Draw(const ClStrokeDescription& oStroke) {
  const std::vector<ClPenPoint>& aPoints = oStroke.aPoints;
  const double dFree = m_aStrokes.empty() ? 0.0 : m_aStrokes.back().dEnd;
  const double dBegin = oStroke.dAt < 0.0 ? dFree + oStroke.dAfter : std::max(oStroke.dAt, dFree);
  m_aKnots.push_back({dBegin, aPoints[0].dXMm, aPoints[0].dYMm});
  Rest(aPoints.size() == 1 && aPoints[0].dPause == 0.0 ? cdTapSeconds : aPoints[0].dPause);
  ClPosition oBefore{aPoints[0].dXMm, aPoints[0].dYMm};
  for (size_t i = 1; i < aPoints.size(); ++i) {
    const ClPenPoint* const aAround[4] = {&aPoints[i < 2 ? 0 : i - 2], &aPoints[i - 1], &aPoints[i],
                                          &aPoints[std::min(i + 1, aPoints.size() - 1)]};
    const double dChord =
        Portable::Hypot(aPoints[i].dXMm - aPoints[i - 1].dXMm, aPoints[i].dYMm - aPoints[i - 1].dYMm);
    const int nPieces =
        oStroke.bCurve ? std::clamp(static_cast<int>(dChord / cdPieceMm), 1, cnMostPieces) : 1;
    for (int n = 1; n <= nPieces; ++n) {
      const ClPosition oHere{m_aKnots.back().dXMm, m_aKnots.back().dYMm};
      const ClPosition oNext = nPieces == 1 ? ClPosition{aPoints[i].dXMm, aPoints[i].dYMm}
                                            : Between(aAround, static_cast<double>(n) / nPieces);
      MoveTo(oNext.dX, oNext.dY,
             oStroke.dSpeed * (oStroke.bCurve ? SpeedInBend(oBefore, oHere, oNext) : 1.0));
      oBefore = oHere;
    }
    Rest(aPoints[i].dPause);
  }
  m_aStrokes.push_back({dBegin, m_aKnots.back().dSeconds});
}

void ClPenPath::MoveTo(double dXMm, double dYMm, double dSpeed) {
  const ClKnot& oFrom = m_aKnots.back();
  const double dWay = Portable::Hypot(dXMm - oFrom.dXMm, dYMm - oFrom.dYMm);
  if (dWay > 0.0) m_aKnots.push_back({oFrom.dSeconds + dWay / dSpeed, dXMm, dYMm});
}

void ClPenPath::Rest(double dSeconds) {
  ClKnot oThere = m_aKnots.back();
  oThere.dSeconds += dSeconds;
  if (dSeconds > 0.0) m_aKnots.push_back(oThere);
}

ClPenTip ClPenPath::At(double dSeconds) const {
  const auto itKnot = std::upper_bound(m_aKnots.begin(), m_aKnots.end(), dSeconds,
                                       [](double d, const ClKnot& o) { return d < o.dSeconds; });
  const auto itStroke = std::upper_bound(m_aStrokes.begin(), m_aStrokes.end(), dSeconds,
                                         [](double d, const ClPenStroke& o) { return d < o.dBegin; });
  ClPenTip oTip;
  double dPart = 0.0;
  size_t nFrom = itKnot == m_aKnots.begin() ? 0 : static_cast<size_t>(itKnot - m_aKnots.begin()) - 1;
  if (itStroke != m_aStrokes.begin() && dSeconds < (itStroke - 1)->dEnd) {
    oTip.bDown = true;
    oTip.nStroke = static_cast<int>(itStroke - m_aStrokes.begin()) - 1;
    dPart = (dSeconds - m_aKnots[nFrom].dSeconds) / (itKnot->dSeconds - m_aKnots[nFrom].dSeconds);
  }
  const ClKnot &oFrom = m_aKnots[nFrom], &oTo = oTip.bDown ? *itKnot : oFrom;
  const auto InSteps = [](double d) { return std::round(d / cdPlaceStep) * cdPlaceStep; };
  oTip.dXMm = InSteps(oFrom.dXMm + dPart * (oTo.dXMm - oFrom.dXMm));
  oTip.dYMm = InSteps(oFrom.dYMm + dPart * (oTo.dYMm - oFrom.dYMm));
  return oTip;
}

}  // namespace Simulator
