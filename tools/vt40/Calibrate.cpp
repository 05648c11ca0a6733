// The calibrate command.
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>

#include "Calibration.h"
#include "Commands.h"
#include "HeatMap.h"
#include "Json.h"
#include "Picture.h"
#include "Scanner.h"
#include "Scene.h"
#include "ServiceScanner.h"
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

int PrintVerdicts(const std::vector<StBlockVerdict>& aVerdicts, const std::string& sSource, bool bJson) {
  bool bGood = true;
  nlohmann::ordered_json oBlocks = nlohmann::ordered_json::array();
  for (const StBlockVerdict& o : aVerdicts) {
    bGood = bGood && o.sReason.empty();
    oBlocks.push_back({{"name", o.szFile},
                       {"good", o.sReason.empty()},
                       {"reason", o.sReason},
                       {"repairedPoints", o.nRepaired}});
    if (bJson) continue;
    std::printf("%-20s  %s\n", o.szFile, o.sReason.empty() ? "good" : o.sReason.c_str());
    if (o.nRepaired != 0) std::printf("%-20s  %u points take their neighbours' word\n", "", o.nRepaired);
  }
  if (bJson) PrintJson({{"source", sSource}, {"good", bGood}, {"data", oBlocks}});
  return bGood ? eExitOk : eExitNegative;
}

int RunCheck(const StCommonOptions& oCommon, const StCalibrateOptions& oOptions) {
  if (!oOptions.sCheckFolder.empty()) {
    const std::string sSerial = oCommon.sSerial.empty() ? cszAnySerial : oCommon.sSerial;
    return PrintVerdicts(JudgeBlocks(ReadFolder(oOptions.sCheckFolder), sSerial), oOptions.sCheckFolder,
                         oCommon.bJson);
  }
  ChooseScene(oCommon.sScene, oCommon.sPrintFile);
  const ClLibrary oLibrary;
  const std::string sSerial = oLibrary.ChooseSerial(oCommon.sSerial);
  return PrintVerdicts(JudgeBlocks(ClServiceScanner(sSerial).Blocks(), sSerial), sSerial, oCommon.bJson);
}

}  // namespace

int RunCalibrate(const StCommonOptions& oCommon, const StCalibrateOptions& oOptions) {
  if (oOptions.bCheck) return RunCheck(oCommon, oOptions);
  std::string sSerial = oCommon.sSerial.empty() ? cszAnySerial : oCommon.sSerial;
  ClPicture oRaw;
  nlohmann::ordered_json oJson;
  if (!oOptions.sFromFile.empty()) {
    oRaw = ReadPng(oOptions.sFromFile);
  } else {
    ChooseScene(oCommon.sScene, oCommon.sPrintFile);
    const ClLibrary oLibrary;
    sSerial = oLibrary.ChooseSerial(oCommon.sSerial);
    oRaw = ClServiceScanner(sSerial).RawPicture();
    oJson["serial"] = sSerial;
    oJson["raw"] = WritePicture(oRaw, oOptions.sFolder, "raw", "png");
  }
  const StCalibration oResult = CalibrateFrom(oRaw, sSerial);
  const std::string sMap =
      WritePicture(DrawHeatMap(oResult.oBefore, oResult.oAfter), oOptions.sFolder, "residual", "png");
  const std::string sRecord = (std::filesystem::path(oOptions.sFolder) / "geometric.calibrate").string();
  WriteFile(oResult.aRecord, sRecord);
  if (oCommon.bJson) {
    oJson["record"] = sRecord;
    oJson["heatMap"] = sMap;
    oJson["dots"] = oResult.oBefore.aX.size();
    oJson["residualMicrometres"] = {{"before", FormOf(oResult.oBefore)}, {"after", FormOf(oResult.oAfter)}};
    PrintJson(oJson);
    return eExitOk;
  }
  std::printf("%s  %zu dots\n", sRecord.c_str(), oResult.oBefore.aX.size());
  for (const auto& [szWhen, pResidual] :
       {std::pair{"before", &oResult.oBefore}, {"after ", &oResult.oAfter}}) {
    std::printf("off the grid %s the warp  %.1f micrometres rms, %.1f at most\n", szWhen, pResidual->Rms(),
                pResidual->Most());
  }
  std::printf("%s  before on the left, after on the right, white is the most of each\n", sMap.c_str());
  return eExitOk;
}
