// Scenes reach the simulated scan library through the environment, as it is loaded at run time.
#include "Scene.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "ToolError.h"

namespace {

constexpr char cszVariable[] = "KELVARIN_VTSIM_SCENE";

std::string SceneOfPrint(const std::string& sFile) {
  if (access(sFile.c_str(), R_OK) != 0) throw ClToolError(eExitFile, sFile + ": " + std::strerror(errno));
  const nlohmann::json oFinger = {{"print", {{"file", std::filesystem::absolute(sFile).string()}}}};
  const nlohmann::json oScanner = {{"fingers", nlohmann::json::array({oFinger})}};
  return nlohmann::json{{"scanners", nlohmann::json::array({oScanner})}}.dump();
}

}  // namespace

void ChooseScene(const std::string& sScene, const std::string& sPrintFile) {
  if (!sScene.empty() && !sPrintFile.empty()) {
    throw ClToolError(eExitUsage, "--scene and --print exclude each other");
  }
  if (!sPrintFile.empty()) setenv(cszVariable, SceneOfPrint(sPrintFile).c_str(), 1);
  if (!sScene.empty()) setenv(cszVariable, sScene.c_str(), 1);
}

std::string WithdrawScene() {
  const char* szScene = std::getenv(cszVariable);
  const std::string sScene = szScene != nullptr ? szScene : "";
  unsetenv(cszVariable);
  return sScene;
}
