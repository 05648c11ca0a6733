// Opening a scanner: version gates, calibration blocks, and a scan library that fails at each step.
#include <functional>

#include "ApiFixture.h"
#include "KelvarinVTScanAPI/VTScanAPI.h"
#include "Pace.h"

namespace {

class Assignment : public Api {
 protected:
  /// Opens, expects the number, and checks that nothing is left open.
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
  for (const char* szVersion : {"1.11", "0.99", "7", "x.99", "", "257.11", "256.50"}) {
    ASSERT_EQ(VTSimSetLibraryVersion(szVersion), 0);
    ExpectOpen(KLV_ERROR_UNSUPPORTED, szVersion);
  }
  for (const char* szVersion : {"1.12", "2.0", "1.12.0.7"}) {
    ASSERT_EQ(VTSimSetLibraryVersion(szVersion), 0);
    ExpectOpen(0, szVersion);
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

TEST_F(Assignment, ThePowerSourceAndTheModeDecideOnTheExposure) {
  for (const bool bUsb : {true, false}) {
    LoadScene(std::string(R"({"scanners": [{"serial": "VT40-AB0001", "usbPowered": )") +
              (bUsb ? "true}]}" : "false}]}"));
    ASSERT_EQ(Open(), 0);
    const unsigned int nPreview = bUsb ? 400 : 300;
    for (const auto& [nMode, nExposure] : {std::pair(KLV_VT40_CAPTURE_MODE_PREVIEW, nPreview),
                                           std::pair(KLV_VT40_CAPTURE_MODE_ROLL, 4 * nPreview),
                                           std::pair(KLV_VT40_CAPTURE_MODE_FULL, 2 * nPreview),
                                           std::pair(KLV_VT40_CAPTURE_MODE_SIGNATURE, nPreview / 3)}) {
      ASSERT_EQ(LS_VT40SetCaptureMode(m_h, nMode), 0);
      EXPECT_EQ(State().nExposure, nExposure) << "mode " << nMode;
    }
    ASSERT_EQ(LS_VT40CloseScanner(&m_h), 0);
  }
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
  }
  ExpectOpen(0, "all of them fail");
}

TEST_F(Assignment, MissingAndDamagedCalibrationBlocksAreRefusedWithTheirNumber) {
  // The readers' own tests go over every byte; this one follows a failure of each block to the caller.
  struct StDamage {
    const char* szFile;
    const char* szWhat;
    long nNumber;
    std::function<void(std::vector<unsigned char>&)> fnDamage;
  };
  const StDamage aDamages[] = {
      {"GEOCAL", "a tag", -40, [](auto& a) { a[0] ^= 0x20; }},
      {"GEOCAL", "an actual point", -39, [](auto& a) { a[700] ^= 0x10; }},
      {"GEOCAL", "a target count", -201, [](auto& a) { a[52] ^= 0x01; }},
      {"GEOCAL", "the end", -201, [](auto& a) { a.pop_back(); }},
      // An empty file is not a missing one, but empty gain data are allowed like missing ones.
      {"GEOCAL", "all of it", -201, [](auto& a) { a.clear(); }},
      {"BRGHTCAL", "all of it", -201, [](auto& a) { a.clear(); }},
      {"GAINSET", "all of it", 0, [](auto& a) { a.clear(); }},
      {"GEOCAL", "a check sum", -39, [](auto& a) { a.back() ^= 1; }},
      {"BRGHTCAL", "the end", -201, [](auto& a) { a.pop_back(); }},
      {"BRGHTCAL", "samples", -39, [](auto& a) { a = {'C', 'B', 'D', 0, 1, 0, 64, 0}; }},
      {"GAINSET", "the end", -201, [](auto& a) { a.pop_back(); }}};
  for (const StDamage& o : aDamages) {
    std::vector<unsigned char> aBlock = ReadEprom(o.szFile);
    o.fnDamage(aBlock);
    ASSERT_EQ(VTSimSetEpromFile(nullptr, o.szFile, aBlock.data(), static_cast<unsigned>(aBlock.size())), 0);
    ExpectOpen(o.nNumber, std::string(o.szFile) + ", " + o.szWhat);
    ASSERT_EQ(VTSimRestoreEpromFile(nullptr, o.szFile), 0);
  }
  ExpectOpen(0, "the scanner's own blocks again");
  ASSERT_EQ(VTSimSetEpromFile(nullptr, "GEOCAL", nullptr, 0), 0);
  EXPECT_NE(Open(), 0);
  EXPECT_EQ(m_h, nullptr);
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

TEST_F(Assignment, TakesAtMostTwoSecondsAndLeavesNoStream) {
  const auto tStart = std::chrono::steady_clock::now();
  ASSERT_EQ(Open(), 0);
  EXPECT_LT(SecondsSince(tStart), 2.0 * cnSlowness);
  EXPECT_EQ(State().nStatusLed, 2u) << "the ready light";
  EXPECT_EQ(State().bCaptureEnabled, 0);
}

}  // namespace
