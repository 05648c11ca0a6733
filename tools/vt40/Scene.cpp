// Scenes reach the simulated scan library through the environment, as it is loaded at run time.
#include "Scene.h"

#include <cstdlib>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "Commands.h"
#include "Picture.h"
#include "ToolError.h"

namespace {

constexpr char cszVariable[] = "KELVARIN_VTSIM_SCENE";

std::string SceneOfPrint(const std::string& sFile, bool bRolls) {
  NeedFile(sFile);
  nlohmann::json oFinger = {{"print", {{"file", std::filesystem::absolute(sFile).string()}}}};
  if (bRolls) oFinger["roll"] = nlohmann::json::object();
  const nlohmann::json oScanner = {{"fingers", nlohmann::json::array({oFinger})}};
  return nlohmann::json{{"scanners", nlohmann::json::array({oScanner})}}.dump();
}

}  // namespace

void ChooseScene(const StCommonOptions& oCommon, bool bRolls) {
  if (!oCommon.sScene.empty() && !oCommon.sPrintFile.empty()) {
    throw ClToolError(eExitUsage, "--scene and --print exclude each other");
  }
  if (!oCommon.bSimulate && oCommon.sScene.empty() && oCommon.sPrintFile.empty()) return;
  setenv("KELVARIN_SDK_SIMULATE", "1", 1);
  if (!oCommon.sPrintFile.empty()) setenv(cszVariable, SceneOfPrint(oCommon.sPrintFile, bRolls).c_str(), 1);
  if (!oCommon.sScene.empty()) setenv(cszVariable, oCommon.sScene.c_str(), 1);
}

void PaceScenes() {
  setenv("KELVARIN_VTSIM_PACING", "real", 0);
}
