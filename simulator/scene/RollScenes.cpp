// The built-in scenes of fingers that roll: well, and badly in each of five ways.
#include "scene/RollScenes.h"

#include <algorithm>

#include "scene/Random.h"

namespace Simulator {
namespace {

constexpr double cdFrameSeconds = 1.0 / 15.0;

/// Makes a rolling finger. Distances count in the direction in which it rolls.
class ClRollStage {
 public:
  ClRollStage(const char* szName, uint64_t nSeed) : m_oRandom(Mix(nSeed, MixText(szName))) {}

  double Range(double dLow, double dHigh) { return m_oRandom.Range(dLow, dHigh); }
  double Vary(double dMiddle, double dBy) { return m_oRandom.Range(dMiddle - dBy, dMiddle + dBy); }
  double Side() { return m_oRandom.Uniform() < 0.5 ? -1.0 : 1.0; }

  /// A finger nail to nail, of which a strip of dWidthMm is down at a time.
  void LayFinger(double dWidthMm) {
    ClPrintDescription& oPrint = m_oFinger.oPrint;
    oPrint.nSeed = m_oRandom.Next() % 100000;
    oPrint.ePattern = static_cast<EPattern>(m_oRandom.Next() % cnPatterns);
    oPrint.dWidthMm = Range(26.0, 30.0);
    oPrint.dHeightMm = Range(21.0, 25.0);
    oPrint.dRidgePeriodMm = Vary(0.457, 0.03);
    m_oFinger.dXMm = Vary(40.64, 1.2);
    m_oFinger.dYMm = Vary(cdRollMiddleMm, 1.2);
    m_oFinger.dAngle = Vary(0.0, 9.0);
    m_oFinger.dPressure = Vary(0.6, 0.05);
    m_oFinger.dDryness = Range(0.0, 0.15);
    m_oFinger.dTouch = Vary(0.5, 0.1);
    m_oFinger.dTouchSeconds = Vary(0.18, 0.05);
    m_oFinger.oRoll.dWidthMm = dWidthMm;
    m_oFinger.oRoll.dTilt = Vary(0.0, 4.0);
    m_dReach = 0.5 * (oPrint.dWidthMm - dWidthMm) * Range(0.94, 1.0);
  }

  double Reach() const { return m_dReach; }
  ClFingerDescription& Finger() { return m_oFinger; }

  /// Stays for a moment where the roll begins.
  void Begin(double dDirection, double dStripMm) {
    m_dDirection = dDirection;
    m_oFinger.oRoll.aPath = {{m_oFinger.dTouchSeconds + Range(0.03, 0.12), dDirection * dStripMm, 0.0, 1.0}};
  }

  /// Rolls on for that many frames, at a speed that is not quite steady, and turns meanwhile.
  void RollTo(double dStripMm, double dFrames, double dTurn = 0.0) {
    constexpr int nParts = 4;
    const ClRollMoment oFrom = m_oFinger.oRoll.aPath.back();
    for (int i = 1; i <= nParts; ++i) {
      const double dUneven = i < nParts ? Vary(0.0, 0.05) : 0.0;
      const double dPart = static_cast<double>(i) / nParts;
      m_oFinger.oRoll.aPath.push_back(
          {oFrom.dSeconds + dPart * dFrames * cdFrameSeconds,
           oFrom.dStripMm + (dPart + dUneven) * (m_dDirection * dStripMm - oFrom.dStripMm),
           oFrom.dTurn + dPart * (dTurn - oFrom.dTurn), 1.0});
    }
  }

  /// Jumps to a position from one moment to the next.
  void JumpTo(double dStripMm) {
    ClRollMoment oThere = m_oFinger.oRoll.aPath.back();
    oThere.dStripMm = m_dDirection * dStripMm;
    m_oFinger.oRoll.aPath.push_back(oThere);
  }

  /// Lifts the finger, and lays it down anew after a pause.
  ClFingerDescription End() {
    const double dStays = m_oFinger.oRoll.aPath.back().dSeconds + Range(0.03, 0.12);
    m_oFinger.dLift = m_oFinger.dTouch + dStays;
    m_oFinger.dLiftSeconds = Vary(0.12, 0.03);
    m_oFinger.dRepeat = dStays + m_oFinger.dLiftSeconds + Vary(1.0, 0.2);
    return m_oFinger;
  }

 private:
  ClRandom m_oRandom;
  ClFingerDescription m_oFinger;
  double m_dReach = 0.0;
  double m_dDirection = 1.0;
};

void RollWell(ClRollStage& o, double dDirection) {
  o.LayFinger(o.Vary(12.7, 1.0));
  o.Begin(dDirection, -o.Reach());
  o.RollTo(o.Reach(), o.Range(9.0, 26.0));
}

/// The skin slides by more than half a ridge from frame to frame, towards the tip or the palm.
void RollAndSlip(ClRollStage& o) {
  RollWell(o, o.Side());
  const std::vector<ClRollMoment>& aPath = o.Finger().oRoll.aPath;
  ClSlideDescription& oSlide = o.Finger().oSlide;
  oSlide.dStart = aPath.front().dSeconds;
  oSlide.dUntil = oSlide.dStart + o.Range(7.0, 9.0) * cdFrameSeconds;
  oSlide.dSpeed = o.Range(0.24, 0.3) / cdFrameSeconds;
  oSlide.dDirection = o.Side() * o.Vary(90.0, 20.0);
}

/// The finger rolls so fast that between two frames it passes over a strip as wide as the one that touches.
void RollTooFast(ClRollStage& o) {
  const double dWidth = o.Vary(8.2, 0.5);
  o.LayFinger(dWidth);
  o.Finger().dPressure = 0.6;
  o.Begin(o.Side(), -o.Reach());
  const double dJump = dWidth + o.Range(1.2, 1.8);
  o.RollTo(o.Reach() - dJump - 0.8, o.Range(7.0, 16.0));
  o.JumpTo(o.Reach() - 0.8);
  o.RollTo(o.Reach(), o.Range(1.5, 3.0));
}

void RollAndTurnBack(ClRollStage& o) {
  o.LayFinger(o.Vary(12.5, 1.0));
  o.Begin(o.Side(), -o.Reach());
  const double dFurthest = o.Reach() * o.Range(0.6, 1.0);
  o.RollTo(dFurthest, o.Range(9.0, 18.0));
  o.RollTo(dFurthest - o.Range(0.45, 0.6) * (dFurthest + o.Reach()), o.Range(5.0, 8.0));
}

void RollAndTwist(ClRollStage& o) {
  o.LayFinger(o.Vary(12.5, 1.0));
  const double dTurn = o.Side() * o.Vary(76.0, 5.0);
  // Half of it to either side of where a finger would lie.
  o.Finger().dAngle = o.Vary(0.0, 4.0) - 0.5 * dTurn;
  o.Begin(o.Side(), -o.Reach());
  o.RollTo(o.Reach(), o.Range(12.0, 24.0), dTurn);
}

void RollTooShort(ClRollStage& o) {
  o.LayFinger(o.Vary(13.0, 1.0));
  const double dFrom = o.Range(-0.6, 0.2) * o.Reach();
  o.Begin(o.Side(), dFrom);
  o.RollTo(dFrom + o.Range(0.12, 0.18) * 2.0 * o.Reach(), o.Range(3.0, 8.0));
}

struct ClRow {
  const char* szName;
  void (*pfnRoll)(ClRollStage& o);
};

constexpr ClRow caRows[] = {
    {"roll-right", [](ClRollStage& o) { RollWell(o, 1.0); }},
    {"roll-left", [](ClRollStage& o) { RollWell(o, -1.0); }},
    {"roll-slipped", RollAndSlip},
    {"roll-fast", RollTooFast},
    {"roll-back", RollAndTurnBack},
    {"roll-twisted", RollAndTwist},
    {"roll-short", RollTooShort},
};

}  // namespace

bool StageRoll(const std::string& sName, uint64_t nSeed, ClScannerDescription& oScanner) {
  const auto pRow = std::find_if(std::begin(caRows), std::end(caRows),
                                 [&](const ClRow& oRow) { return sName == oRow.szName; });
  if (pRow == std::end(caRows)) return false;
  ClRollStage oStage(pRow->szName, nSeed);
  pRow->pfnRoll(oStage);
  oScanner.aFingers.push_back(oStage.End());
  return true;
}

std::string RollSceneNames() {
  std::string sNames;
  for (const ClRow& oRow : caRows) sNames += (sNames.empty() ? "" : ", ") + std::string(oRow.szName);
  return sNames;
}

}  // namespace Simulator
