// Version texts and the two-exposure capture, which every engine has alike, on a scanner of the test's own.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "MXLiveScannerAPI/VTLiveCaptureBase.h"
#include "MXTools/Bitmap.h"
#include "MXTools/Exception.h"
#include "MXVTScanAPI/MXVTScanAPIWrapper.h"
#include "Raised.h"

namespace {

/// Tells a version text, and paints an exposure with ten times its illumination.
class ClTestScanner : public ClMXVTScanAPIWrapper {
 public:
  ClTestScanner() : ClMXVTScanAPIWrapper(nullptr, nullptr) {}
  bool GetVersion(char* pszVersion, unsigned int* pnSize) override {
    std::strncpy(pszVersion, sVersion.c_str(), *pnSize);
    *pnSize = static_cast<unsigned int>(sVersion.size()) + 1;
    return true;
  }
  bool GetImage(const tagBITMAPINFOHEADER* pHeader, unsigned char nArg, char) override {
    if (nArg == nFailing) return false;
    unsigned char* pPixels =
        reinterpret_cast<unsigned char*>(const_cast<tagBITMAPINFOHEADER*>(pHeader)) + 40 + 1024;
    std::memset(pPixels, nArg * 10, pHeader->biSizeImage);
    return true;
  }

  std::string sVersion = "FW:1.2 FPGA:3 HW:A LIB:7";
  int nFailing = -1;
};

class ClTestEngine : public ClVTLiveCaptureBase {
 public:
  void SetupCalibrationData(ClVTSetupCalibrationDataBase*) override {}
  void Reset(bool) override {}
  void Capture() override {}
  void GetImage(ClImage&, ECaptureState&, double&) override {}
  void GetPreviewImage(ClImage&, ECaptureState&, double&) override {}
  void GetRollImage(ClImage&, ECaptureState&, double&) override {}
  void SetDisplayData(unsigned int, void*, unsigned int) override {}
  void SetCaptureMode(ECaptureMode) override {}
};

class LiveCaptureBase : public testing::Test {
 protected:
  LiveCaptureBase() { m_oEngine.SetScanner(&m_oScanner); }

  long Version(unsigned int nId, char* szBuffer, unsigned int* pnLength) {
    return NumberOf([&] { m_oEngine.GetVersionInfo(nId, szBuffer, pnLength); });
  }

  ClTestScanner m_oScanner;
  ClTestEngine m_oEngine;
};

TEST_F(LiveCaptureBase, VersionsStandBehindTheirTags) {
  char szBuffer[8] = "";
  unsigned int nLength = sizeof(szBuffer);
  EXPECT_EQ(Version(2, szBuffer, &nLength), 0);
  EXPECT_STREQ(szBuffer, "3");
  EXPECT_EQ(nLength, 2u);
  nLength = sizeof(szBuffer);
  EXPECT_EQ(Version(4, szBuffer, &nLength), 0);
  EXPECT_STREQ(szBuffer, "7") << "at the end of the text";
}

TEST_F(LiveCaptureBase, AVersionTellsItsSizeWhenTheRoomIsTooSmall) {
  char szBuffer[8] = "kept";
  unsigned int nLength = 3;
  EXPECT_EQ(Version(1, szBuffer, &nLength), -702);
  EXPECT_EQ(nLength, 4u);
  EXPECT_STREQ(szBuffer, "kept");
  nLength = 100;
  EXPECT_EQ(Version(1, nullptr, &nLength), -702);
  EXPECT_EQ(nLength, 4u);
  EXPECT_EQ(Version(1, szBuffer, &nLength), 0) << "exactly the room that is needed";
}

TEST_F(LiveCaptureBase, AVersionThatIsNotToldIsMissedAndAnotherIdentifierRefused) {
  char szBuffer[8];
  unsigned int nLength = sizeof(szBuffer);
  for (const char* szText : {"FW:1.2 HW:A", "F", "", "HW:A FPGA:", "HW:A FPGA:  "}) {
    m_oScanner.sVersion = szText;
    EXPECT_EQ(Version(2, szBuffer, &nLength), -103) << szText;
  }
  EXPECT_EQ(Version(5, szBuffer, &nLength), -44);
}

TEST_F(LiveCaptureBase, TwoExposuresGiveTheSecondLessTheFirst) {
  ClBitmap oFirst;
  ClBitmap oSecond;
  oFirst.Create(8, 4, 8, 0);
  oSecond.Create(8, 4, 8, 0);
  ClImage oResult;
  m_oEngine.CaptureCurrent(oFirst, oSecond, oResult, 20, 5);
  EXPECT_EQ(oResult.Row<unsigned char>(3)[7], 150);
  m_oEngine.CaptureCurrent(oFirst, oSecond, oResult, 5, 20);
  EXPECT_EQ(oResult.Row<unsigned char>(3)[7], 0) << "never below black";
  for (const int nFailing : {5, 20}) {
    m_oScanner.nFailing = nFailing;
    EXPECT_EQ(NumberOf([&] { m_oEngine.CaptureCurrent(oFirst, oSecond, oResult, 20, 5); }), -60) << nFailing;
  }
}

TEST_F(LiveCaptureBase, ADoneThatWasDeliveredIsTakenAndAnotherStateStays) {
  using Engine = ClVTLiveCaptureBase;
  EXPECT_EQ(m_oEngine.GetDetectState(), Engine::eCaptureStateNone) << "nothing was captured yet";
  m_oEngine.SetDetectState(Engine::eCaptureStateDone);
  EXPECT_EQ(m_oEngine.GetDetectState(), Engine::eCaptureStateDone);
  m_oEngine.TakeDone();
  EXPECT_EQ(m_oEngine.GetDetectState(), Engine::eCaptureStateNoFinger);
  m_oEngine.SetDetectState(Engine::eCaptureStateFinger);
  m_oEngine.TakeDone();
  EXPECT_EQ(m_oEngine.GetDetectState(), Engine::eCaptureStateFinger) << "the next roll has begun";
}

}  // namespace
