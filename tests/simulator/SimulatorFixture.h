// What tests of the scan library's functions share: a fresh simulator each, and short ways to say common
// things.
#pragma once

#include "KelvarinVTScanAPI/VTScanAPI.h"
#include "SimulatedScanner.h"

class SimulatorTest : public testing::Test {
 protected:
  void SetUp() override {
    unsetenv("KELVARIN_VTSIM_SCENE");
    ASSERT_EQ(VTSimReset(), 0);
  }
  void TearDown() override {
    VTSimClearFaults();
    while (VTScanAPIUninitialize() == 0) {
    }
  }

  static void Start(const std::string& sScene) {
    LoadScene(sScene);
    ASSERT_EQ(VTScanAPIInitialize(nullptr), 0);
  }

  static unsigned FirstId() {
    unsigned aIds[127], nCount = 127;
    EXPECT_EQ(VTScanAPIQueryDevices(aIds, &nCount, 17), 0);
    EXPECT_GT(nCount, 0u);
    return aIds[0];
  }

  static void* Open() {
    void* hDevice = nullptr;
    EXPECT_EQ(VTScanAPICreateHandle(FirstId(), &hDevice), 0) << VTSimLastError();
    return hDevice;
  }

  static void SetMode(void* hDevice, int nMode, std::vector<unsigned long long> aMasks) {
    ASSERT_EQ(VTScanAPISetCaptureMode(hDevice, nMode, static_cast<unsigned>(aMasks.size()), aMasks.data(),
                                      static_cast<unsigned>(aMasks.size())),
              0)
        << VTSimLastError();
  }

  static std::string FaultLog() {
    unsigned nSize = 0;
    EXPECT_EQ(VTSimGetFaultLog(nullptr, &nSize), -702);
    std::string sLog(nSize, 0);
    EXPECT_EQ(VTSimGetFaultLog(sLog.data(), &nSize), 0);
    sLog.pop_back();
    return sLog;
  }

  static std::vector<unsigned char> ReadEprom(void* hDevice, const char* szName) {
    std::vector<unsigned char> aData(8192);
    unsigned nSize = 8192;
    EXPECT_EQ(VTScanAPIReadEPROMFile(hDevice, szName, aData.data(), &nSize), 0);
    aData.resize(nSize);
    return aData;
  }
};
