// The library's life: initialisation, versions, listing, opening and closing.
#include <atomic>
#include <cstring>
#include <thread>

#include "ApiFixture.h"

namespace {

TEST(Library, AnswersWhatNeedsNoInitialisation) {
  char szVersion[32] = "";
  unsigned int nSize = 3;
  EXPECT_EQ(LS_VT40GetVersionA(szVersion, &nSize), KLV_ERROR_BUFFER_TOO_SMALL);
  EXPECT_EQ(nSize, 11u);
  EXPECT_EQ(LS_VT40GetVersionA(nullptr, &nSize), 0) << "asks for the size";
  EXPECT_EQ(LS_VT40GetVersionA(szVersion, &nSize), 0) << "exactly the room that is needed";
  EXPECT_STREQ(szVersion, "1.5.1421.5");
  EXPECT_EQ(LS_VT40CompatibilityCheck("2.0"), 0);
  EXPECT_EQ(LS_VT40CompatibilityCheck("17.3"), 0);
  EXPECT_EQ(LS_VT40CompatibilityCheck("1.9"), KLV_ERROR_UNSUPPORTED);
  EXPECT_EQ(LS_VT40CompatibilityCheck("-1.9"), 0) << "compared without sign";
  EXPECT_EQ(LS_VT40CompatibilityCheck("2"), KLV_ERROR_INVALID_PARAMETER);
  EXPECT_STREQ(LS_VT40GetErrorDescriptionA(0), "No errors occurred.");
  EXPECT_STREQ(LS_VT40GetErrorDescriptionA(12345), "Unknown error code.");
  EXPECT_STREQ(LS_VT40GetErrorDescriptionW(-42), L"The handle parameter is set to NULL.");
}

TEST(Library, RefusesScannersBeforeInitialisationAndWhenTheScanLibraryDoesNotStart) {
  for (const long nStart : {0L, -777L}) {
    if (nStart != 0) {
      ASSERT_EQ(VTSimFailCall("VTScanAPIInitialize", 1, 1, nStart), 0);
      EXPECT_EQ(LS_VT40Initialize(nullptr), nStart);
    }
    unsigned int nCount = 5;
    char aSerials[5 * KLV_VT40_SERIAL_SIZE];
    void* h = nullptr;
    EXPECT_EQ(LS_VT40QueryScanners(aSerials, &nCount), KLV_ERROR_NOT_INITIALIZED);
    EXPECT_EQ(nCount, 0u);
    EXPECT_EQ(LS_VT40OpenScanner("VT40-AB0001", &h), KLV_ERROR_NOT_INITIALIZED);
    EXPECT_EQ(LS_VT40OpenScanner(nullptr, &h), KLV_ERROR_NOT_INITIALIZED);
    EXPECT_EQ(LS_VT40CloseScanner(&h), KLV_ERROR_NOT_INITIALIZED);
    EXPECT_EQ(LS_VT40Uninitialize(), KLV_ERROR_NOT_INITIALIZED);
  }
  VTSimReset();
}

TEST_F(Api, ListsSerialsInCellsAndNegotiatesTheirNumber) {
  LoadScene(
      R"({"scanners": [{"serial": "VT40-AB0001"}, {"serial": "VT40-AC0123456"}, {"serial": "S", "product": 16}]})");
  unsigned int nCount = 0;
  EXPECT_EQ(LS_VT40QueryScanners(nullptr, &nCount), KLV_ERROR_SIZE_TOO_SMALL);
  EXPECT_EQ(nCount, 2u) << "scanners of another product are not listed";
  char aCells[2 * KLV_VT40_SERIAL_SIZE];
  std::memset(aCells, 'x', sizeof(aCells));
  nCount = 1;
  EXPECT_EQ(LS_VT40QueryScanners(aCells, &nCount), KLV_ERROR_SIZE_TOO_SMALL);
  EXPECT_EQ(nCount, 2u);
  EXPECT_EQ(aCells[0], 'x');
  EXPECT_EQ(LS_VT40QueryScanners(aCells, &nCount), 0);
  EXPECT_STREQ(aCells, "VT40-AB0001");
  EXPECT_STREQ(aCells + KLV_VT40_SERIAL_SIZE, "VT40-AC0123456");
  ASSERT_EQ(VTSimFailCall("VTScanAPIGetDeviceSerial", 2, 1, -60), 0);
  EXPECT_EQ(LS_VT40QueryScanners(aCells, &nCount), -101);
  ASSERT_EQ(VTSimFailCall("VTScanAPIQueryDevices", 1, 1, -778), 0);
  EXPECT_EQ(LS_VT40QueryScanners(aCells, &nCount), -778);
  EXPECT_EQ(nCount, 0u);
  LoadScene(R"({"scanners": []})");
  EXPECT_EQ(LS_VT40QueryScanners(nullptr, &nCount), 0);
  EXPECT_EQ(nCount, 0u);
}

TEST_F(Api, OpensTheNamedScannerAndNoOther) {
  LoadScene(R"({"scanners": [{"serial": "VT40-AB0001"}, {"serial": "VT40-AC0002"}]})");
  m_h = &m_h;
  EXPECT_EQ(Open("VT40-AB000"), KLV_ERROR_DISCONNECTED);
  EXPECT_EQ(LS_VT40OpenScanner("VT40-AB0001", nullptr), KLV_ERROR_BAD_POINTER);
  m_h = nullptr;
  ASSERT_EQ(VTSimFailCall("VTScanAPIGetDeviceSerial", 1, 1, -60), 0);
  EXPECT_EQ(Open("VT40-AC0002"), 0) << "a device whose serial cannot be read is passed over";
  char szSerial[KLV_VT40_SERIAL_SIZE];
  EXPECT_EQ(LS_VT40GetSerialNumber(m_h, szSerial), 0);
  EXPECT_STREQ(szSerial, "VT40-AC0002");
  void* hSecond = nullptr;
  EXPECT_EQ(LS_VT40OpenScanner("VT40-AC0002", &hSecond), KLV_ERROR_DEVICE_OPEN_FAIL);
  EXPECT_EQ(hSecond, nullptr);
  ASSERT_EQ(VTSimFailCall("VTScanAPIQueryDevices", 1, 1, -778), 0);
  EXPECT_EQ(LS_VT40OpenScanner("VT40-AB0001", &hSecond), -101) << "the devices cannot be listed";
  EXPECT_EQ(LS_VT40OpenScanner("VT40-AB0001", &hSecond), 0);
  EXPECT_EQ(LS_VT40CloseScanner(&hSecond), 0);
}

TEST_F(OpenScanner, AClosedHandleIsNullAndItsCopyIsRecognised) {
  void* hCopy = m_h;
  EXPECT_EQ(LS_VT40CloseScanner(&m_h), 0);
  EXPECT_EQ(m_h, nullptr);
  EXPECT_EQ(LS_VT40CloseScanner(&m_h), KLV_ERROR_NO_HANDLE);
  EXPECT_EQ(LS_VT40CloseScanner(&hCopy), KLV_ERROR_INVALID_HANDLE);
  EXPECT_EQ(State().bOpen, 0);
  EXPECT_EQ(Open(), 0);
}

TEST_F(OpenScanner, ACloseThatTheDeviceRefusesIsReportedAndFinishedByTheNext) {
  long nValue = 0;
  EXPECT_EQ(LS_VT40GetPropertyLongA(m_h, "nAutoCaptureBeep", &nValue), 0);
  ASSERT_EQ(VTSimFailCall("VTScanAPIDestroyHandle", 1, 1, -779), 0);
  EXPECT_EQ(LS_VT40CloseScanner(&m_h), -779);
  ASSERT_NE(m_h, nullptr);
  unsigned int nWidth = 0;
  unsigned int nHeight = 0;
  EXPECT_EQ(LS_VT40GetImageSize(m_h, &nWidth, &nHeight), KLV_ERROR_NOT_INITIALIZED);
  EXPECT_EQ(LS_VT40SetCaptureMode(m_h, KLV_VT40_CAPTURE_MODE_PREVIEW), KLV_ERROR_NOT_INITIALIZED);
  EXPECT_EQ(LS_VT40Beep(m_h, 1, 2), KLV_ERROR_NOT_INITIALIZED);
  EXPECT_EQ(LS_VT40GetPropertyLongA(m_h, "nAutoCaptureBeep", &nValue), KLV_ERROR_NOT_INITIALIZED);
  EXPECT_EQ(LS_VT40CloseScanner(&m_h), 0);
  EXPECT_EQ(m_h, nullptr);
}

TEST_F(OpenScanner, SurvivesTheLibraryAndIsClosedAfterItsReturn) {
  ASSERT_EQ(LS_VT40SetCaptureMode(m_h, KLV_VT40_CAPTURE_MODE_PREVIEW), 0);
  ASSERT_EQ(LS_VT40Uninitialize(), 0);
  EXPECT_EQ(LS_VT40CloseScanner(&m_h), KLV_ERROR_NOT_INITIALIZED);
  ASSERT_EQ(LS_VT40Initialize(nullptr), 0);
  EXPECT_EQ(LS_VT40CloseScanner(&m_h), 0);
  EXPECT_EQ(m_h, nullptr);
  EXPECT_EQ(Open(), 0);
}

TEST_F(Api, CallsKeepTheScanLibraryThatAnotherThreadGivesUpMeanwhile) {
  constexpr unsigned int cnScanners = 100;
  std::string sScanners;
  for (unsigned int n = 0; n < cnScanners; ++n)
    sScanners += (n == 0 ? "" : ",") + (R"({"serial": "VT40-AB)" + std::to_string(1000 + n)) + "\"}";
  LoadScene(R"({"scanners": [)" + sScanners + "]}");
  std::atomic<bool> bEnded{false};
  std::atomic<int> nListed{0};
  std::vector<std::thread> aThreads;
  for (int n = 0; n < 2; ++n) {
    aThreads.emplace_back([&] {
      std::vector<char> aCells(cnScanners * KLV_VT40_SERIAL_SIZE);
      while (!bEnded) {
        unsigned int nCount = cnScanners;
        void* h = nullptr;
        const long nQuery = LS_VT40QueryScanners(aCells.data(), &nCount);
        const long nOpen = LS_VT40OpenScanner("VT40-AB0001", &h);
        EXPECT_TRUE(nQuery == 0 || nQuery == KLV_ERROR_NOT_INITIALIZED) << nQuery;
        EXPECT_TRUE(nOpen == KLV_ERROR_DISCONNECTED || nOpen == KLV_ERROR_NOT_INITIALIZED) << nOpen;
        if (nQuery == 0) ++nListed;
      }
    });
  }
  for (int n = 0; n < 5000 || nListed < 2000; ++n) {
    EXPECT_EQ(LS_VT40Uninitialize(), 0);
    EXPECT_EQ(LS_VT40Initialize(nullptr), 0);
  }
  bEnded = true;
  for (std::thread& oThread : aThreads) oThread.join();
}

TEST_F(Api, InitialisationsFromManyThreadsCountUpAndDown) {
  const auto CountUpAndDown = [] {
    for (int n = 0; n < 500; ++n) {
      EXPECT_EQ(LS_VT40Initialize(nullptr), 0);
      EXPECT_EQ(LS_VT40Uninitialize(), 0);
    }
  };
  std::thread oFirst(CountUpAndDown), oSecond(CountUpAndDown);
  oFirst.join();
  oSecond.join();
  EXPECT_EQ(LS_VT40Uninitialize(), 0);
  EXPECT_EQ(LS_VT40Uninitialize(), KLV_ERROR_NOT_INITIALIZED);
}

}  // namespace
