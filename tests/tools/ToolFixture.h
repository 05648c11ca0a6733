// Runs the command-line tool as a process.
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "TemporaryDirectory.h"

struct StRun {
  int nExit = -1;
  std::string sOutput;  ///< standard output and standard error
};

class Tool : public testing::Test {
 protected:
  static StRun Run(const std::string& sArguments) {
    return RunCommand(std::string(KLV_RUN KLV_TOOL) + " " + sArguments);
  }
  static StRun RunCommand(const std::string& sCommand) {
    StRun oRun;
    std::FILE* pPipe = popen(("{ " + sCommand + "; } 2>&1").c_str(), "r");
    if (pPipe == nullptr) return oRun;
    char aBuffer[4096];
    for (size_t n; (n = std::fread(aBuffer, 1, sizeof(aBuffer), pPipe)) != 0;)
      oRun.sOutput.append(aBuffer, n);
    const int nStatus = pclose(pPipe);
    oRun.nExit = WIFEXITED(nStatus) ? WEXITSTATUS(nStatus) : -1;
    return oRun;
  }
  static void Expect(const StRun& oRun, int nExit, const char* szText) {
    EXPECT_EQ(oRun.nExit, nExit) << oRun.sOutput;
    EXPECT_NE(oRun.sOutput.find(szText), std::string::npos) << oRun.sOutput;
  }
  static nlohmann::json FactsOf(const std::string& sArguments, int nExit = 0) {
    const StRun oRun = Run(sArguments + " --json 2>/dev/null");
    EXPECT_EQ(oRun.nExit, nExit) << oRun.sOutput;
    return nlohmann::json::parse(oRun.sOutput);
  }

  std::string Out() const { return " --out " + m_oFolder.Path(); }
  std::vector<unsigned char> FileOf(const std::string& sName) const {
    std::ifstream oFile(m_oFolder.Path(sName), std::ios::binary);
    return {std::istreambuf_iterator<char>(oFile), {}};
  }
  std::string SceneFile(const std::string& sText) const {
    const std::string sFile = m_oFolder.Path("scene.json");
    std::ofstream(sFile) << sText;
    return " --scene " + sFile;
  }

  const ClTemporaryDirectory m_oFolder;
};
