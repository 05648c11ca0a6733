// Properties, LEDs, the buzzer, versions and the display.
#include <cstring>

#include "ApiFixture.h"

namespace {

TEST_F(OpenScanner, PropertiesAreReadAndSetInEveryForm) {
  char szValue[32] = "";
  unsigned int nSize = 0;
  EXPECT_EQ(LS_VT40GetPropertyA(m_h, "Version", nullptr, &nSize), KLV_ERROR_BUFFER_TOO_SMALL);
  EXPECT_EQ(nSize, 11u);
  EXPECT_EQ(LS_VT40GetPropertyA(m_h, "Version", nullptr, &nSize), KLV_ERROR_BAD_POINTER);
  EXPECT_EQ(LS_VT40GetPropertyA(m_h, "Version", szValue, &nSize), 0);
  EXPECT_STREQ(szValue, "1.5.1421.5");
  EXPECT_EQ(LS_VT40SetPropertyA(m_h, "Version", "2"), KLV_ERROR_READ_ONLY);
  EXPECT_EQ(LS_VT40SetPropertyA(m_h, "nautocapturebeep", "0x10"), 0);
  long nValue = 0;
  EXPECT_EQ(LS_VT40GetPropertyLongA(m_h, "nAutoCaptureBeep", &nValue), 0);
  EXPECT_EQ(nValue, 16);
  EXPECT_EQ(LS_VT40SetPropertyLongA(m_h, "nRolledPostProcess", -1), KLV_ERROR_OUT_OF_RANGE);
  EXPECT_EQ(LS_VT40SetPropertyA(m_h, "nRolledPostProcess", "12abc"), KLV_ERROR_INVALID_PARAMETER);
  EXPECT_EQ(LS_VT40GetPropertyLongA(m_h, "none", &nValue), KLV_ERROR_UNKNOWN_PARAMETER);
  EXPECT_EQ(LS_VT40GetPropertyLongA(m_h, "dSignatureFilterSigma", &nValue), KLV_ERROR_INVALID_PARAMETER);
  double dValue = 0.0;
  EXPECT_EQ(LS_VT40GetPropertyDoubleA(m_h, "dSignatureFilterSigma", &dValue), 0);
  EXPECT_EQ(dValue, 2.0);
  for (const auto& [szName, szRefused] : {std::pair("dSignatureFilterSigma", "0.4"),
                                          {"dSignatureFilterSigma", "101"},
                                          {"dSignatureDetectTime", "-0.1"},
                                          {"dSignatureDetectTime", "nan"}})
    EXPECT_EQ(LS_VT40SetPropertyA(m_h, szName, szRefused), KLV_ERROR_INVALID_PARAMETER)
        << szName << szRefused;
  EXPECT_EQ(LS_VT40SetPropertyA(m_h, "dSignatureDetectTime", "inf"), KLV_ERROR_OUT_OF_RANGE);
  EXPECT_EQ(LS_VT40SetPropertyDoubleA(m_h, "dSignatureDetectTime", 0.0), 0);
  nSize = sizeof(szValue);
  EXPECT_EQ(LS_VT40GetPropertyA(m_h, "dSignatureDetectTime", szValue, &nSize), 0);
  EXPECT_STREQ(szValue, "0.0");
  EXPECT_EQ(LS_VT40SetPropertyLongA(m_h, "nResetImage", 1), KLV_ERROR_INVALID_STATE);
  nSize = sizeof(szValue);
  EXPECT_EQ(LS_VT40GetPropertyA(m_h, "nResetImage", szValue, &nSize), 0);
  EXPECT_STREQ(szValue, "0");
  EXPECT_EQ(LS_VT40GetPropertyW(nullptr, nullptr, nullptr, nullptr), KLV_ERROR_NOT_IMPLEMENTED);
}

TEST_F(OpenScanner, StatusLedsStandAtTheirPlacesInTheWord) {
  EXPECT_EQ(State().nStatusLed, 2u) << "the ready light";
  EXPECT_EQ(LS_VT40SetLED(m_h, 12, 0), KLV_ERROR_OUT_OF_RANGE);
  EXPECT_EQ(LS_VT40SetLED(m_h, 0, 8), KLV_ERROR_INVALID_PARAMETER);
  EXPECT_EQ(LS_VT40SetLED(m_h, 0, 0), 0);
  const unsigned int aBits[] = {0, 9, 12, 15, 18, 21, 36, 33, 30, 27, 24, 3};
  for (unsigned char n = 0; n < 12; ++n) {
    EXPECT_EQ(LS_VT40SetLED(m_h, n, 5), 0);
    EXPECT_EQ(State().nStatusLed, 5ull << aBits[n]) << static_cast<int>(n);
    EXPECT_EQ(LS_VT40SetLED(m_h, n, 0), 0);
  }
  EXPECT_EQ(LS_VT40SetPropertyLongA(m_h, "STATUS_LED", 0x0304), 0);
  EXPECT_EQ(State().nStatusLed, 4ull << 15);
  EXPECT_EQ(LS_VT40SetPropertyLongA(m_h, "STATUS_LED", 0x00030005), 0);
  EXPECT_EQ(State().nStatusLed, 4ull << 15 | 5ull | 5ull << 9);
  const unsigned int nWrites = State().nStatusWrites;
  EXPECT_EQ(LS_VT40SetPropertyLongA(m_h, "STATUS_LED", 0xFFFF), 0) << "the mask form with no LED";
  EXPECT_EQ(State().nStatusWrites, nWrites + 1);
  EXPECT_EQ(State().nStatusLed, 4ull << 15 | 5ull | 5ull << 9);
  EXPECT_EQ(LS_VT40SetPropertyLongA(m_h, "STATUS_LED", 0x0C01), KLV_ERROR_OUT_OF_RANGE);
}

TEST_F(OpenScanner, VersionsAndSerialComeFromTheScanner) {
  ASSERT_EQ(VTSimSetDeviceVersion(nullptr, "FW:1 FPGA:2.07"), 0);
  ASSERT_EQ(VTSimSetLibraryVersion("1.20"), 0);
  char szVersion[64] = "";
  unsigned int nSize = 3;
  EXPECT_EQ(LS_VT40GetVersionString(m_h, szVersion, &nSize), KLV_ERROR_SIZE_TOO_SMALL);
  EXPECT_EQ(nSize, 25u);
  EXPECT_EQ(LS_VT40GetVersionString(m_h, szVersion, &nSize), 0);
  EXPECT_STREQ(szVersion, "FW:1 FPGA:2.07 SAPI:1.20");
  ASSERT_EQ(VTSimSetDeviceVersion(nullptr, std::string(255, 'v').c_str()), 0);
  char szLong[512] = "";
  nSize = sizeof(szLong);
  EXPECT_EQ(LS_VT40GetVersionString(m_h, szLong, &nSize), 0);
  EXPECT_EQ(std::string(szLong), std::string(255, 'v')) << "never more than 256 bytes";
  ASSERT_EQ(VTSimFailCall("VTScanAPIGetVersion", 1, 1, -777), 0);
  EXPECT_EQ(LS_VT40GetVersionString(m_h, szLong, &nSize), -777);
  char szSerial[KLV_VT40_SERIAL_SIZE];
  EXPECT_EQ(LS_VT40GetSerialNumber(m_h, szSerial), 0);
  EXPECT_STREQ(szSerial, "VT40-AB0001");
}

TEST_F(OpenScanner, TheBuzzerGetsItsValuesAsTheyAre) {
  ASSERT_EQ(LS_VT40Beep(m_h, 300, 100), 0);
  ASSERT_EQ(VTSimFailCall("VTScanAPIBeep", 1, 1, -777), 0);
  EXPECT_EQ(LS_VT40Beep(m_h, 1, 2), 0) << "nobody waits for a beep";
  EXPECT_EQ(Beeps(), Beeps_t({{300, 100}}));
}

TEST_F(OpenScanner, TheDisplayShowsSixteenCharactersALineAndNoMore) {
  std::string sText = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmn";
  EXPECT_EQ(LS_VT40SetDisplayData(m_h, 1, sText.data(), 2), KLV_ERROR_UNSUPPORTED);
  EXPECT_EQ(LS_VT40SetDisplayData(m_h, 0, nullptr, 2), KLV_ERROR_INVALID_PARAMETER);
  for (const unsigned int nSize : {40u, 0u, 17u, 16u}) {
    std::string sShown = sText.substr(0, nSize);
    ASSERT_EQ(LS_VT40SetDisplayData(m_h, 0, sShown.data(), nSize), 0);
    sShown.resize(40, ' ');
    VTSimDisplay o;
    o.nStructSize = sizeof(o);
    ASSERT_EQ(VTSimGetDisplay(nullptr, &o), 0);
    EXPECT_EQ(o.aszLines[0], sShown.substr(0, 16)) << nSize;
    EXPECT_EQ(o.aszLines[1], sShown.substr(16, 16)) << nSize;
    EXPECT_EQ(o.nLost, 0u) << "the display was given its time";
  }
  ASSERT_EQ(VTSimFailCall("VTScanAPIApplyInternalCommand", 3, 1, -777), 0);
  EXPECT_EQ(LS_VT40SetDisplayData(m_h, 0, sText.data(), 2), KLV_ERROR_DISCONNECTED);
}

}  // namespace
