// What scripts/bench takes for slower code, and what for noise.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <fstream>
#include <string>

#include "TemporaryDirectory.h"

namespace {

std::string Times(const std::string& sLevel, double dLeast, double dSpread) {
  return R"({"machine": {"processor": "p", "cores": 2, "level": ")" + sLevel +
         R"("}, "compiler": "c", "flags": "f", "benchmarks": {"kept": {"least": )" + std::to_string(dLeast) +
         R"(, "spread": )" + std::to_string(dSpread) + "}}}";
}

/// What the script says of two files, and its exit code.
std::string Compare(const std::string& sBefore, const std::string& sAfter) {
  const ClTemporaryDirectory oFolder;
  std::ofstream(oFolder.Path("before")) << sBefore;
  std::ofstream(oFolder.Path("after")) << sAfter;
  const std::string sFiles = oFolder.Path("before") + " --with " + oFolder.Path("after");
  std::FILE* pPipe = popen((KLV_BENCH_SCRIPT " --compare " + sFiles + " 2>&1").c_str(), "r");
  std::string sOutput;
  for (int c; (c = std::fgetc(pPipe)) != EOF;) sOutput += static_cast<char>(c);
  const int nStatus = pclose(pPipe);
  return sOutput + "exit " + std::to_string(WIFEXITED(nStatus) ? WEXITSTATUS(nStatus) : -1);
}

TEST(BenchScript, CallsSlowerWhatLeavesBothSpreadsAndTheFloor) {
  // Of a benchmark that took 1000: its spread, then least time and spread after a change, and whether that is
  // slower (1), faster (-1) or neither.
  const int aCases[][4] = {{0, 1050, 0, 0},     {0, 1051, 0, 1},    {150, 1150, 0, 0}, {0, 1150, 150, 0},
                           {149, 1150, 149, 1}, {0, 950, 0, 0},     {0, 949, 0, -1},   {150, 850, 0, 0},
                           {0, 850, 150, 0},    {149, 850, 149, -1}};
  for (const auto& [nBefore, nLeast, nAfter, nChange] : aCases) {
    const std::string sReport = Compare(Times("avx2", 1000, nBefore), Times("avx2", nLeast, nAfter));
    const std::string sSlower = std::to_string(nChange > 0), sFaster = std::to_string(nChange < 0);
    const std::string sEnd = sSlower + " slower, " + sFaster + " faster\nexit " + sSlower;
    EXPECT_NE(sReport.find("1 compared: " + sEnd), std::string::npos) << nBefore << sReport;
    EXPECT_EQ(sReport.find("kept") != std::string::npos, nChange != 0) << sReport;
  }
}

TEST(BenchScript, RefusesTimesOfAnotherMachineAndWhatHasNoTimes) {
  EXPECT_EQ(Compare(Times("avx2", 1000, 0), Times("sse4", 2000, 0)),
            "the file is of another machine: level avx2, here sse4\nexit 2");
  const std::string sReport = Compare(Times("avx2", 1000, 0), "{}");
  EXPECT_NE(sReport.find("no times of benchmarks: 'benchmarks'\nexit 2"), std::string::npos) << sReport;
}

}  // namespace
