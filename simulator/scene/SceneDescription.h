// A scene as data: which scanners hang on the bus and what is laid on them when.
#pragma once

#include <limits>
#include <map>
#include <string>
#include <vector>

#include "scene/PrintDescription.h"

namespace Simulator {

constexpr double g_cdNever = std::numeric_limits<double>::infinity();

/// One finger, or one picture of several, laid on the platen.
struct ClFingerDescription {
  ClPrintDescription oPrint;
  double dXMm = 40.64;     ///< middle of the print, from the left edge of the picture
  double dYMm = 40.64;     ///< from its top edge
  double dAngle = 0.0;     ///< degrees, counter-clockwise
  double dPressure = 0.6;  ///< 0 to 1
  double dDryness = 0.1;   ///< 0 to 1
  double dTouch = -1.0;    ///< seconds; before 0: lies there from the start
  double dLift = g_cdNever;
};

/// What happens to a file of the EEPROM.
struct ClEpromChange {
  bool bMissing = false;
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
  double dAmbient = 6.0;  ///< levels of room light at nominal gain and exposure
  double dNoise = 1.0;    ///< factor on the sensor's noise
  std::vector<ClFingerDescription> aFingers;
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
