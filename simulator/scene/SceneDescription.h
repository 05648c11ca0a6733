// A scene as data: which scanners hang on the bus and what is laid on them when.
#pragma once

#include <cstdint>
#include <limits>
#include <map>
#include <string>
#include <vector>

#include "scene/PrintDescription.h"

namespace Simulator {

/// Middle of the part of the platen that roll frames show, from the top edge.
constexpr double cdRollMiddleMm = 20.32;

constexpr double cdNever = std::numeric_limits<double>::infinity();

/// How a finger comes to rest: over these seconds its position and pressure go from the values here to those
/// of the finger, ever slower.
struct ClSettleDescription {
  double dSeconds = 0.0;  ///< 0: it lies still from the touch on
  double dXMm = 0.0;      ///< where it starts, from its resting place
  double dYMm = 0.0;
  double dTurn = 0.0;  ///< degrees
  double dPressure = 0.6;
};

/// A finger that slides at a steady speed, straight on or round a circle.
struct ClSlideDescription {
  double dStart = 0.0;  ///< seconds after the touch
  double dUntil = cdNever;
  double dSpeed = 0.0;      ///< mm per second; 0: it doesn't slide
  double dDirection = 0.0;  ///< degrees, 0 to the right, counter-clockwise
  double dRadiusMm = 0.0;   ///< 0: straight on
};

/// A finger that presses harder or more lightly from some moment on.
struct ClPressDescription {
  double dStart = cdNever;  ///< seconds after the touch
  double dSeconds = 0.3;    ///< how long the change takes
  double dPressure = 0.6;
};

/// By how much a finger has moved on and turned after the skin in the middle of the contact stuck to the
/// glass.
struct ClStretchDescription {
  double dXMm = 0.0;
  double dYMm = 0.0;
  double dTurn = 0.0;  ///< degrees, counter-clockwise

  bool Any() const noexcept { return dXMm != 0.0 || dYMm != 0.0 || dTurn != 0.0; }
};

/// A moment of a roll. Between two moments all values change evenly; two entries of one moment make them
/// jump.
struct ClRollMoment {
  double dSeconds = 0.0;  ///< after the touch
  double dStripMm =
      0.0;  ///< which part of the skin is down: middle of the strip, to the right of the print's middle
  double dTurn = 0.0;  ///< degrees by which the finger is turned about its middle
  double dDown = 1.0;  ///< 0 off the glass, 1 down
};

/// A finger that rolls over the glass without slip: a strip of its skin is down, and each part of the skin
/// comes down at its position in the unrolled print.
struct ClRollDescription {
  double dWidthMm = 0.0;  ///< of the strip under ordinary pressure; 0: the finger doesn't roll
  double dTilt = 0.0;     ///< degrees by which the strip is turned against the finger, counter-clockwise
  std::vector<ClRollMoment> aPath;
};

/// One finger, or one picture of several, laid on the platen.
struct ClFingerDescription {
  ClPrintDescription oPrint;
  double dXMm = 40.64;     ///< middle of the print, from the left edge of the picture
  double dYMm = 40.64;     ///< from its top edge
  double dAngle = 0.0;     ///< degrees, counter-clockwise
  double dPressure = 0.6;  ///< 0 to 1
  double dDryness = 0.1;   ///< 0 to 1
  double dSweat = 0.0;     ///< 0 to 1: sweat fills valleys, in patches
  double dTouch = -1.0;    ///< seconds; before 0: lies there from the start
  double dLift = cdNever;
  double dTouchSeconds = 0.25;  ///< how long it takes to lie down fully
  double dLiftSeconds = 0.15;   ///< how long it takes to come off
  double dRepeat = 0.0;         ///< seconds from one touch to the next; 0: it comes once
  double dHalo = 0.0;           ///< 0 to 1: how wet the glass is round it
  ClStretchDescription oStretch;
  ClSettleDescription oSettle;
  ClSlideDescription oSlide;
  ClPressDescription oPress;
  ClRollDescription oRoll;
};

/// A point through which the tip of the pen goes.
struct ClPenPoint {
  double dXMm = 0.0;
  double dYMm = 0.0;
  double dPause = 0.0;  ///< seconds that it rests there
};

/// What the pen draws from a touch to the lift.
struct ClStrokeDescription {
  double dAt = -1.0;     ///< second of the touch; before 0: dAfter says it
  double dAfter = 0.2;   ///< seconds from the lift of the stroke before, or from 0
  double dSpeed = 60.0;  ///< mm per second
  bool bCurve = true;    ///< a smooth line through the points, slower where it bends; else straight lines
  std::vector<ClPenPoint> aPoints;
};

/// A pen whose tip is a small bright disc on the glass.
struct ClPenDescription {
  double dDiameterMm = 0.7;
  double dStrength = 0.9;                     ///< light of the tip relative to that of a ridge, 0 to 1
  std::vector<ClStrokeDescription> aStrokes;  ///< one after the other; none: there is no pen
};

/// Something on the glass that is no finger: a speck, or a smear of streaks when dLengthMm is larger than
/// dWidthMm.
struct ClDirtDescription {
  double dXMm = 40.64;
  double dYMm = 40.64;
  double dWidthMm = 0.5;
  double dLengthMm = 0.0;
  double dAngle = 0.0;     ///< degrees, counter-clockwise; 0: a smear runs to the right
  double dStrength = 0.4;  ///< light that it scatters, relative to that of a ridge, 0 to 1
  double dFrom = 0.0;      ///< seconds
  double dUntil = cdNever;
};

/// The calibration target: a bright sheet with 8 by 8 dark dots, 10 mm apart. Dots are counted as in
/// TargetDots.
struct ClTargetDescription {
  bool bThere = false;
  uint64_t nSeed = 1;   ///< of light, dust and scratches
  double dXMm = 40.64;  ///< its middle
  double dYMm = 40.64;
  double dAngle = 0.0;  ///< degrees, counter-clockwise
  double dRadiusMm = 1.75;
  double dUneven = 0.2;  ///< share of the light that the darkest corner lacks
  unsigned nDust = 120;
  unsigned nScratches = 6;
  std::vector<unsigned> aMissing;
  std::vector<unsigned> aDoubled;  ///< printed a second time, to the right
};

/// The kinds of sheets that image quality is measured with.
enum ESheet { eSheetSine, eSheetBars, eSheetEdges, eSheetGrid, eSheetSteps, eSheetBright, eSheetDark };
constexpr int cnSheetKinds = 7;

/// A sheet that covers the platen for a while; nothing else is seen then.
struct ClSheetDescription {
  ESheet eKind = eSheetSine;
  double dXMm = 40.64;  ///< its middle
  double dYMm = 40.64;
  double dAngle = 0.0;  ///< degrees, counter-clockwise
  double dFrom = 0.0;   ///< seconds
  double dUntil = cdNever;
};

/// What is wrong with the optics of a scanner, and its calibration does not know.
struct ClOpticsDescription {
  double dBlur = 1.0;    ///< factor on the point spread
  double dBendMm = 0.0;  ///< by which upright lines are bent, to either side
  double dShade = 0.0;   ///< share of the light that the corners lack besides
};

/// Room light at a moment; between moments it changes evenly.
struct ClAmbientPoint {
  double dSeconds;
  double dLevel;
};

/// What happens to a file of the EEPROM.
struct ClEpromChange {
  bool bMissing = false;
  bool bReplaced = false;
  std::vector<uint8_t> aData;    ///< replaces it; cut and flips come after that
  long nCut = -1;                ///< bytes that are left; -1 for all
  std::vector<unsigned> aFlips;  ///< offsets of bytes that are inverted
};

enum EPlaneOrder { eOrderMixed, eOrderDarkFirst, eOrderLitFirst };

struct ClScannerDescription {
  std::string sSerial = "VT40-AB0001";
  unsigned nProduct = 17;
  bool bUsbPowered = false;
  std::string sVersion = "FW:3.10 FPGA:2.07 HW:1.4 LIB:1.20";
  bool bLegacyEprom = false;
  std::map<std::string, ClEpromChange> mapEprom;
  EPlaneOrder eOrder = eOrderMixed;
  double dAmbient = 6.0;                 ///< levels of room light at nominal gain and exposure
  std::vector<ClAmbientPoint> aAmbient;  ///< room light over time, in order; empty: it stays
  double dNoise = 1.0;                   ///< factor on the sensor's noise
  std::vector<ClFingerDescription> aFingers;
  ClPenDescription oPen;
  std::vector<ClDirtDescription> aDirt;
  ClTargetDescription oTarget;
  std::vector<ClSheetDescription> aSheets;  ///< of several at one moment the first is seen
  ClOpticsDescription oOptics;
};

/// One entry of the fault script: calls that fail, or a scanner that comes or goes.
struct ClFaultDescription {
  enum EKind { eCall, eRandom, eUnplug, ePlug } eKind = eCall;
  std::string sName;  ///< function, or serial for plugging
  unsigned nFirst = 1;
  unsigned nRepeat = 1;
  double dProbability = 0.0;
  double dAt = 0.0;
  long nResult = -60;
};

struct ClSceneDescription {
  uint64_t nSeed = 1;
  bool bRealTime = false;
  std::string sLibraryVersion = "1.20";
  std::vector<ClScannerDescription> aScanners;
  std::vector<ClFaultDescription> aFaults;
  uint64_t nFaultSeed = 1;
};

}  // namespace Simulator
