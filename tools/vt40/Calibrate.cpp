// The calibrate command.
#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>

#include "Calibration.h"
#include "Commands.h"
#include "HeatMap.h"
#include "Numbers.h"
#include "Picture.h"
#include "Report.h"
#include "Scanner.h"
#include "Scene.h"
#include "ServiceScanner.h"
#include "StandIn.h"
#include "ToolError.h"

namespace {

/// Data without a serial number is judged as that of scanners of this revision.
constexpr char cszAnySerial[] = "VT40-AB";
/// No file of a scanner is larger.
constexpr size_t cnMostBytes = 8192;

double Rounded(double dMicrometres) {
  return std::round(10 * dMicrometres) / 10;
}

nlohmann::ordered_json FormOf(const StResidual& o) {
  return {{"rms", Rounded(o.Rms())}, {"most", Rounded(o.Most())}};
}

std::vector<unsigned char> ReadBlock(const std::filesystem::path& oFile) {
  NeedFile(oFile.string());
  std::ifstream oStream(oFile, std::ios::binary);
  // At most one byte more than that is read, however long the file is.
  std::vector<unsigned char> aBlock(cnMostBytes + 1);
  oStream.read(reinterpret_cast<char*>(aBlock.data()), static_cast<std::streamsize>(aBlock.size()));
  if (!oStream.is_open() || oStream.bad()) throw ClToolError(eExitFile, oFile.string() + ": can't be read");
  aBlock.resize(static_cast<size_t>(oStream.gcount()));
  if (aBlock.size() > cnMostBytes) {
    throw ClToolError(eExitFile, oFile.string() + ": has more than the " + std::to_string(cnMostBytes) +
                                     " bytes that a scanner stores");
  }
  return aBlock;
}

StCalibrationBlocks ReadFolder(const std::filesystem::path& oFolder) {
  StCalibrationBlocks oBlocks;
  oBlocks.aGeometry = ReadBlock(oFolder / "geometric.calibrate");
  for (const auto& [szName, pBlock] :
       {std::pair{"brightness.calibrate", &oBlocks.aBrightness}, {"gaindata.calibrate", &oBlocks.aGains}}) {
    if (std::filesystem::exists(oFolder / szName)) *pBlock = ReadBlock(oFolder / szName);
  }
  return oBlocks;
}

void ReportVerdicts(const std::vector<StBlockVerdict>& aVerdicts, const std::string& sSource,
                    ClReport& oReport) {
  bool bGood = true;
  nlohmann::ordered_json oBlocks = nlohmann::ordered_json::array();
  for (const StBlockVerdict& o : aVerdicts) {
    bGood = bGood && o.sReason.empty();
    oBlocks.push_back({{"name", o.szFile},
                       {"good", o.sReason.empty()},
                       {"reason", o.sReason},
                       {"repairedPoints", o.nRepaired}});
    std::string sFile = o.szFile;
    sFile.resize(std::max<size_t>(sFile.size(), 20), ' ');
    oReport.Line(sFile + "  " + (o.sReason.empty() ? "good" : o.sReason));
    if (o.nRepaired != 0) {
      oReport.Line(std::string(sFile.size(), ' ') + "  " + std::to_string(o.nRepaired) +
                   " points take their neighbours' word");
    }
  }
  oReport.Facts()["source"] = sSource;
  oReport.Facts()["good"] = bGood;
  oReport.Facts()["data"] = oBlocks;
  if (!bGood) oReport.SetVerdict(eExitNegative, sSource + " has calibration data that the library refuses");
}

void Check(const StCommonOptions& oCommon, const StCalibrateOptions& oOptions, ClReport& oReport) {
  if (!oOptions.sCheckFolder.empty()) {
    const std::string sSerial = oCommon.sSerial.empty() ? cszAnySerial : oCommon.sSerial;
    return ReportVerdicts(JudgeBlocks(ReadFolder(oOptions.sCheckFolder), sSerial), oOptions.sCheckFolder,
                          oReport);
  }
  ChooseScene(oCommon);
  const ClLibrary oLibrary;
  const std::string sSerial = oLibrary.ChooseSerial(oCommon.sSerial);
  oReport.Use(oLibrary, ScanLibraryVersion());
  oReport.Facts()["serial"] = sSerial;
  ReportVerdicts(JudgeBlocks(ClServiceScanner(sSerial).Blocks(), sSerial), sSerial, oReport);
}

}  // namespace

void RunCalibrate(const StCommonOptions& oCommon, const StCalibrateOptions& oOptions, ClReport& oReport) {
  if (oOptions.bCheck) return Check(oCommon, oOptions, oReport);
  std::string sSerial = oCommon.sSerial.empty() ? cszAnySerial : oCommon.sSerial;
  StPictureFacts oFacts{ClLibrary::Software(), "", "calibrate", false};
  ClPicture oRaw;
  PrepareFolder(oOptions.sFolder);
  if (!oOptions.sFromFile.empty()) {
    oRaw = ReadPng(oOptions.sFromFile);
  } else {
    ChooseScene(oCommon);
    const ClLibrary oLibrary;
    sSerial = oLibrary.ChooseSerial(oCommon.sSerial);
    oReport.Use(oLibrary, ScanLibraryVersion());
    oReport.Facts()["serial"] = sSerial;
    oRaw = ClServiceScanner(sSerial).RawPicture();
    oFacts.sSerial = sSerial;
    oFacts.bSimulated = oReport.IsSimulated();
    oFacts.bReplay = !StandIn::ReplayFile().empty();
    oReport.Facts()["raw"] = WritePicture(oRaw, oOptions.sFolder, "raw", "png", oFacts);
  }
  const StCalibration oResult = CalibrateFrom(oRaw, sSerial);
  const std::string sMap =
      WritePicture(DrawHeatMap(oResult.oBefore, oResult.oAfter), oOptions.sFolder, "residual", "png", oFacts);
  const std::string sRecord = (std::filesystem::path(oOptions.sFolder) / "geometric.calibrate").string();
  WriteFile(oResult.aRecord, sRecord);
  oReport.Facts()["record"] = sRecord;
  oReport.Facts()["heatMap"] = sMap;
  oReport.Facts()["dots"] = oResult.oBefore.aX.size();
  oReport.Facts()["residualMicrometres"] = {{"before", FormOf(oResult.oBefore)},
                                            {"after", FormOf(oResult.oAfter)}};
  oReport.Line(sRecord + "  " + std::to_string(oResult.oBefore.aX.size()) + " dots");
  for (const auto& [szWhen, pResidual] :
       {std::pair{"before", &oResult.oBefore}, {"after ", &oResult.oAfter}}) {
    oReport.Line(std::string("off the grid ") + szWhen + " the warp  " + OneDecimal(pResidual->Rms()) +
                 " micrometres rms, " + OneDecimal(pResidual->Most()) + " at most");
  }
  oReport.Line(sMap + "  before on the left, after on the right, white is the most of each");
}
