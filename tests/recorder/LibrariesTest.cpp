// Recorder and player as applications load them: the same answers with a recorder as without, and from its
// recording.
#include <dlfcn.h>
#include <gmock/gmock.h>

#include <chrono>

#include "TemporaryDirectory.h"
#include "format/RecordingReader.h"
#include "record/RealLibrary.h"

using namespace Recording;

namespace {

constexpr char cszScene[] =
    R"({"seed": 4, "scanners": [{"fingers": [{"print": {"seed": 2}, "x": 40, "y": 40}]}],
  "faults": [{"call": "VTScanAPISetVSYNC", "first": 2, "repeat": 1, "result": -101}]})";

uint64_t DigestOf(const void* p, size_t nBytes) {
  uint64_t nDigest = 14695981039346656037U;
  for (size_t i = 0; i < nBytes; ++i)
    nDigest = (nDigest ^ static_cast<const uint8_t*>(p)[i]) * 1099511628211U;
  return nDigest;
}

/// Calls everything that an application may, and keeps each answer.
class ClApplication {
 public:
  explicit ClApplication(void* pLibrary) { m_oScan.Bind(pLibrary); }

  /// fnBeforeThird is run before the third sequence is asked for.
  std::vector<std::string> Run(const std::function<void()>& fnBeforeThird) {
    Note("initialize", m_oScan.VTScanAPIInitialize(nullptr));
    Open();
    Ask();
    SetUp();
    for (int n = 0; n < 4; ++n) {
      if (n == 2) fnBeforeThird();
      const auto oBegin = std::chrono::steady_clock::now();
      Sequence();
      if (n == 2) m_oThird = std::chrono::steady_clock::now() - oBegin;
    }
    Images();
    Note("off", m_oScan.VTScanAPIEnableCapture(m_hDevice, 0));
    Note("destroy", m_oScan.VTScanAPIDestroyHandle(&m_hDevice));
    Note("destroyed", m_hDevice == nullptr ? 0 : 1);
    Note("uninitialize", m_oScan.VTScanAPIUninitialize());
    return std::move(m_aNotes);
  }
  std::chrono::steady_clock::duration ThirdSequence() const { return m_oThird; }

 private:
  void Note(const std::string& sWhat, int64_t n) { m_aNotes.push_back(sWhat + " " + std::to_string(n)); }
  void NoteText(const char* szWhat, long nResult, const std::string& sText) {
    m_aNotes.push_back(std::string(szWhat) + " " + std::to_string(nResult) + " \"" + sText + "\"");
  }

  void Open() {
    unsigned int aIds[8] = {}, nCount = 0;
    Note("count", m_oScan.VTScanAPIQueryDevices(nullptr, &nCount, 17));
    Note("of", nCount);
    nCount = 8;
    Note("query", m_oScan.VTScanAPIQueryDevices(aIds, &nCount, 17));
    Note("other product", m_oScan.VTScanAPIQueryDevices(aIds + 1, &nCount, 16));
    Note("of", nCount);
    char szSerial[40] = "";
    unsigned int nSize = sizeof szSerial;
    const long nSerial = m_oScan.VTScanAPIGetDeviceSerial(aIds[0], szSerial, &nSize);
    NoteText("serial", nSerial, szSerial);
    Note("create", m_oScan.VTScanAPICreateHandle(aIds[0], &m_hDevice));
  }

  void Ask() {
    char szText[300] = "";
    wchar_t wszText[300] = L"";
    unsigned int nSize = 2;
    Note("version", m_oScan.VTScanAPIGetVersion(m_hDevice, szText, &nSize));
    Note("needs", nSize);
    nSize = 300;
    const long nVersion = m_oScan.VTScanAPIGetVersion(m_hDevice, szText, &nSize);
    NoteText("version", nVersion, szText);
    nSize = 300;
    const long nWide = m_oScan.VTScanAPIGetPropertyW(m_hDevice, L"Version", wszText, &nSize);
    NoteText("wide", nWide, std::string(wszText, wszText + std::wcslen(wszText)));
    Note("unknown", m_oScan.VTScanAPIGetPropertyA(m_hDevice, "none", szText, &nSize));
    Note("read-only", m_oScan.VTScanAPISetPropertyDoubleA(m_hDevice, "FrameRate", 1.5));
    long nPowered = 0;
    int nPlugged = 0;
    Note("powered", m_oScan.VTScanAPIGetPropertyLongA(m_hDevice, "USBPowered", &nPowered) + 10 * nPowered);
    Note("plugged", m_oScan.VTScanAPIGetPlugStatus(m_hDevice, &nPlugged) + 10 * nPlugged);
    nSize = 0;
    m_oScan.VTScanAPIReadEPROMFile(m_hDevice, "BRGHTCAL", nullptr, &nSize);
    std::vector<uint8_t> aBlock(nSize + 5U);
    nSize += 5;
    Note("block", m_oScan.VTScanAPIReadEPROMFile(m_hDevice, "BRGHTCAL", aBlock.data(), &nSize));
    Note("holds", static_cast<int64_t>(DigestOf(aBlock.data(), nSize)));
    NoteText("text", 0, m_oScan.VTScanAPIGetErrorDescriptionA(-60));
    char cNone = 0;
    Note("no device", m_oScan.VTScanAPIGetDeviceIndex(&cNone, &nSize));
  }

  void SetUp() {
    unsigned long long aLights[2] = {0, 1};
    unsigned int nWidth = 0, nHeight = 0;
    for (int n = 0; n < 3; ++n) Note("exposure", m_oScan.VTScanAPISetVSYNC(m_hDevice, 300));
    Note("bad mode", m_oScan.VTScanAPISetCaptureMode(m_hDevice, 99, 2, aLights, 2));
    Note("no resolution", m_oScan.VTScanAPIGetResolution(m_hDevice, &nWidth, &nHeight));
    Note("mode", m_oScan.VTScanAPISetCaptureMode(m_hDevice, 6, 2, aLights, 2));
    Note("resolution", m_oScan.VTScanAPIGetResolution(m_hDevice, &nWidth, &nHeight));
    Note("pixels", nWidth * 10000 + nHeight);
    Note("on", m_oScan.VTScanAPIEnableCapture(m_hDevice, 1));
  }

  void Sequence() {
    void* pSequence = nullptr;
    Note("sequence", m_oScan.VTScanAPILockRawSequence(m_hDevice, &pSequence));
    Note("shows", pSequence != nullptr ? static_cast<int64_t>(DigestOf(pSequence, 2 * 960 * 680)) : 0);
    Note("release", m_oScan.VTScanAPIReleaseRawSequence(m_hDevice, &pSequence));
  }

  void Images() {
    std::vector<uint8_t> aImage(40 + 1024 + 960 * 680);
    tagBITMAPINFOHEADER oHeader{40, 960, 680, 1, 8, 0, 0, 0, 0, 0, 0};
    std::memcpy(aImage.data(), &oHeader, sizeof oHeader);
    Note("image", m_oScan.VTScanAPIGetImageEx(
                      m_hDevice, reinterpret_cast<const tagBITMAPINFOHEADER*>(aImage.data()), 1));
    Note("shows", static_cast<int64_t>(DigestOf(aImage.data(), aImage.size())));
    std::vector<uint8_t> aSequence(2 * 960 * 680);
    Note("copy", m_oScan.VTScanAPIGetImageSequence(m_hDevice, aSequence.data(), 2 * 960 * 680, 0));
    Note("shows", static_cast<int64_t>(DigestOf(aSequence.data(), aSequence.size())));
  }

  StScanFunctions m_oScan;
  void* m_hDevice = nullptr;
  std::vector<std::string> m_aNotes;
  std::chrono::steady_clock::duration m_oThird{};
};

void* Load(const std::string& sFolder) {
  void* pLibrary = dlopen((sFolder + "/" + cszScanLibrary).c_str(), RTLD_NOW | RTLD_LOCAL);
  EXPECT_NE(pLibrary, nullptr) << dlerror();
  return pLibrary;
}

template <typename TFunction>
TFunction* FunctionOf(void* pLibrary, const char* szName) {
  return reinterpret_cast<TFunction*>(dlsym(pLibrary, szName));
}

}  // namespace

TEST(Libraries, ARecorderChangesNoAnswerAndAReplayGivesTheSameLateFramesIncluded) {
  const ClTemporaryDirectory oFolder;
  const std::string sFile = oFolder.Path("a.vtrec");
  setenv("KELVARIN_VT40_RECORD_FILE", sFile.c_str(), 1);
  setenv("KELVARIN_VT40_RECORD_FROM", SIMULATOR_FOLDER, 1);
  setenv("KELVARIN_VT40_RECORD_WAIT", "1", 1);
  void* pSimulator = Load(SIMULATOR_FOLDER);
  void* pRecorder = Load(RECORDER_FOLDER);
  const auto pfnLoadScene = FunctionOf<long(const char*)>(pSimulator, "VTSimLoadScene");
  const auto pfnDelay = FunctionOf<long(const char*, unsigned int)>(pSimulator, "VTSimDelaySequence");
  ASSERT_TRUE(pfnLoadScene != nullptr && pfnDelay != nullptr);
  const auto Delay = [&] { ASSERT_EQ(pfnDelay(nullptr, 400), 0); };

  ASSERT_EQ(pfnLoadScene(cszScene), 0);
  const std::vector<std::string> aPlain = ClApplication(pSimulator).Run(Delay);
  ASSERT_EQ(pfnLoadScene(cszScene), 0);
  EXPECT_EQ(ClApplication(pRecorder).Run(Delay), aPlain);
  EXPECT_EQ(FunctionOf<int()>(pRecorder, "VTRecIsSimulated")(), 1);

  setenv("KELVARIN_VT40_REPLAY_FILE", sFile.c_str(), 1);
  ClApplication oReplay(Load(PLAYER_FOLDER));
  EXPECT_EQ(oReplay.Run([] {}), aPlain);
  EXPECT_GE(oReplay.ThirdSequence(), std::chrono::milliseconds(350));
  const ClRecording oRecording(sFile);
  EXPECT_TRUE(oRecording.IsSimulated());
  EXPECT_EQ(oRecording.Damage(), "");
}
