// Scenes reach the simulated scan library through the environment, as it is loaded at run time.
#include "Scene.h"

#include <cstdlib>
#include <filesystem>
#include <nlohmann/json.hpp>

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

void ChooseScene(const std::string& sScene, const std::string& sPrintFile, bool bRolls) {
  if (!sScene.empty() && !sPrintFile.empty()) {
    throw ClToolError(eExitUsage, "--scene and --print exclude each other");
  }
  if (!sPrintFile.empty()) setenv(cszVariable, SceneOfPrint(sPrintFile, bRolls).c_str(), 1);
  if (!sScene.empty()) setenv(cszVariable, sScene.c_str(), 1);
}

void PaceScenes() {
  setenv("KELVARIN_VTSIM_PACING", "real", 0);
}

std::string WithdrawScene() {
  const char* szScene = std::getenv(cszVariable);
  std::string sScene = szScene != nullptr ? szScene : "";
  unsetenv(cszVariable);
  return sScene;
}
