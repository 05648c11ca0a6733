// The hostile scan library under the exported functions, in virtual time.
#pragma once

#include <dlfcn.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "Hostile.h"
#include "KelvarinFakeFingerDetectionVT40/FDSim.h"
#include "KelvarinLiveScannerVT40.h"
#include "SimulatedScanner.h"
#include "VirtualTime.h"
#include "format/Functions.h"

class HostileScanner : public testing::Test {
 protected:
  void SetUp() override {
    // The scan library is looked for in the working directory first.
    ASSERT_EQ(chdir(KLV_HOSTILE_FOLDER), 0);
    const std::string sFile = std::string(KLV_HOSTILE_FOLDER "/") + Recording::cszScanLibrary;
    void* hLibrary = dlopen(sFile.c_str(), RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(hLibrary, nullptr) << dlerror();
    // The liveness library is there.
    ASSERT_EQ(FDSimReset(), 0);
    m_pControl = reinterpret_cast<decltype(&HostileControl)>(dlsym(hLibrary, "HostileControl"))();
  }

  /// A finger that lies still.
  static std::string Scene(const char* szSerial) {
    return std::string(R"({"pacing": "real", "scanners": [{"serial": ")") + szSerial +
           R"(", "noise": 0, "fingers": [{"print": {"seed": 3}, "lift": 1000000}]}]})";
  }

  using ImageCall = long (*)(void*, void*, double*, unsigned char*, long*);
  static long Image(ImageCall pfn, void* h) {
    std::vector<unsigned char> aPixels(1600 * 1600);
    double dScore = 0.0;
    unsigned char bDone = 0;
    long nResult = 0;
    return pfn(h, aPixels.data(), &dScore, &bDone, &nResult);
  }

  ClVirtualTime m_oTime;
  Hostile::ClControl* m_pControl = nullptr;
};
