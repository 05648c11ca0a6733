// Reads scenes from JSON.
#include "scene/SceneReader.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <nlohmann/json.hpp>

#include "scene/BuiltInScenes.h"
#include "scene/PenReader.h"
#include "scene/RegularFile.h"
#include "scene/ScanFunctions.h"
#include "scene/SceneObject.h"
#include "scene/SimError.h"
#include "scene/TargetContent.h"

namespace Simulator {
namespace {

using Json = nlohmann::json;

constexpr size_t cnMostScanners = 127;
constexpr size_t cnMostFingers = 32;
constexpr size_t cnMostDirt = 1000;
constexpr size_t cnMostSheets = 100;
constexpr size_t cnMostAmbient = 1000;
constexpr size_t cnMostRollMoments = 1000;
constexpr size_t cnMostEpromBytes = 8192;
constexpr size_t cnMostSceneBytes = 16777216;
constexpr double cdLongest = 1e6;  // seconds

constexpr int64_t cnMostSeed = 9007199254740992;

std::string InFolder(const std::string& sFile, const std::string& sFolder) {
  return sFile[0] == '/' || sFolder.empty() ? sFile : sFolder + "/" + sFile;
}

ClPrintDescription ReadPrint(const Json& oJson, const std::string& sPlace, const std::string& sFolder) {
  ClObject o(oJson, sPlace);
  ClPrintDescription oPrint;
  oPrint.sFile = o.Text("file", "");
  if (!oPrint.sFile.empty()) {
    oPrint.sFile = InFolder(oPrint.sFile, sFolder);
    o.Done();
    return oPrint;
  }
  oPrint.nSeed = static_cast<uint64_t>(o.Whole("seed", 1, 0, cnMostSeed));
  oPrint.ePattern = static_cast<EPattern>(
      o.Choice("pattern", ePatternWhorl,
               {"left-loop", "right-loop", "whorl", "arch", "tented-arch", "double-loop", "any"}));
  oPrint.eSkin = static_cast<ESkin>(o.Choice("skin", eSkinAdult, {"adult", "child", "elderly"}));
  if (oPrint.eSkin == eSkinChild) oPrint.dWidthMm = 11.5, oPrint.dHeightMm = 16.0;
  oPrint.dWidthMm = o.Number("width", oPrint.dWidthMm, 4.0, 40.0);
  oPrint.dHeightMm = o.Number("height", oPrint.dHeightMm, 4.0, 60.0);
  oPrint.dRidgePeriodMm = o.Number("ridgePeriod", 0.0, 0.3, 0.8);
  oPrint.nCreases = static_cast<int>(o.Whole("creases", -1, 0, 40));
  oPrint.nScars = static_cast<int>(o.Whole("scars", 0, 0, 10));
  oPrint.nCuts = static_cast<int>(o.Whole("cuts", 0, 0, 10));
  oPrint.dPores = o.Number("pores", oPrint.dPores, 0.0, 1.0);
  oPrint.eMaterial = static_cast<EMaterial>(
      o.Choice("material", eMaterialSkin, {"skin", "soft-cast", "flat-cast", "halftone"}));
  o.Done();
  return oPrint;
}

ClSettleDescription ReadSettle(ClObject o, double dPressure) {
  ClSettleDescription oSettle;
  oSettle.dSeconds = o.Number("seconds", 0.8, 0.0, cdLongest);
  oSettle.dXMm = o.Number("x", 0.0, -20.0, 20.0);
  oSettle.dYMm = o.Number("y", 0.0, -20.0, 20.0);
  oSettle.dTurn = o.Number("turn", 0.0, -90.0, 90.0);
  oSettle.dPressure = o.Number("pressure", dPressure, 0.0, 1.0);
  o.Done();
  return oSettle;
}

ClSlideDescription ReadSlide(ClObject o) {
  ClSlideDescription oSlide;
  oSlide.dStart = o.Number("start", oSlide.dStart, 0.0, cdLongest);
  oSlide.dUntil = o.Number("until", oSlide.dUntil, 0.0, cdLongest);
  oSlide.dSpeed = o.Number("speed", 3.0, 0.0, 1000.0);
  oSlide.dDirection = o.Number("direction", oSlide.dDirection, -360.0, 360.0);
  oSlide.dRadiusMm = o.Number("radius", oSlide.dRadiusMm, 0.0, 100.0);
  if (oSlide.dUntil < oSlide.dStart) o.Fail("comes before the start", "until");
  o.Done();
  return oSlide;
}

ClPressDescription ReadPress(ClObject o) {
  ClPressDescription oPress;
  oPress.dStart = o.Number("start", 1.0, 0.0, cdLongest);
  oPress.dSeconds = o.Number("seconds", oPress.dSeconds, 0.01, cdLongest);
  oPress.dPressure = o.Number("pressure", 0.9, 0.0, 1.0);
  o.Done();
  return oPress;
}

ClStretchDescription ReadStretch(ClObject o) {
  ClStretchDescription oStretch;
  oStretch.dXMm = o.Number("x", 0.0, -2.0, 2.0);
  oStretch.dYMm = o.Number("y", 0.0, -2.0, 2.0);
  oStretch.dTurn = o.Number("turn", 0.0, -20.0, 20.0);
  o.Done();
  return oStretch;
}

ClRollDescription ReadRoll(ClObject o) {
  ClRollDescription oRoll;
  oRoll.dWidthMm = o.Number("width", 14.0, 1.0, 60.0);
  oRoll.dTilt = o.Number("tilt", 0.0, -45.0, 45.0);
  o.Each("path", cnMostRollMoments, [&](const Json& oPoint, const std::string& sWhere) {
    ClObject oRead(oPoint, sWhere);
    const ClRollMoment oBefore = oRoll.aPath.empty() ? ClRollMoment() : oRoll.aPath.back();
    ClRollMoment oMoment;
    oMoment.dSeconds = oRead.Number("at", oBefore.dSeconds, oBefore.dSeconds, cdLongest);
    oMoment.dStripMm = oRead.Number("strip", oBefore.dStripMm, -60.0, 60.0);
    oMoment.dTurn = oRead.Number("turn", oBefore.dTurn, -180.0, 180.0);
    oMoment.dDown = oRead.Number("down", oBefore.dDown, 0.0, 1.0);
    oRoll.aPath.push_back(oMoment);
    oRead.Done();
  });
  if (oRoll.aPath.empty()) oRoll.aPath = {{0.25, -7.0, 0.0, 1.0}, {1.5, 7.0, 0.0, 1.0}};
  o.Done();
  return oRoll;
}

/// By default a roll lies in the part of the platen that roll frames show, begins on a free platen and ends.
void ReadRoll(ClObject& o, ClFingerDescription& oFinger) {
  const Json* p = o.Find("roll");
  if (!p) return;
  oFinger.oRoll = ReadRoll(ClObject(*p, o.Place("roll")));
  oFinger.dYMm = cdRollMiddleMm;
  oFinger.dTouch = 0.5;
}

/// What a finger does after it was laid down.
void ReadMotion(ClObject& o, ClFingerDescription& oFinger) {
  oFinger.dTouch = o.Number("touch", oFinger.dTouch, 0.0, cdLongest);
  if (oFinger.oRoll.dWidthMm > 0.0)
    oFinger.dLift = oFinger.dTouch + oFinger.oRoll.aPath.back().dSeconds + 0.1;
  oFinger.dLift = o.Number("lift", oFinger.dLift, 0.0, cdLongest);
  if (oFinger.dLift < oFinger.dTouch) o.Fail("comes before the touch", "lift");
  oFinger.dTouchSeconds = o.Number("touchSeconds", oFinger.dTouchSeconds, 0.01, 60.0);
  oFinger.dLiftSeconds = o.Number("liftSeconds", oFinger.dLiftSeconds, 0.01, 60.0);
  oFinger.dRepeat = o.Number("repeat", oFinger.dRepeat, 0.0, cdLongest);
  if (oFinger.dRepeat > 0.0 &&
      (oFinger.dTouch < 0.0 || oFinger.dRepeat < oFinger.dLift + oFinger.dLiftSeconds - oFinger.dTouch))
    o.Fail("must be longer than the time from touch to the end of the lift, which both must be there",
           "repeat");
  if (const Json* p = o.Find("settle"))
    oFinger.oSettle = ReadSettle(ClObject(*p, o.Place("settle")), oFinger.dPressure);
  if (const Json* p = o.Find("slide")) oFinger.oSlide = ReadSlide(ClObject(*p, o.Place("slide")));
  if (const Json* p = o.Find("press")) oFinger.oPress = ReadPress(ClObject(*p, o.Place("press")));
}

ClFingerDescription ReadFinger(const Json& oJson, const std::string& sPlace, const std::string& sFolder) {
  ClObject o(oJson, sPlace);
  ClFingerDescription oFinger;
  if (const Json* p = o.Find("print")) oFinger.oPrint = ReadPrint(*p, o.Place("print"), sFolder);
  ReadRoll(o, oFinger);
  oFinger.dXMm = o.Number("x", oFinger.dXMm, -50.0, 130.0);
  oFinger.dYMm = o.Number("y", oFinger.dYMm, -50.0, 130.0);
  oFinger.dAngle = o.Number("angle", oFinger.dAngle, -180.0, 180.0);
  oFinger.dPressure = o.Number("pressure", oFinger.dPressure, 0.0, 1.0);
  // A picture of a real print already shows its dryness, and an imitation is not dry at all.
  const bool bSkin = oFinger.oPrint.sFile.empty() && oFinger.oPrint.eMaterial == eMaterialSkin;
  oFinger.dDryness = o.Number("dryness", bSkin ? oFinger.dDryness : 0.0, 0.0, 1.0);
  oFinger.dSweat = o.Number("sweat", oFinger.dSweat, 0.0, 1.0);
  oFinger.dHalo = o.Number("halo", oFinger.dHalo, 0.0, 1.0);
  if (const Json* p = o.Find("stretch")) oFinger.oStretch = ReadStretch(ClObject(*p, o.Place("stretch")));
  ReadMotion(o, oFinger);
  o.Done();
  return oFinger;
}

ClDirtDescription ReadDirt(const Json& oJson, const std::string& sPlace) {
  ClObject o(oJson, sPlace);
  ClDirtDescription oDirt;
  oDirt.dXMm = o.Number("x", oDirt.dXMm, -50.0, 130.0);
  oDirt.dYMm = o.Number("y", oDirt.dYMm, -50.0, 130.0);
  oDirt.dWidthMm = o.Number("width", oDirt.dWidthMm, 0.05, 80.0);
  oDirt.dLengthMm = o.Number("length", oDirt.dLengthMm, 0.0, 120.0);
  oDirt.dAngle = o.Number("angle", oDirt.dAngle, -180.0, 180.0);
  oDirt.dStrength = o.Number("strength", oDirt.dStrength, 0.0, 1.0);
  oDirt.dFrom = o.Number("from", oDirt.dFrom, 0.0, cdLongest);
  oDirt.dUntil = o.Number("until", oDirt.dUntil, 0.0, cdLongest);
  o.Done();
  return oDirt;
}

std::vector<unsigned> ReadDots(ClObject& o, const char* szKey) {
  std::vector<unsigned> aDots;
  o.Each(szKey, cnTargetDots, [&](const Json& oDot, const std::string& sWhere) {
    if (!oDot.is_number_unsigned() || oDot.get<uint64_t>() >= cnTargetDots)
      throw ClSimError(eBadValue, "scene: \"" + sWhere + "\" must be a dot from 0 to 63");
    aDots.push_back(oDot.get<unsigned>());
  });
  return aDots;
}

ClTargetDescription ReadTarget(ClObject o) {
  ClTargetDescription oTarget = PlainTarget(static_cast<uint64_t>(o.Whole("seed", 1, 0, cnMostSeed)));
  oTarget.dXMm = o.Number("x", oTarget.dXMm, -50.0, 130.0);
  oTarget.dYMm = o.Number("y", oTarget.dYMm, -50.0, 130.0);
  oTarget.dAngle = o.Number("angle", oTarget.dAngle, -180.0, 180.0);
  oTarget.dRadiusMm = o.Number("radius", oTarget.dRadiusMm, 0.1, 5.0);
  oTarget.dUneven = o.Number("uneven", oTarget.dUneven, 0.0, 1.0);
  oTarget.nDust = static_cast<unsigned>(o.Whole("dust", oTarget.nDust, 0, 10000));
  oTarget.nScratches = static_cast<unsigned>(o.Whole("scratches", oTarget.nScratches, 0, 1000));
  oTarget.aMissing = ReadDots(o, "missing");
  oTarget.aDoubled = ReadDots(o, "doubled");
  o.Done();
  return oTarget;
}

ClSheetDescription ReadSheet(const Json& oJson, const std::string& sPlace) {
  ClObject o(oJson, sPlace);
  ClSheetDescription oSheet;
  oSheet.eKind =
      static_cast<ESheet>(o.Choice("kind", 0, {"sine", "bars", "edges", "grid", "steps", "bright", "dark"}));
  oSheet.dXMm = o.Number("x", oSheet.dXMm, -50.0, 130.0);
  oSheet.dYMm = o.Number("y", oSheet.dYMm, -50.0, 130.0);
  oSheet.dAngle = o.Number("angle", oSheet.dAngle, -180.0, 180.0);
  oSheet.dFrom = o.Number("from", oSheet.dFrom, 0.0, cdLongest);
  oSheet.dUntil = o.Number("until", oSheet.dUntil, 0.0, cdLongest);
  o.Done();
  return oSheet;
}

ClOpticsDescription ReadOptics(ClObject o) {
  ClOpticsDescription oOptics;
  oOptics.dBlur = o.Number("blur", oOptics.dBlur, 0.0, 10.0);
  oOptics.dBendMm = o.Number("bend", oOptics.dBendMm, 0.0, 2.0);
  oOptics.dShade = o.Number("shade", oOptics.dShade, 0.0, 0.9);
  o.Done();
  return oOptics;
}

/// One level, or a list of moments.
void ReadAmbient(ClObject& o, ClScannerDescription& oScanner) {
  const Json* p = o.Find("ambient");
  if (!p || !p->is_array()) {
    oScanner.dAmbient = o.Number("ambient", oScanner.dAmbient, 0.0, 200.0);
    return;
  }
  o.Each("ambient", cnMostAmbient, [&](const Json& oPoint, const std::string& sWhere) {
    ClObject oRead(oPoint, sWhere);
    const double dBefore = oScanner.aAmbient.empty() ? 0.0 : oScanner.aAmbient.back().dSeconds;
    const double dSeconds = oRead.Number("at", 0.0, dBefore, cdLongest);
    oScanner.aAmbient.push_back({dSeconds, oRead.Number("level", oScanner.dAmbient, 0.0, 200.0)});
    oRead.Done();
  });
}

/// Appends a whole file; one of more than nMost bytes is refused. sWhat: the file in messages.
template <typename TBytes>
void ReadAtMost(std::ifstream& oFile, size_t nMost, const std::string& sWhat, TBytes& rBytes) {
  char aPart[4096];
  do {
    oFile.read(aPart, sizeof(aPart));
    if (oFile.bad()) throw ClSimError(eFileRead, sWhat + " can't be read");
    rBytes.insert(rBytes.end(), aPart, aPart + oFile.gcount());
    if (rBytes.size() > nMost)
      throw ClSimError(eBadValue, sWhat + " has more than " + std::to_string(nMost) + " bytes");
  } while (oFile);
}

/// The bytes of a file that takes the place of one in the EEPROM.
std::vector<uint8_t> ReadEpromFile(const std::string& sFile) {
  const std::string sWhat = "scene: EEPROM file \"" + sFile + "\"";
  NeedRegularFile(sFile, sWhat);
  std::ifstream oFile(sFile, std::ios::binary);
  if (!oFile) throw ClSimError(eFileOpen, "scene: can't open EEPROM file \"" + sFile + "\"");
  std::vector<uint8_t> aData;
  ReadAtMost(oFile, cnMostEpromBytes, sWhat, aData);
  return aData;
}

ClEpromChange ReadEpromChange(const Json& oJson, const std::string& sPlace, const std::string& sFolder) {
  ClObject o(oJson, sPlace);
  ClEpromChange oChange;
  const std::string sFile = o.Text("file", "");
  oChange.bReplaced = !sFile.empty();
  if (oChange.bReplaced) oChange.aData = ReadEpromFile(InFolder(sFile, sFolder));
  oChange.bMissing = o.Flag("missing", false);
  oChange.nCut = static_cast<long>(o.Whole("cut", -1, 0, 8192));
  o.Each("flip", 64, [&](const Json& oOffset, const std::string& sWhere) {
    if (!oOffset.is_number_unsigned() || oOffset.get<uint64_t>() > 8191)
      throw ClSimError(eBadValue, "scene: \"" + sWhere + "\" must be an offset from 0 to 8191");
    oChange.aFlips.push_back(oOffset.get<unsigned>());
  });
  o.Done();
  return oChange;
}

/// What lies on the platen, and in what light.
void ReadPlaten(ClObject& o, const std::string& sFolder, ClScannerDescription& oScanner) {
  ReadAmbient(o, oScanner);
  oScanner.dNoise = o.Number("noise", oScanner.dNoise, 0.0, 10.0);
  o.Each("fingers", cnMostFingers, [&](const Json& oFinger, const std::string& sWhere) {
    oScanner.aFingers.push_back(ReadFinger(oFinger, sWhere, sFolder));
  });
  if (const Json* p = o.Find("pen")) oScanner.oPen = ReadPen(ClObject(*p, o.Place("pen")));
  o.Each("dirt", cnMostDirt, [&](const Json& oDirt, const std::string& sWhere) {
    oScanner.aDirt.push_back(ReadDirt(oDirt, sWhere));
  });
  if (const Json* p = o.Find("target")) oScanner.oTarget = ReadTarget(ClObject(*p, o.Place("target")));
  o.Each("sheets", cnMostSheets, [&](const Json& oSheet, const std::string& sWhere) {
    oScanner.aSheets.push_back(ReadSheet(oSheet, sWhere));
  });
}

ClScannerDescription ReadScanner(const Json& oJson, const std::string& sPlace, const std::string& sFolder) {
  ClObject o(oJson, sPlace);
  ClScannerDescription oScanner;
  oScanner.sSerial = o.Text("serial", oScanner.sSerial);
  if (oScanner.sSerial.empty() || oScanner.sSerial.size() > 15)
    o.Fail("is \"" + oScanner.sSerial + "\" and must have 1 to 15 characters", "serial");
  oScanner.nProduct = static_cast<unsigned>(o.Whole("product", oScanner.nProduct, 1, 65535));
  oScanner.bUsbPowered = o.Flag("usbPowered", oScanner.bUsbPowered);
  oScanner.sVersion = o.Text("version", oScanner.sVersion);
  if (oScanner.sVersion.size() > 255) o.Fail("must not be longer than 255 characters", "version");
  oScanner.eOrder =
      static_cast<EPlaneOrder>(o.Choice("planeOrder", eOrderMixed, {"mixed", "dark-first", "lit-first"}));
  if (const Json* p = o.Find("eprom")) {
    ClObject oEprom(*p, o.Place("eprom"));
    oScanner.bLegacyEprom = oEprom.Choice("form", 0, {"current", "legacy"}) == 1;
    for (const char* szName : {"GEOCAL", "BRGHTCAL", "GAINSET"})
      if (const Json* pFile = oEprom.Find(szName))
        oScanner.mapEprom[szName] = ReadEpromChange(*pFile, oEprom.Place(szName), sFolder);
    oEprom.Done();
  }
  if (const Json* p = o.Find("optics")) oScanner.oOptics = ReadOptics(ClObject(*p, o.Place("optics")));
  ReadPlaten(o, sFolder, oScanner);
  o.Done();
  return oScanner;
}

ClFaultDescription ReadFault(const Json& oJson, const std::string& sPlace) {
  ClObject o(oJson, sPlace);
  ClFaultDescription oFault;
  int nKinds = 0;
  const auto Kind = [&](const char* szKey, ClFaultDescription::EKind eKind) {
    const std::string sName = o.Text(szKey, "");
    if (sName.empty()) return;
    oFault.sName = sName;
    oFault.eKind = eKind;
    ++nKinds;
  };
  Kind("call", ClFaultDescription::eCall);
  Kind("random", ClFaultDescription::eRandom);
  Kind("unplug", ClFaultDescription::eUnplug);
  Kind("plug", ClFaultDescription::ePlug);
  if (nKinds != 1) o.Fail("must have exactly one of \"call\", \"random\", \"unplug\" and \"plug\"");
  if (oFault.eKind == ClFaultDescription::eUnplug || oFault.eKind == ClFaultDescription::ePlug) {
    oFault.dAt = o.Number("at", 0.0, 0.0, cdLongest);
  } else {
    const bool bCall = oFault.eKind == ClFaultDescription::eCall;
    if (!IsScanFunction(oFault.sName) && (bCall || oFault.sName != "*"))
      o.Fail("is \"" + oFault.sName + "\", which is no function of the scan library",
             bCall ? "call" : "random");
    oFault.nResult = static_cast<long>(o.Whole("result", oFault.nResult, -2147483647, 2147483647));
    if (oFault.eKind == ClFaultDescription::eCall) {
      oFault.nFirst = static_cast<unsigned>(o.Whole("first", 1, 1, 1000000000));
      oFault.nRepeat = static_cast<unsigned>(o.Whole("repeat", 1, 0, 1000000000));
    } else {
      oFault.dProbability = o.Number("probability", 0.0, 0.0, 1.0);
    }
  }
  o.Done();
  return oFault;
}

/// The pacing of scenes that don't name one.
bool RealTimeByDefault() {
  const char* szPacing = std::getenv("KELVARIN_VTSIM_PACING");
  return szPacing != nullptr && std::strcmp(szPacing, "real") == 0;
}

Json Parse(const std::string& sText) {
  try {
    return Json::parse(sText);
  } catch (const Json::exception& oError) {
    throw ClSimError(eBadValue, std::string("scene: not JSON: ") + oError.what());
  }
}

}  // namespace

ClScannerDescription ReadPlaten(const std::string& sText) {
  if (sText.size() > cnMostSceneBytes)
    throw ClSimError(eBadValue, "scene: more than " + std::to_string(cnMostSceneBytes) + " bytes");
  const Json oJson = Parse(sText);
  ClObject o(oJson, "");
  ClScannerDescription oScanner;
  ReadPlaten(o, "", oScanner);
  o.Done();
  return oScanner;
}

ClSceneDescription ReadScene(const std::string& sText, const std::string& sFolder) {
  const Json oJson = Parse(sText);
  ClObject o(oJson, "");
  ClSceneDescription oScene;
  oScene.nSeed = static_cast<uint64_t>(o.Whole("seed", 1, 0, cnMostSeed));
  oScene.bRealTime = o.Choice("pacing", RealTimeByDefault() ? 1 : 0, {"consumer", "real"}) == 1;
  oScene.sLibraryVersion = o.Text("libraryVersion", oScene.sLibraryVersion);
  if (oScene.sLibraryVersion.size() > 255) o.Fail("must not be longer than 255 characters", "libraryVersion");
  o.Each("scanners", cnMostScanners, [&](const Json& oScanner, const std::string& sWhere) {
    oScene.aScanners.push_back(ReadScanner(oScanner, sWhere, sFolder));
    for (size_t i = 0; i + 1 < oScene.aScanners.size(); ++i)
      if (oScene.aScanners[i].sSerial == oScene.aScanners.back().sSerial)
        throw ClSimError(eBadValue, "scene: \"" + sWhere + ".serial\" is \"" + oScene.aScanners[i].sSerial +
                                        "\", which another scanner has already");
  });
  o.Each("faults", 256, [&](const Json& oFault, const std::string& sWhere) {
    oScene.aFaults.push_back(ReadFault(oFault, sWhere));
    const ClFaultDescription& oLast = oScene.aFaults.back();
    if (oLast.eKind != ClFaultDescription::eUnplug && oLast.eKind != ClFaultDescription::ePlug) return;
    const auto& aScanners = oScene.aScanners;
    if (std::none_of(aScanners.begin(), aScanners.end(),
                     [&](const auto& oScanner) { return oScanner.sSerial == oLast.sName; }))
      throw ClSimError(eBadValue,
                       "scene: \"" + sWhere + "\" is about \"" + oLast.sName + "\", which no scanner has");
  });
  oScene.nFaultSeed = static_cast<uint64_t>(o.Whole("faultSeed", 1, 0, cnMostSeed));
  o.Done();
  return oScene;
}

ClSceneDescription FindScene(const std::string& sScene) {
  const size_t nFirst = sScene.find_first_not_of(" \t\r\n");
  if (nFirst != std::string::npos && sScene[nFirst] == '{') return ReadScene(sScene, "");
  ClSceneDescription oScene;
  if (FindBuiltInScene(sScene, oScene)) {
    oScene.bRealTime = RealTimeByDefault();
    return oScene;
  }
  const std::string sWhat = "scene file \"" + sScene + "\"";
  NeedRegularFile(sScene, sWhat);
  std::ifstream oFile(sScene, std::ios::binary);
  if (!oFile)
    throw ClSimError(eFileOpen, "scene \"" + sScene + "\" is neither a built-in scene (" +
                                    BuiltInSceneNames() + ") nor a file that can be opened");
  std::string sText;
  ReadAtMost(oFile, cnMostSceneBytes, sWhat, sText);
  const size_t nSlash = sScene.rfind('/');
  return ReadScene(sText, nSlash == std::string::npos ? "" : nSlash == 0 ? "/" : sScene.substr(0, nSlash));
}

}  // namespace Simulator
