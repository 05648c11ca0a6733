// Hands on the signature pad, as the capture engine judges them. The exported functions do not tell swipes.
#include <gtest/gtest.h>

#include "KelvarinVTScanAPI/VTSim.h"
#include "MXLibraryLoaders/KelvarinVTScanAPIWrapper.h"
#include "MXLiveScannerAPI/VT40LiveCapture.h"
#include "MXLiveScannerAPI/VT40SetupCalibrationData.h"
#include "MXVTScanAPI/MXVTScanAPIWrapper.h"
#include "Seeds.h"

namespace {

using Engine = ClVT40LiveCapture;

/// An engine over the simulated scanner.
class Swipe : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(VTSimLoadScene("empty"), 0);
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

  /// How often three frames of the scene, until a moment of it, ended with a swipe to either side.
  void Watch(const std::string& sScene, double dSeconds) {
    ASSERT_EQ(VTSimHoldSequences(nullptr, 0), 0);
    m_pEngine->SetCaptureMode(Engine::eCaptureModeOff);
    ASSERT_EQ(VTSimLoadScene(sScene.c_str()), 0) << VTSimLastError();
    ASSERT_EQ(VTSimHoldSequences(nullptr, 1), 0);
    m_pEngine->SetCaptureMode(Engine::eCaptureModeSignature);
    ASSERT_EQ(VTSimPassSequences(nullptr, 1), 0);
    m_nBack = m_nForward = 0;
    VTSimState oState = {};
    oState.nStructSize = sizeof(oState);
    for (; VTSimGetState(nullptr, &oState) == 0 && oState.dTime < dSeconds;) {
      ASSERT_EQ(VTSimPassSequences(nullptr, 3), 0);
      Engine::ECaptureState eState;
      double dScore;
      m_pEngine->GetPreviewImage(m_oImage, eState, dScore);
      m_nBack += m_pEngine->GetDetectState() == Engine::eCaptureStateSwipeBack;
      m_nForward += m_pEngine->GetDetectState() == Engine::eCaptureStateSwipeForward;
    }
  }

  int m_nBack = 0;
  int m_nForward = 0;

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
  ClMXVTScanAPIWrapper m_oScanner{nullptr, nullptr};
  ClVT40SetupCalibrationData m_oSetup{"VT40-AB0001", false};
  std::unique_ptr<Engine> m_pEngine;
  ClImage m_oImage;
};

TEST_F(Swipe, ToEitherSideIsToldApartAndARestingHandIsNone) {
  int nWrong = 0;
  for (int nSeed = 1; nSeed <= Seeds(); ++nSeed) {
    ASSERT_NO_FATAL_FAILURE(Watch(Seeded("swipe-left", nSeed), 1.5));
    nWrong += m_nBack == 0 || m_nForward != 0;
    ASSERT_NO_FATAL_FAILURE(Watch(Seeded("swipe-right", nSeed), 1.5));
    nWrong += m_nForward == 0 || m_nBack != 0;
    ASSERT_NO_FATAL_FAILURE(Watch(Seeded("resting-hand", nSeed), 2.0));
    EXPECT_EQ(m_nBack + m_nForward, 0) << nSeed;
  }
  EXPECT_LE(nWrong * 100, 2 * Seeds());
}

}  // namespace
