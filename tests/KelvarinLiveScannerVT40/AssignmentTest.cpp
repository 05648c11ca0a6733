// Opening a scanner: version gates, calibration blocks, and a scan library that fails at each step.
#include <chrono>

#include "ApiFixture.h"
#include "KelvarinVTScanAPI/VTScanAPI.h"
#include "Pace.h"

namespace {

class Assignment : public Api {
 protected:
  /// Opens, expects the number, and checks that nothing is left behind.
  void ExpectOpen(long nNumber, const std::string& sWhat) {
    EXPECT_EQ(Open(), nNumber) << sWhat;
    if (nNumber == 0) {
      ASSERT_NE(m_h, nullptr) << sWhat;
      EXPECT_EQ(LS_VT40CloseScanner(&m_h), 0) << sWhat;
    }
    EXPECT_EQ(m_h, nullptr) << sWhat;
    EXPECT_EQ(State().bOpen, 0) << sWhat;
  }

  /// The scanner's own file, as the scan library hands it out.
  static std::vector<unsigned char> ReadEprom(const char* szName) {
    EXPECT_EQ(VTSimRestoreEpromFile(nullptr, szName), 0);
    unsigned int nId = 0;
    unsigned int nCount = 1;
    void* hDevice = nullptr;
    EXPECT_EQ(VTScanAPIQueryDevices(&nId, &nCount, 17), 0);
    EXPECT_EQ(VTScanAPICreateHandle(nId, &hDevice), 0);
    std::vector<unsigned char> aData(8192);
    unsigned int nSize = static_cast<unsigned int>(aData.size());
    EXPECT_EQ(VTScanAPIReadEPROMFile(hDevice, szName, aData.data(), &nSize), 0);
    EXPECT_EQ(VTScanAPIDestroyHandle(&hDevice), 0);
    aData.resize(nSize);
    return aData;
  }
};

TEST_F(Assignment, OldScanLibrariesAreRefused) {
  const std::vector<std::pair<const char*, long>> aVersions = {{"1.11", KLV_ERROR_UNSUPPORTED},
                                                               {"1.12", 0},
                                                               {"2.0", 0},
                                                               {"0.99", KLV_ERROR_UNSUPPORTED},
                                                               {"7", KLV_ERROR_UNSUPPORTED},
                                                               {"x.99", KLV_ERROR_UNSUPPORTED},
                                                               {"", KLV_ERROR_UNSUPPORTED},
                                                               {"257.11", KLV_ERROR_UNSUPPORTED},
                                                               {"1.12.0.7", 0},
                                                               {"256.50", KLV_ERROR_UNSUPPORTED}};
  for (const auto& [szVersion, nNumber] : aVersions) {
    ASSERT_EQ(VTSimSetLibraryVersion(szVersion), 0);
    ExpectOpen(nNumber, szVersion);
  }
}

TEST_F(Assignment, FirmwareFromTwoZeroSevenOnIsAskedForItsPowerSource) {
  const std::vector<std::pair<const char*, unsigned int>> aVersions = {
      {"FW:3 FPGA:2.07 HW:1", 1}, {"FW:3 FPGA:2.06 HW:1", 0}, {"FPGA:2.10", 1},
      {"FPGA:10.00", 0},          {"FW:3 HW:1", 0},           {"FW:3 FPGA:", 0}};
  for (const auto& [szVersion, nCalls] : aVersions) {
    ASSERT_EQ(VTSimSetDeviceVersion(nullptr, szVersion), 0);
    const unsigned long long nBefore = Calls("VTScanAPIGetPropertyLongA");
    ExpectOpen(0, szVersion);
    EXPECT_EQ(Calls("VTScanAPIGetPropertyLongA") - nBefore, nCalls) << szVersion;
  }
}

TEST_F(Assignment, PowerSourceAndRevisionDecideExposureAndGain) {
  LoadScene(R"({"scanners": [{"serial": "VT40-AB0001", "usbPowered": true}]})");
  ASSERT_EQ(Open(), 0);
  ASSERT_EQ(LS_VT40SetCaptureMode(m_h, KLV_VT40_CAPTURE_MODE_PREVIEW), 0);
  const VTSimState oUsb = State();
  EXPECT_EQ(oUsb.nExposure, 400u);
  EXPECT_EQ(oUsb.nSensorMode, 35);
  ASSERT_EQ(LS_VT40CloseScanner(&m_h), 0);
  LoadScene(R"({"scanners": [{"serial": "VT40-AB0001", "usbPowered": false}]})");
  ASSERT_EQ(Open(), 0);
  ASSERT_EQ(LS_VT40SetCaptureMode(m_h, KLV_VT40_CAPTURE_MODE_FULL), 0);
  EXPECT_EQ(State().nExposure, 600u);
  EXPECT_EQ(State().nSensorMode, 34);
}

TEST_F(Assignment, SerialsOfUnknownRevisionsAreRefused) {
  LoadScene(
      R"({"scanners": [{"serial": "VT40-AI0001"}, {"serial": "VT40"}, {"serial": "VT40-1A"}, {"serial": "VT40-ah01"}]})");
  EXPECT_EQ(Open("VT40-AI0001"), KLV_ERROR_UNSUPPORTED) << "revision 8";
  EXPECT_EQ(Open("VT40"), KLV_ERROR_INVALID_PARAMETER) << "no revision";
  EXPECT_EQ(Open("VT40-1A"), KLV_ERROR_INVALID_PARAMETER) << "a digit in the revision";
  EXPECT_EQ(Open("VT40-ah01"), 0) << "revision 7 in lower case";
}

TEST_F(Assignment, AFailingCallOfTheScanLibraryEndsTheOpening) {
  for (const char* szFunction : {"VTScanAPICreateHandle", "VTScanAPIGetPropertyA", "VTScanAPIReadEPROMFile",
                                 "VTScanAPIGetVersion", "VTScanAPIGetPropertyLongA"}) {
    ASSERT_EQ(VTSimFailCall(szFunction, 1, 1, -777), 0);
    ExpectOpen(-777, szFunction);
    ASSERT_EQ(VTSimClearFaults(), 0);
    ExpectOpen(0, szFunction);
  }
  ASSERT_EQ(VTSimFailCall("VTScanAPIGetHandleSerial", 1, 1, 0), 0);
  ExpectOpen(-101, "a serial without a size");
  ASSERT_EQ(VTSimFailCall("VTScanAPIGetHandleSerial", 2, 1, -777), 0);
  ExpectOpen(-777, "a serial that cannot be read");
  ASSERT_EQ(VTSimFailCall("VTScanAPIReadEPROMFile", 2, 1, -777), 0);
  ExpectOpen(-777, "no brightness data");
  ASSERT_EQ(VTSimFailCall("VTScanAPIReadEPROMFile", 3, 1, -777), 0);
  ExpectOpen(0, "a scanner without gain data works");
}

TEST_F(Assignment, CallsWhoseResultDoesNotCountMayFail) {
  for (const char* szFunction : {"VTScanAPISetVSYNC", "VTScanAPISetResolution", "VTScanAPISetCaptureSequence",
                                 "VTScanAPIGetResolution", "VTScanAPISetStatusLED", "VTScanAPISetGain"}) {
    ASSERT_EQ(VTSimFailCall(szFunction, 1, 0, -777), 0);
    ExpectOpen(0, szFunction);
    ASSERT_EQ(VTSimClearFaults(), 0);
  }
}

TEST_F(Assignment, MissingAndCutCalibrationFilesAreRefused) {
  ASSERT_EQ(VTSimSetEpromFile(nullptr, "GEOCAL", nullptr, 0), 0);
  EXPECT_NE(Open(), 0);
  EXPECT_EQ(m_h, nullptr);
  const std::vector<unsigned char> aGeometry = ReadEprom("GEOCAL");
  ASSERT_GT(aGeometry.size(), 600u);
  for (const unsigned int nSize :
       {0u, 1u, 4u, 11u, 48u, 600u, static_cast<unsigned int>(aGeometry.size()) - 1}) {
    ASSERT_EQ(VTSimSetEpromFile(nullptr, "GEOCAL", aGeometry.data(), nSize), 0);
    ExpectOpen(-201, "GEOCAL cut at " + std::to_string(nSize));
  }
}

TEST_F(Assignment, EachFieldOfTheGeometricBlockIsGuarded) {
  struct StDamage {
    size_t nOffset;
    unsigned char nXor;
    long nNumber;
    const char* szField;
  };
  const StDamage aDamages[] = {{0, 0x20, -40, "first tag"},        {4, 0xFF, -40, "second tag"},
                               {12, 0x01, -39, "source width"},    {20, 0x01, -39, "source resolution"},
                               {28, 0x40, -39, "target width"},    {40, 0x01, -39, "target resolution"},
                               {47, 0x04, -39, "planes"},          {48, 0xFF, -39, "background"},
                               {52, 0x01, -201, "target count"},   {56, 0x10, -39, "a target point"},
                               {700, 0x10, -39, "an actual point"}};
  std::vector<unsigned char> aGood = ReadEprom("GEOCAL");
  for (const StDamage& oDamage : aDamages) {
    std::vector<unsigned char> aBad = aGood;
    aBad[oDamage.nOffset] ^= oDamage.nXor;
    ASSERT_EQ(VTSimSetEpromFile(nullptr, "GEOCAL", aBad.data(), static_cast<unsigned int>(aBad.size())), 0);
    ExpectOpen(oDamage.nNumber, oDamage.szField);
  }
  aGood.back() ^= 1;
  ASSERT_EQ(VTSimSetEpromFile(nullptr, "GEOCAL", aGood.data(), static_cast<unsigned int>(aGood.size())), 0);
  ExpectOpen(-39, "check sum");
  ASSERT_EQ(VTSimRestoreEpromFile(nullptr, "GEOCAL"), 0);
  ExpectOpen(0, "the scanner's own block again");
}

TEST_F(Assignment, FramesBeyondTheSensorsSizeAreRefusedAlsoWithoutACheckSum) {
  // The older version of the block has no check sum that would show the change.
  std::vector<unsigned char> aWide = ReadEprom("GEOCAL");
  ASSERT_EQ(aWide[10], '6');
  ASSERT_EQ(aWide[14] << 8 | aWide[15], 3840);
  aWide[10] = '5';
  aWide[14] = 16384 >> 8;
  ASSERT_EQ(VTSimSetEpromFile(nullptr, "GEOCAL", aWide.data(), static_cast<unsigned int>(aWide.size())), 0);
  ExpectOpen(-39, "frames 16384 wide");
  aWide[14] = 3840 >> 8;
  ASSERT_EQ(VTSimSetEpromFile(nullptr, "GEOCAL", aWide.data(), static_cast<unsigned int>(aWide.size())), 0);
  ExpectOpen(0, "the sensor's own width");
}

TEST_F(Assignment, BrightnessAndGainBlocksAreGuarded) {
  const std::vector<unsigned char> aBrightness = ReadEprom("BRGHTCAL");
  const std::vector<unsigned char> aGain = ReadEprom("GAINSET");
  const auto Set = [](const char* szName, const std::vector<unsigned char>& aData) {
    // An empty file is there as well.
    const void* pData = aData.empty() ? "" : static_cast<const void*>(aData.data());
    ASSERT_EQ(VTSimSetEpromFile(nullptr, szName, pData, static_cast<unsigned int>(aData.size())), 0);
  };
  Set("BRGHTCAL", {});
  ExpectOpen(-201, "no byte of brightness");
  Set("BRGHTCAL", {aBrightness.begin(), aBrightness.end() - 1});
  ExpectOpen(-201, "brightness cut");
  Set("BRGHTCAL", {'C', 'B', 'D', 0, 1, 0, 64, 0});
  ExpectOpen(-39, "brightness without samples");
  Set("BRGHTCAL", aBrightness);
  Set("GAINSET", {aGain.begin(), aGain.end() - 1});
  ExpectOpen(-201, "gain cut");
  Set("GAINSET", {});
  ExpectOpen(0, "an empty gain file is a missing one");
  Set("GAINSET", aGain);
  ExpectOpen(0, "whole again");
}

TEST_F(Assignment, TakesAtMostTwoSeconds) {
  const auto tStart = std::chrono::steady_clock::now();
  ASSERT_EQ(Open(), 0);
  const std::chrono::duration<double> oTaken = std::chrono::steady_clock::now() - tStart;
  EXPECT_LT(oTaken.count(), 2.0 * cnSlowness);
  RecordProperty("seconds", std::to_string(oTaken.count()));
}

TEST_F(Assignment, LeavesTheScannerWithItsReadyLightAndNoStream) {
  ASSERT_EQ(Open(), 0);
  const VTSimState oState = State();
  EXPECT_EQ(oState.nStatusLed, 2u);
  EXPECT_EQ(oState.bCaptureEnabled, 0);
  int nMode = 0;
  EXPECT_EQ(LS_VT40GetCaptureMode(m_h, &nMode), 0);
  EXPECT_EQ(nMode, KLV_VT40_CAPTURE_MODE_OFF);
}

}  // namespace
