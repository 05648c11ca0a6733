// The built-in scenes in which something happens: hands that settle, slide and leave, dirt, imitations.
#include "scene/StagedScenes.h"

#include "scene/BuiltInScenes.h"
#include "scene/Random.h"

namespace Simulator {
namespace {

constexpr double cdPreviewSeconds = 1.0 / 15.0;

/// What a stage is made from.
struct ClStage {
  ClScannerDescription& oScanner;
  ClRandom oRandom;

  double Vary(double dMiddle, double dBy) { return oRandom.Range(dMiddle - dBy, dMiddle + dBy); }
};

/// A hand is laid down not quite as it was the last time.
void LayHand(ClStage& o, const char* szFingers) {
  o.oScanner.aFingers = StillFingers(szFingers);
  const double dX = o.Vary(0.0, 1.0), dY = o.Vary(0.0, 3.0), dTurn = o.Vary(0.0, 3.0);
  for (ClFingerDescription& oFinger : o.oScanner.aFingers) {
    oFinger.dXMm += dX;
    oFinger.dYMm += dY + o.Vary(0.0, 0.8);
    oFinger.dAngle += dTurn + o.Vary(0.0, 1.5);
    oFinger.dPressure = o.Vary(0.6, 0.08);
  }
  // The skin gives way a little as the hand comes down.
  ClRandom oSkin = o.oRandom;
  oSkin = ClRandom(Mix(oSkin.Next(), 1));
  for (ClFingerDescription& oFinger : o.oScanner.aFingers)
    oFinger.oStretch = {oSkin.Range(-0.3, 0.3), oSkin.Range(-0.4, 0.4), oSkin.Range(-3.0, 3.0)};
}

void LaySlap(ClStage& o) {
  LayHand(o, o.oRandom.Uniform() < 0.5 ? "slap-right" : "slap-left");
}

/// Comes down, settles, stays for two seconds, lifts, and comes back after more than a second.
void Settle(ClStage& o) {
  const double dTouch = o.Vary(0.6, 0.2), dSettle = o.Vary(0.8, 0.2);
  const double dStay = o.Vary(2.2, 0.2), dAway = o.Vary(1.5, 0.2);
  const double dX = o.Vary(0.0, 2.0), dY = (o.oRandom.Uniform() < 0.5 ? -1.0 : 1.0) * o.Vary(2.5, 0.5);
  for (ClFingerDescription& oFinger : o.oScanner.aFingers) {
    const double dLater = o.oRandom.Range(0.0, 0.1);
    oFinger.dTouch = dTouch + dLater;
    oFinger.dLift = dTouch + dSettle + dStay + o.oRandom.Range(0.0, 0.1);
    oFinger.dRepeat = dSettle + dStay + dAway;
    oFinger.oSettle.dSeconds = dSettle - dLater;
    oFinger.oSettle.dXMm = dX + o.Vary(0.0, 0.3);
    oFinger.oSettle.dYMm = dY + o.Vary(0.0, 0.3);
    oFinger.oSettle.dTurn = o.Vary(0.0, 2.0);
    oFinger.oSettle.dPressure = oFinger.dPressure - o.oRandom.Range(0.15, 0.3);
  }
}

/// Comes down and slides in circles ever after.
void Slide(ClStage& o) {
  const double dTouch = o.Vary(0.4, 0.1), dSpeed = o.Vary(3.2, 0.4);
  const double dDirection = o.oRandom.Range(0.0, 360.0), dRadius = o.Vary(2.5, 0.5);
  for (ClFingerDescription& oFinger : o.oScanner.aFingers) {
    oFinger.dTouch = dTouch;
    oFinger.oSlide = {0.0, cdNever, dSpeed, dDirection, dRadius};
  }
}

/// The finger slides, rests, and leaves after two preview frames have seen it at rest, so that the capture
/// which they trigger finds fingers that are almost gone. Frames come at whole multiples of their time as
/// long as only a preview has run.
void LeaveEarly(ClStage& o) {
  const double dFrames = 10 + static_cast<double>(o.oRandom.Next() % 6) - o.Vary(0.6, 0.12);
  const double dStill = cdPreviewSeconds * dFrames, dDirection = o.oRandom.Range(0.0, 360.0);
  for (ClFingerDescription& oFinger : o.oScanner.aFingers) {
    oFinger.dTouch = dStill - oFinger.dTouchSeconds;
    oFinger.dLift = dStill + 1.8 * cdPreviewSeconds;
    oFinger.dLiftSeconds = 0.05;
    oFinger.dRepeat = 25.0 * cdPreviewSeconds;
    oFinger.oSlide = {0.0, oFinger.dTouchSeconds, 6.0, dDirection, 0.0};
  }
}

/// Lays down a few specks and a smear. They are few, since hosts that watch for dirt see even a single one.
void Soil(ClStage& o) {
  const int nSpecks = 5 + static_cast<int>(o.oRandom.Next() % 10);
  for (int i = 0; i < nSpecks; ++i) {
    ClDirtDescription oSpeck;
    oSpeck.dXMm = o.oRandom.Range(2.0, 79.0);
    oSpeck.dYMm = o.oRandom.Range(2.0, 79.0);
    oSpeck.dWidthMm = o.oRandom.Range(0.15, 0.6);
    oSpeck.dStrength = o.oRandom.Range(0.05, 0.3);
    o.oScanner.aDirt.push_back(oSpeck);
  }
  ClDirtDescription oSmear;
  oSmear.dXMm = o.Vary(40.0, 22.0);
  oSmear.dYMm = o.Vary(40.0, 22.0);
  oSmear.dWidthMm = o.Vary(3.0, 1.0);
  oSmear.dLengthMm = o.Vary(14.0, 5.0);
  oSmear.dAngle = o.Vary(0.0, 90.0);
  oSmear.dStrength = o.Vary(0.05, 0.015);
  o.oScanner.aDirt.push_back(oSmear);
}

void Imitate(ClStage& o, uint64_t nSeed) {
  constexpr EMaterial caMaterials[] = {eMaterialSoftCast, eMaterialFlatCast, eMaterialHalftone};
  for (ClFingerDescription& oFinger : o.oScanner.aFingers) {
    oFinger.oPrint.eMaterial = caMaterials[static_cast<size_t>(nSeed % 3)];
    oFinger.dDryness = 0.0;
    oFinger.oStretch = {};
  }
}

}  // namespace

bool StageScene(const std::string& sName, uint64_t nSeed, ClScannerDescription& oScanner) {
  ClStage o{oScanner, ClRandom(Mix(nSeed, MixText(sName.c_str())))};
  if (sName == "settling-slap") {
    LaySlap(o);
    Settle(o);
  } else if (sName == "sliding-slap") {
    LaySlap(o);
    Slide(o);
  } else if (sName == "early-lift") {
    LaySlap(o);
    LeaveEarly(o);
  } else if (sName == "dirty") {
    Soil(o);
  } else if (sName == "dirty-slap") {
    Soil(o);
    LaySlap(o);
    Settle(o);
  } else if (sName == "fake-finger") {
    LayHand(o, "finger");
    Settle(o);
    Imitate(o, nSeed);
  } else {
    return false;
  }
  return true;
}

std::string StagedSceneNames() {
  return "settling-slap, sliding-slap, early-lift, dirty, dirty-slap, fake-finger";
}

}  // namespace Simulator
