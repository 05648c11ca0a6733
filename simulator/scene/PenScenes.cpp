// The built-in scenes of the signature pad: signatures, swipes, a hand that rests.
#include "scene/PenScenes.h"

#include <algorithm>
#include <cmath>

#include "scene/BuiltInScenes.h"
#include "scene/Random.h"

namespace Simulator {
namespace {

// The part of the platen that both readouts of the pad see, with some room.
constexpr double cdLeftMm = 7.0, cdRightMm = 74.0, cdTopMm = 5.0, cdBottomMm = 34.0;
constexpr double cdWidestLetterMm = 3.8;

/// Makes a signature: loops that run on to the right, one above the other's end.
class ClSignatureStage {
 public:
  explicit ClSignatureStage(uint64_t nSeed) : m_oRandom(Mix(nSeed, MixText("signature"))) {
    m_dBaseMm = Vary(24.0, 2.0);
    m_dSlant = Vary(0.3, 0.25);
    m_dSpeed = Range(55.0, 90.0);
    m_oPen.dDiameterMm = Vary(0.7, 0.1);
    m_oPen.dStrength = Range(0.8, 1.0);
    m_dX = Range(9.0, 13.0);
  }

  double Range(double dLow, double dHigh) { return m_oRandom.Range(dLow, dHigh); }
  double Vary(double dMiddle, double dBy) { return m_oRandom.Range(dMiddle - dBy, dMiddle + dBy); }
  bool Chance(double dPart) { return m_oRandom.Uniform() < dPart; }
  double X() const { return m_dX; }
  /// Letters for which there is room.
  double Room() const { return (cdRightMm - 3.0 - m_dX) / cdWidestLetterMm; }

  void Begin() {
    m_oPen.aStrokes.emplace_back();
    m_oPen.aStrokes.back().dAfter = m_oPen.aStrokes.size() == 1 ? Range(0.3, 0.6) : Range(0.12, 0.35);
    m_oPen.aStrokes.back().dSpeed = m_dSpeed * Vary(1.0, 0.1);
  }

  /// A point in millimetres above the line; what is high leans over.
  void To(double dX, double dHigh) {
    m_oPen.aStrokes.back().aPoints.push_back({std::clamp(dX + m_dSlant * dHigh, cdLeftMm, cdRightMm),
                                              std::clamp(m_dBaseMm - dHigh, cdTopMm, cdBottomMm), 0.0});
  }

  /// One large loop.
  void Capital() {
    const double dHigh = Range(9.0, 13.0), dWide = Range(4.0, 6.0);
    Begin();
    To(m_dX + 0.3 * dWide, 0.9 * dHigh);
    To(m_dX, 0.2 * dHigh);
    To(m_dX + 0.5 * dWide, -0.05 * dHigh);
    To(m_dX + dWide, 0.5 * dHigh);
    To(m_dX + 0.6 * dWide, dHigh);
    To(m_dX + 0.2 * dWide, 0.6 * dHigh);
    To(m_dX + 1.1 * dWide, 0.1 * dHigh);
    m_dX += 1.1 * dWide + Range(0.5, 1.5);
  }

  /// Small letters without a lift: each a loop or an arch, some with an upper or a lower length.
  void Letters(double dLetters) {
    Begin();
    To(m_dX, 0.3);
    for (int i = 1; i <= dLetters; ++i) {
      const double dWide = Range(2.6, cdWidestLetterMm), dKind = m_oRandom.Uniform();
      const double dHigh = dKind < 0.25 ? Range(7.0, 10.0) : Range(2.8, 3.8);
      const double dDeep = dKind > 0.85 ? -Range(4.0, 6.0) : Range(-0.2, 0.4);
      To(m_dX + 0.75 * dWide, 0.55 * dHigh);
      To(m_dX + 0.6 * dWide, dHigh);
      To(m_dX + 0.3 * dWide, 0.6 * dHigh + 0.2 * dDeep);
      To(m_dX + 0.5 * dWide, dDeep);
      m_dX += dWide;
    }
    To(m_dX + 1.0, 0.6);
    m_dX += Range(1.5, 2.5);
  }

  /// The bar of a t over what has been written last.
  void Bar() {
    const double dHigh = Range(6.0, 8.0), dFrom = m_dX - Range(8.0, 11.0);
    Begin();
    To(dFrom, dHigh);
    To(dFrom + Range(5.0, 8.0), dHigh + Vary(0.0, 0.5));
  }

  void Dot() {
    Begin();
    To(m_dX - Range(5.0, 9.0), Range(6.0, 8.0));
  }

  /// The line below, from left to right or back and forth.
  void Flourish() {
    const double dLow = -Range(4.5, 6.5), dFrom = Range(12.0, 24.0);
    Begin();
    To(dFrom, dLow);
    To(0.5 * (dFrom + m_dX), dLow - Range(0.5, 1.5));
    To(m_dX, dLow + Range(0.0, 1.5));
    if (Chance(0.5)) return;
    To(m_dX + 1.5, dLow + 0.3);
    To(0.6 * m_dX, dLow - 2.0);
  }

  size_t Strokes() const { return m_oPen.aStrokes.size(); }
  const ClPenDescription& Pen() const { return m_oPen; }

 private:
  ClRandom m_oRandom;
  ClPenDescription m_oPen;
  double m_dBaseMm, m_dSlant, m_dSpeed, m_dX;
};

void Sign(uint64_t nSeed, ClScannerDescription& oScanner) {
  ClSignatureStage o(nSeed);
  o.Capital();
  const int nWords = o.Chance(0.5) ? 1 : 2;
  while (o.X() < 50.0) {
    o.Letters(std::min(o.Range(4.0, nWords == 1 ? 12.0 : 7.0), o.Room()));
    if (o.Chance(0.4)) o.Bar();
    if (o.Chance(0.4)) o.Dot();
  }
  if (o.Chance(0.6) || o.Strokes() < 3) o.Flourish();
  oScanner.oPen = o.Pen();
}

/// One touch of the pen, without a way.
void Tap(uint64_t, ClScannerDescription& oScanner) {
  ClStrokeDescription oStroke;
  oStroke.dAt = 0.5;
  oStroke.aPoints = {{40.64, 20.32, 0.1}};
  oScanner.oPen.aStrokes = {oStroke};
}

/// The tip of a finger that comes down at one side, runs over the platen and leaves at the other, again and
/// again.
void Swipe(const char* szName, double dDirection, uint64_t nSeed, ClScannerDescription& oScanner) {
  ClRandom oRandom(Mix(nSeed, MixText(szName)));
  ClFingerDescription oFinger;
  const double dWay = oRandom.Range(50.0, 58.0), dSpeed = oRandom.Range(110.0, 260.0);
  oFinger.oPrint.nSeed = oRandom.Next() % 100000;
  oFinger.oPrint.dWidthMm = oRandom.Range(9.0, 12.0);
  oFinger.oPrint.dHeightMm = oRandom.Range(12.0, 16.0);
  oFinger.dXMm = 40.64 - dDirection * 0.5 * dWay;
  oFinger.dYMm = oRandom.Range(14.0, 24.0);
  oFinger.dAngle = oRandom.Range(-25.0, 25.0);
  oFinger.dPressure = oRandom.Range(0.5, 0.7);
  oFinger.dTouch = oRandom.Range(0.3, 0.6);
  oFinger.dTouchSeconds = 0.03;
  oFinger.dLift = oFinger.dTouch + dWay / dSpeed;
  oFinger.dLiftSeconds = 0.03;
  oFinger.dRepeat = dWay / dSpeed + oRandom.Range(1.0, 1.5);
  oFinger.oSlide.dSpeed = dSpeed;
  oFinger.oSlide.dDirection = (dDirection > 0.0 ? 0.0 : 180.0) + oRandom.Range(-8.0, 8.0);
  oScanner.aFingers.push_back(oFinger);
}

/// A hand laid down with the ball of the thumb, which then lies still.
void RestHand(uint64_t nSeed, ClScannerDescription& oScanner) {
  ClRandom oRandom(Mix(nSeed, MixText("resting-hand")));
  oScanner.aFingers = StillFingers(oRandom.Uniform() < 0.5 ? "slap-right" : "slap-left");
  ClFingerDescription oPalm;
  oPalm.oPrint.nSeed = oRandom.Next() % 100000;
  oPalm.oPrint.ePattern = ePatternArch;
  oPalm.oPrint.dWidthMm = oRandom.Range(34.0, 40.0);
  oPalm.oPrint.dHeightMm = oRandom.Range(22.0, 30.0);
  oPalm.dYMm = 70.0;
  oScanner.aFingers.push_back(oPalm);
  const double dX = oRandom.Range(-2.0, 2.0), dY = oRandom.Range(-6.0, 2.0), dTouch = oRandom.Range(0.3, 0.6);
  for (ClFingerDescription& oFinger : oScanner.aFingers) {
    oFinger.dXMm += dX;
    oFinger.dYMm += dY;
    oFinger.dAngle += oRandom.Range(-3.0, 3.0);
    oFinger.dTouch = dTouch;
    oFinger.dTouchSeconds = 0.05;
  }
}

}  // namespace

bool StagePen(const std::string& sName, uint64_t nSeed, ClScannerDescription& oScanner) {
  if (sName == "signature") {
    Sign(nSeed, oScanner);
  } else if (sName == "dot") {
    Tap(nSeed, oScanner);
  } else if (sName == "swipe-left") {
    Swipe("swipe-left", -1.0, nSeed, oScanner);
  } else if (sName == "swipe-right") {
    Swipe("swipe-right", 1.0, nSeed, oScanner);
  } else if (sName == "resting-hand") {
    RestHand(nSeed, oScanner);
  } else {
    return false;
  }
  return true;
}

std::string PenSceneNames() {
  return "signature, dot, swipe-left, swipe-right, resting-hand";
}

}  // namespace Simulator
