// The simulated scanner's side: what the host has set, and sequences that it lets through one by one.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "KelvarinVTScanAPI/VTSim.h"

inline void LoadScene(const std::string& sScene) {
  ASSERT_EQ(VTSimLoadScene(sScene.c_str()), 0) << VTSimLastError();
}

inline VTSimState State(const char* szSerial = nullptr) {
  VTSimState oState = {};
  oState.nStructSize = sizeof(oState);
  EXPECT_EQ(VTSimGetState(szSerial, &oState), 0) << VTSimLastError();
  return oState;
}

/// The sequences that the scanner has handed out since the scene was loaded.
inline std::vector<VTSimFrame> Frames() {
  std::vector<VTSimFrame> aFrames(4096);
  unsigned int nCount = 4096;
  EXPECT_EQ(VTSimGetFrames(nullptr, 0, aFrames.data(), &nCount), 0) << VTSimLastError();
  aFrames.resize(nCount);
  return aFrames;
}

/// Waits for an event of the simulated scanner or of its library.
template <typename TEvent>
bool WaitFor(TEvent&& oEvent, double dSeconds = 30.0) {
  const auto tEnd = std::chrono::steady_clock::now() + std::chrono::duration<double>(dSeconds);
  while (!oEvent()) {
    if (std::chrono::steady_clock::now() > tEnd) return false;
    std::this_thread::yield();
  }
  return true;
}

/// Lets a held sequence through, until the library has taken it and waits for the next.
inline void Pass() {
  const unsigned long long nSequences = State().nSequences;
  ASSERT_EQ(VTSimPassSequences(nullptr, 1), 0);
  ASSERT_EQ(VTSimWaitForSequences(nullptr, nSequences + 1, 30000), 0) << VTSimLastError();
  ASSERT_TRUE(WaitFor([] { return State().bWaiting != 0; }));
}

/// Lets previews through until the library waits for the shot of an automatic capture. How many it takes
/// depends on how many of them a slow judge misses.
inline void PassUntilShot() {
  ASSERT_TRUE(WaitFor([] {
    if (State().nSensorMode == 34) return true;
    Pass();
    return testing::Test::HasFatalFailure();
  }));
}

/// One finger that lies still for a minute, for tests that need no hand.
constexpr char cszFinger[] =
    R"({"scanners": [{"serial": "VT40-AB0001", "fingers": [{"print": {"seed": 3}, "lift": 60}]}]})";

/// A roll of a dozen frames, again and again, for tests that need no good print.
inline std::string QuickRoll(const char* szRepeat = "0.9") {
  return R"({"scanners": [{"serial": "VT40-AB0001", "fingers": [{
    "print": {"seed": 7, "width": 28}, "touch": 0.1, "touchSeconds": 0.05, "lift": 0.75, "liftSeconds": 0.05,
    "roll": {"width": 13, "path": [{"at": 0.1, "strip": -7}, {"at": 0.6, "strip": 7}]}, "repeat": )" +
         std::string(szRepeat) + "}]}]}";
}
