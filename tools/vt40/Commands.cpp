// The commands that read or set something of a scanner without a picture.
#include "Commands.h"

#include <algorithm>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "Json.h"
#include "Scanner.h"
#include "Scene.h"
#include "ToolError.h"

namespace {

constexpr size_t cnDisplayLine = 16;

/// The characters for the display, first line first.
std::string DisplayText(const std::vector<std::string>& aTexts) {
  const size_t nRoom = aTexts.size() == 1 ? 2 * cnDisplayLine : cnDisplayLine;
  for (const std::string& sText : aTexts) {
    if (sText.size() > nRoom)
      throw ClToolError(eExitUsage, "\"" + sText + "\" has " + std::to_string(sText.size()) +
                                        " characters; the display has room for " + std::to_string(nRoom) +
                                        (aTexts.size() == 1 ? "" : " in a line"));
    for (const char c : sText)
      if (c < ' ' || c > '~')
        throw ClToolError(
            eExitUsage,
            "\"" + sText + "\" has characters that the display doesn't know; it shows ASCII only");
  }
  std::string sAll = aTexts[0];
  if (aTexts.size() == 1) return sAll;
  sAll.resize(cnDisplayLine, ' ');
  return sAll + aTexts[1];
}

nlohmann::ordered_json FormOf(const ClPicture& oPicture) {
  return {{"width", oPicture.nWidth}, {"height", oPicture.nHeight}, {"pelsPerMetre", oPicture.nPelsX}};
}

}  // namespace

int RunList(const StCommonOptions& oCommon) {
  ChooseScene(oCommon.sScene, oCommon.sPrintFile);
  const ClLibrary oLibrary;
  const std::vector<std::string> aSerials = oLibrary.Serials();
  if (oCommon.bJson) {
    PrintJson({{"scanners", aSerials}});
  } else {
    for (const std::string& sSerial : aSerials) std::puts(sSerial.c_str());
  }
  if (aSerials.empty()) throw ClToolError(eExitNoScanner, "no scanner is connected");
  return eExitOk;
}

int RunInfo(const StCommonOptions& oCommon) {
  ChooseScene(oCommon.sScene, oCommon.sPrintFile);
  const ClLibrary oLibrary;
  const ClScanner oScanner(oLibrary, oCommon.sSerial);
  const ClPicture oImage = oScanner.ImageForm();
  const ClPicture oPreview = oScanner.PreviewForm();
  if (oCommon.bJson) {
    PrintJson({{"library", ClLibrary::Version()},
               {"serial", oScanner.Serial()},
               {"versions", oScanner.Versions()},
               {"condition", oScanner.Condition()},
               {"image", FormOf(oImage)},
               {"preview", FormOf(oPreview)}});
    return eExitOk;
  }
  std::printf("library    %s\n", ClLibrary::Version().c_str());
  std::printf("serial     %s\n", oScanner.Serial().c_str());
  std::printf("versions   %s\n", oScanner.Versions().c_str());
  std::printf("condition  %u (0 clean to 100)\n", oScanner.Condition());
  std::printf("image      %u x %u, %u pels per metre\n", oImage.nWidth, oImage.nHeight, oImage.nPelsX);
  std::printf("preview    %u x %u, %u pels per metre\n", oPreview.nWidth, oPreview.nHeight, oPreview.nPelsX);
  return eExitOk;
}

int RunPropertyGet(const StCommonOptions& oCommon, const std::string& sName) {
  ChooseScene(oCommon.sScene, oCommon.sPrintFile);
  const ClLibrary oLibrary;
  const ClScanner oScanner(oLibrary, oCommon.sSerial);
  const std::string sValue = oScanner.GetProperty(sName);
  if (oCommon.bJson) {
    PrintJson({{"name", sName}, {"value", sValue}});
  } else {
    std::puts(sValue.c_str());
  }
  return eExitOk;
}

int RunPropertySet(const StCommonOptions& oCommon, const std::string& sName, const std::string& sValue) {
  ChooseScene(oCommon.sScene, oCommon.sPrintFile);
  const ClLibrary oLibrary;
  ClScanner oScanner(oLibrary, oCommon.sSerial);
  oScanner.SetProperty(sName, sValue);
  return eExitOk;
}

int RunLed(const StCommonOptions& oCommon, unsigned int nIndex, unsigned int nState) {
  ChooseScene(oCommon.sScene, oCommon.sPrintFile);
  const ClLibrary oLibrary;
  ClScanner oScanner(oLibrary, oCommon.sSerial);
  oScanner.SetLed(nIndex, nState);
  if (oCommon.bJson) PrintJson({{"serial", oScanner.Serial()}, {"led", nIndex}, {"state", nState}});
  return eExitOk;
}

int RunBeep(const StCommonOptions& oCommon, unsigned int nArg1, unsigned int nArg2) {
  ChooseScene(oCommon.sScene, oCommon.sPrintFile);
  const ClLibrary oLibrary;
  ClScanner oScanner(oLibrary, oCommon.sSerial);
  oScanner.Beep(nArg1, nArg2);
  if (oCommon.bJson) PrintJson({{"serial", oScanner.Serial()}, {"values", {nArg1, nArg2}}});
  return eExitOk;
}

int RunDisplay(const StCommonOptions& oCommon, const std::vector<std::string>& aTexts) {
  const std::string sText = DisplayText(aTexts);
  ChooseScene(oCommon.sScene, oCommon.sPrintFile);
  const ClLibrary oLibrary;
  ClScanner oScanner(oLibrary, oCommon.sSerial);
  oScanner.Display(sText);
  if (oCommon.bJson) {
    const size_t nFirst = std::min(sText.size(), cnDisplayLine);
    PrintJson({{"serial", oScanner.Serial()}, {"lines", {sText.substr(0, nFirst), sText.substr(nFirst)}}});
  }
  return eExitOk;
}
