// The commands that read or set something of a scanner without a picture.
#include "Commands.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "Report.h"
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

std::string LineOf(const ClPicture& oPicture) {
  return std::to_string(oPicture.nWidth) + " x " + std::to_string(oPicture.nHeight) + ", " +
         std::to_string(oPicture.nPelsX) + " pels per metre";
}

}  // namespace

void RunList(const StCommonOptions& oCommon, ClReport& oReport) {
  ChooseScene(oCommon);
  const ClLibrary oLibrary;
  const std::vector<std::string> aSerials = oLibrary.Serials();
  oReport.Use(oLibrary, ScanLibraryVersion());
  oReport.Facts()["scanners"] = aSerials;
  for (const std::string& sSerial : aSerials) oReport.Line(sSerial);
  if (aSerials.empty()) oReport.SetVerdict(eExitNoScanner, "no scanner is connected");
}

void RunInfo(const StCommonOptions& oCommon, ClReport& oReport) {
  ChooseScene(oCommon);
  const ClLibrary oLibrary;
  const ClScanner oScanner(oLibrary, oCommon.sSerial);
  const ClPicture oImage = oScanner.ImageForm();
  const ClPicture oPreview = oScanner.PreviewForm();
  oReport.Use(oLibrary, oScanner);
  nlohmann::ordered_json& oFacts = oReport.Facts();
  oFacts["library"] = ClLibrary::Version();
  oFacts["versions"] = oScanner.Versions();
  oFacts["condition"] = oScanner.Condition();
  oFacts["image"] = FormOf(oImage);
  oFacts["preview"] = FormOf(oPreview);
  oReport.Line("library    " + ClLibrary::Version());
  oReport.Line("scan lib   " + oLibrary.ScanLibrary().sPath +
               (oLibrary.ScanLibrary().bSimulated ? " (simulated)" : ""));
  oReport.Line("serial     " + oScanner.Serial());
  oReport.Line("versions   " + oScanner.Versions());
  oReport.Line("condition  " + std::to_string(oScanner.Condition()) + " (0 clean to 100)");
  oReport.Line("image      " + LineOf(oImage));
  oReport.Line("preview    " + LineOf(oPreview));
}

void RunPropertyGet(const StCommonOptions& oCommon, const std::string& sName, ClReport& oReport) {
  ChooseScene(oCommon);
  const ClLibrary oLibrary;
  const ClScanner oScanner(oLibrary, oCommon.sSerial);
  oReport.Use(oLibrary, oScanner);
  const std::string sValue = oScanner.GetProperty(sName);
  oReport.Facts()["name"] = sName;
  oReport.Facts()["value"] = sValue;
  oReport.Line(sValue);
}

void RunPropertySet(const StCommonOptions& oCommon, const std::string& sName, const std::string& sValue,
                    ClReport& oReport) {
  ChooseScene(oCommon);
  const ClLibrary oLibrary;
  ClScanner oScanner(oLibrary, oCommon.sSerial);
  oReport.Use(oLibrary, oScanner);
  oScanner.SetProperty(sName, sValue);
  oReport.Facts()["name"] = sName;
  oReport.Facts()["value"] = sValue;
}

void RunLed(const StCommonOptions& oCommon, unsigned int nIndex, unsigned int nState, ClReport& oReport) {
  ChooseScene(oCommon);
  const ClLibrary oLibrary;
  ClScanner oScanner(oLibrary, oCommon.sSerial);
  oReport.Use(oLibrary, oScanner);
  oScanner.SetLed(nIndex, nState);
  oReport.Facts()["led"] = nIndex;
  oReport.Facts()["state"] = nState;
}

void RunBeep(const StCommonOptions& oCommon, unsigned int nArg1, unsigned int nArg2, ClReport& oReport) {
  ChooseScene(oCommon);
  const ClLibrary oLibrary;
  ClScanner oScanner(oLibrary, oCommon.sSerial);
  oReport.Use(oLibrary, oScanner);
  oScanner.Beep(nArg1, nArg2);
  oReport.Facts()["values"] = {nArg1, nArg2};
}

void RunDisplay(const StCommonOptions& oCommon, const std::vector<std::string>& aTexts, ClReport& oReport) {
  const std::string sText = DisplayText(aTexts);
  ChooseScene(oCommon);
  const ClLibrary oLibrary;
  ClScanner oScanner(oLibrary, oCommon.sSerial);
  oReport.Use(oLibrary, oScanner);
  oScanner.Display(sText);
  const size_t nFirst = std::min(sText.size(), cnDisplayLine);
  oReport.Facts()["lines"] = {sText.substr(0, nFirst), sText.substr(nFirst)};
}
