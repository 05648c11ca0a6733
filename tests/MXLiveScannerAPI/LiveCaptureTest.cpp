// What the exported functions do not show of a capture: each state of the engine, and when it is reported.
#include <atomic>
#include <cstring>
#include <functional>
#include <set>

#include "MXLibraryLoaders/KelvarinVTScanAPIWrapper.h"
#include "MXLiveScannerAPI/VT40LiveCapture.h"
#include "MXLiveScannerAPI/VT40SetupCalibrationData.h"
#include "MXTools/Bitmap.h"
#include "MXTools/Exception.h"
#include "MXVTScanAPI/MXVTScanAPIWrapper.h"
#include "Raised.h"
#include "Seeds.h"
#include "SimulatedScanner.h"

namespace {

using Engine = ClVT40LiveCapture;

/// A scanner whose beeps go to the test, and whose single exposures have ten times their illumination as
/// grey.
class ClTestScanner : public ClMXVTScanAPIWrapper {
 public:
  ClTestScanner() : ClMXVTScanAPIWrapper(nullptr, nullptr) {}
  void Beep(unsigned int, unsigned int) override { fnBeep(); }
  bool GetImage(const tagBITMAPINFOHEADER* pHeader, unsigned char nIllumination, char) override {
    unsigned char* pBytes = reinterpret_cast<unsigned char*>(const_cast<tagBITMAPINFOHEADER*>(pHeader));
    std::memset(pBytes + 40 + 1024, nIllumination * 10, pHeader->biSizeImage);
    return nIllumination != nFailing;
  }

  std::function<void()> fnBeep = [] {};
  int nFailing = -1;
};

/// An engine over the simulated scanner.
class LiveCapture : public testing::Test {
 protected:
  void SetUp() override {
    LoadScene("empty");
    m_oLibrary.OpenLibrary(".", ClKelvarinVTScanAPIWrapper::m_ssLibName);
    ASSERT_EQ(m_oLibrary.VTScanAPIInitialize(nullptr), 0);
    unsigned int nDevice = 0, nCount = 1;
    ASSERT_EQ(m_oLibrary.VTScanAPIQueryDevices(&nDevice, &nCount, ClMXVTScanAPI::eProductVT40), 0);
    ASSERT_EQ(m_oLibrary.VTScanAPICreateHandle(nDevice, &m_hDevice), 0);
    m_oScanner.SetDllWrapper(&m_oLibrary, m_hDevice);
    const std::vector<char> aGeometry = File("GEOCAL"), aBrightness = File("BRGHTCAL"),
                            aGain = File("GAINSET");
    const auto Size = [](const std::vector<char>& a) { return static_cast<unsigned int>(a.size()); };
    m_oSetup.Setup(aGeometry.data(), Size(aGeometry), aBrightness.data(), Size(aBrightness), aGain.data(),
                   Size(aGain));
    m_pEngine = std::make_unique<Engine>();
    m_pEngine->SetScanner(&m_oScanner);
    m_pEngine->SetupCalibrationData(&m_oSetup);
  }

  void TearDown() override {
    VTSimHoldSequences(nullptr, 0);
    m_pEngine.reset();
    if (m_hDevice != nullptr) m_oLibrary.VTScanAPIDestroyHandle(&m_hDevice);
    m_oLibrary.VTScanAPIUninitialize();
    VTSimReset();
  }

  /// Puts the engine before a scene whose sequences are let through one by one.
  void Start(const std::string& sScene, Engine::ECaptureMode eMode) {
    ASSERT_EQ(VTSimHoldSequences(nullptr, 0), 0);
    m_pEngine->SetCaptureMode(Engine::eCaptureModeOff);
    LoadScene(sScene);
    ASSERT_EQ(VTSimHoldSequences(nullptr, 1), 0);
    m_pEngine->SetCaptureMode(eMode);
  }

  ClTestScanner m_oScanner;
  std::unique_ptr<Engine> m_pEngine;
  ClImage m_oImage;
  Engine::ECaptureState m_eState = Engine::eCaptureStateNone;
  double m_dScore = 0.0;

 private:
  std::vector<char> File(const char* szName) {
    unsigned int nSize = 8192;
    std::vector<char> aData(nSize);
    EXPECT_EQ(m_oLibrary.VTScanAPIReadEPROMFile(m_hDevice, szName, aData.data(), &nSize), 0);
    aData.resize(nSize);
    return aData;
  }

  ClKelvarinVTScanAPIWrapper m_oLibrary;
  void* m_hDevice = nullptr;
  ClVT40SetupCalibrationData m_oSetup{"VT40-AB0001", false};
};

TEST_F(LiveCapture, ASwipeToEitherSideIsDistinguishedAndARestingHandIsNone) {
  const std::pair<const char*, Engine::ECaptureState> aScenes[] = {
      {"swipe-left", Engine::eCaptureStateSwipeBack},
      {"swipe-right", Engine::eCaptureStateSwipeForward},
      {"resting-hand", Engine::eCaptureStateNoFinger}};
  int nWrong = 0;
  for (int nSeed = 1; nSeed <= Seeds(); ++nSeed) {
    for (const auto& [szScene, eWanted] : aScenes) {
      ASSERT_NO_FATAL_FAILURE(Start(Seeded(szScene, nSeed), Engine::eCaptureModeSignature));
      ASSERT_EQ(VTSimPassSequences(nullptr, 1), 0);
      // Every third frame.
      std::set<Engine::ECaptureState> aStates;
      while (State().dTime < 1.6) {
        ASSERT_EQ(VTSimPassSequences(nullptr, 3), 0);
        m_pEngine->GetPreviewImage(m_oImage, m_eState, m_dScore);
        aStates.insert(m_pEngine->GetDetectState());
      }
      aStates.insert(Engine::eCaptureStateNoFinger);
      nWrong += aStates != std::set<Engine::ECaptureState>{Engine::eCaptureStateNoFinger, eWanted};
    }
  }
  EXPECT_LE(nWrong * 100, 2 * Seeds());
}

TEST_F(LiveCapture, TheTwoFramesAfterAnAutomaticShotAreNotJudged) {
  ASSERT_NO_FATAL_FAILURE(Start(R"({"scanners": [{"serial": "VT40-AB0001", "fingers": [
      {"print": {"seed": 3}, "touch": 0, "lift": 60, "repeat": 100}]}]})",
                                Engine::eCaptureModeAuto));
  ASSERT_EQ(VTSimAdvance(nullptr, 5.0), 0);
  ASSERT_NO_FATAL_FAILURE(PassUntilShot());
  ASSERT_NO_FATAL_FAILURE(Pass());
  EXPECT_TRUE(WaitFor([&] { return m_pEngine->GetDetectState() == Engine::eCaptureStateDone; }));
  // The finger is gone for a frame and comes back; the other frame was on its way when the shot was decided
  // on.
  ASSERT_EQ(VTSimAdvance(nullptr, 70.0), 0);
  ASSERT_NO_FATAL_FAILURE(Pass());
  ASSERT_EQ(VTSimAdvance(nullptr, 40.0), 0);
  for (int n = 0; n < 6; ++n) {
    ASSERT_NO_FATAL_FAILURE(Pass());
    m_pEngine->GetPreviewImage(m_oImage, m_eState, m_dScore);
    EXPECT_EQ(m_eState, Engine::eCaptureStateDone);
  }
  ASSERT_EQ(VTSimAdvance(nullptr, 60.0), 0);
  ASSERT_NO_FATAL_FAILURE(Pass());
  EXPECT_TRUE(WaitFor([&] { return m_pEngine->GetDetectState() == Engine::eCaptureStateNoFinger; }));
}

TEST_F(LiveCapture, TheEndOfARollIsReportedWithItsFinishedPicture) {
  *m_pEngine->AutoCaptureBeep() = 1;
  *m_pEngine->RolledPostProcess() = 1;
  ASSERT_NO_FATAL_FAILURE(Start(QuickRoll("1000"), Engine::eCaptureModeRoll));
  std::atomic<int> nBeeps{0};
  ClImage oFinished;
  // The beep is the first sign of the end.
  m_oScanner.fnBeep = [&] {
    m_pEngine->GetRollImage(oFinished, m_eState, m_dScore);
    ++nBeeps;
  };
  for (int n = 0; n < 30 && nBeeps == 0; ++n) ASSERT_NO_FATAL_FAILURE(Pass());
  ASSERT_TRUE(WaitFor([&] { return nBeeps == 1; }));
  EXPECT_EQ(m_eState, Engine::eCaptureStateDone);
  ASSERT_NO_FATAL_FAILURE(Pass());
  m_pEngine->GetRollImage(m_oImage, m_eState, m_dScore);
  ASSERT_EQ(oFinished.DataBytes(), m_oImage.DataBytes());
  EXPECT_EQ(std::memcmp(oFinished.Data(), m_oImage.Data(), m_oImage.DataBytes()), 0);
}

TEST_F(LiveCapture, VersionsStandAfterTheirTags) {
  char szBuffer[8] = "kept";
  unsigned int nLength = 0;
  const auto Version = [&](const char* szTold, unsigned int nId, char* szRoom, unsigned int nRoom) {
    EXPECT_EQ(VTSimSetDeviceVersion(nullptr, szTold), 0);
    nLength = nRoom;
    return NumberOf([&] { m_pEngine->GetVersionInfo(nId, szRoom, &nLength); });
  };
  constexpr char cszTold[] = "FW:1.2 FPGA:3 HW:A LIB:7";
  EXPECT_EQ(Version(cszTold, 1, szBuffer, 3), -702);
  EXPECT_EQ(nLength, 4u);
  EXPECT_STREQ(szBuffer, "kept");
  EXPECT_EQ(Version(cszTold, 1, nullptr, 100), -702);
  EXPECT_EQ(nLength, 4u);
  EXPECT_EQ(Version(cszTold, 1, szBuffer, 4), 0) << "exactly the room that is needed";
  EXPECT_EQ(Version(cszTold, 2, szBuffer, sizeof(szBuffer)), 0);
  EXPECT_STREQ(szBuffer, "3");
  EXPECT_EQ(nLength, 2u);
  EXPECT_EQ(Version(cszTold, 4, szBuffer, sizeof(szBuffer)), 0);
  EXPECT_STREQ(szBuffer, "7") << "at the end of the text";
  EXPECT_EQ(Version(cszTold, 5, szBuffer, sizeof(szBuffer)), -44);
  for (const char* szText : {"FW:1.2 HW:A", "F", "", "HW:A FPGA:", "HW:A FPGA:  "})
    EXPECT_EQ(Version(szText, 2, szBuffer, sizeof(szBuffer)), -103) << szText;
}

TEST_F(LiveCapture, TwoExposuresGiveTheSecondLessTheFirst) {
  ClBitmap oFirst, oSecond;
  oFirst.Create(8, 4, 8, 0);
  oSecond.Create(8, 4, 8, 0);
  m_pEngine->CaptureCurrent(oFirst, oSecond, m_oImage, 20, 5);
  EXPECT_EQ(m_oImage.Row<unsigned char>(3)[7], 150);
  m_pEngine->CaptureCurrent(oFirst, oSecond, m_oImage, 5, 20);
  EXPECT_EQ(m_oImage.Row<unsigned char>(3)[7], 0) << "never below black";
  for (const int nFailing : {5, 20}) {
    m_oScanner.nFailing = nFailing;
    EXPECT_EQ(NumberOf([&] { m_pEngine->CaptureCurrent(oFirst, oSecond, m_oImage, 20, 5); }), -60)
        << nFailing;
  }
}

TEST_F(LiveCapture, ADoneThatWasDeliveredIsTakenAndAnotherStateStays) {
  EXPECT_EQ(m_pEngine->GetDetectState(), Engine::eCaptureStateNone) << "nothing was captured yet";
  m_pEngine->SetDetectState(Engine::eCaptureStateDone);
  m_pEngine->TakeDone();
  EXPECT_EQ(m_pEngine->GetDetectState(), Engine::eCaptureStateNoFinger);
  m_pEngine->SetDetectState(Engine::eCaptureStateFinger);
  m_pEngine->TakeDone();
  EXPECT_EQ(m_pEngine->GetDetectState(), Engine::eCaptureStateFinger) << "the next roll has begun";
}

}  // namespace
