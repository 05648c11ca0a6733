// Storms, and rounds of opening and of initialising.
#include "Storm.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <mutex>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "KelvarinVTScanAPI/VTSim.h"
#include "QuickClock.h"
#include "Slot.h"

namespace Reliability {
namespace {

constexpr int cnThreads = 4;
/// 15 seconds become three tenths of one.
constexpr int cnStormClock = 50;
constexpr long cnMostGrowthKilobytes = 256;
/// In fewer rounds than this the allocator is still finding its size.
constexpr uint64_t cnLongRun = 1000;
constexpr long cnMostEarlyGrowthKilobytes = 8192;
constexpr char cszScene[] = R"({"scanners": [
    {"serial": "VT40-AB0001", "fingers": [{"print": {"seed": 3, "width": 12, "height": 14}}]},
    {"serial": "VT40-AB0002", "pen": {"strokes": [
        {"at": 0, "line": "straight", "speed": 60, "points": [[10, 20], [70, 30], [10, 40], [70, 50]]}]}}]})";

class ClFindings {
 public:
  void Expect(bool bHolds, const std::string& sWhat) {
    if (bHolds) return;
    ++m_nFindings;
    std::fprintf(stderr, "finding: %s\n", sWhat.c_str());
  }
  uint64_t Number() const { return m_nFindings; }

 private:
  std::atomic<uint64_t> m_nFindings{0};
};

double SecondsSince(std::chrono::steady_clock::time_point tBegin) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - tBegin).count();
}

/// The image call of a mode, or another that the mode has too.
auto ImageCallOf(int nMode, bool bOther) {
  if (nMode == KLV_VT40_CAPTURE_MODE_ROLL) return LS_VT40GetRollImage;
  const bool bFull = nMode == KLV_VT40_CAPTURE_MODE_OFF || nMode == KLV_VT40_CAPTURE_MODE_FULL;
  return bFull || bOther ? LS_VT40GetImage : LS_VT40GetPreviewImage;
}

/// Two scanners under four threads.
class ClStorm {
 public:
  explicit ClStorm(ClFindings& rFindings) : m_rFindings(rFindings) {
    m_aSlots[0].szSerial = "VT40-AB0001";
    m_aSlots[1].szSerial = "VT40-AB0002";
  }

  void Open() {
    for (StSlot& rSlot : m_aSlots) OpenSlot(rSlot);
  }
  void Close() {
    for (StSlot& rSlot : m_aSlots) CloseSlot(rSlot);
  }

  void Run(uint64_t nSwitches, uint64_t nSeed, double dMostSeconds) {
    m_tEnd =
        std::chrono::steady_clock::now() + std::chrono::duration_cast<std::chrono::steady_clock::duration>(
                                               std::chrono::duration<double>(dMostSeconds));
    std::vector<std::thread> aThreads;
    for (int n = 0; n < cnThreads; ++n)
      aThreads.emplace_back(
          [this, nSwitches, nSeed, n] { Work(nSwitches, nSeed * cnThreads + static_cast<uint64_t>(n)); });
    for (std::thread& rThread : aThreads) rThread.join();
  }

  uint64_t Switches() const { return m_nSwitches; }
  std::string Note() const {
    return std::to_string(cnThreads) + " threads, " + std::to_string(m_nImages) + " images and " +
           std::to_string(m_nMissed) + " that missed mode or time, " + std::to_string(m_nOpened) +
           " openings";
  }

 private:
  void OpenSlot(StSlot& rSlot) {
    const long nOpened = LS_VT40OpenScanner(rSlot.szSerial, &rSlot.h);
    m_rFindings.Expect(nOpened == 0, "an opening answers " + std::to_string(nOpened));
    rSlot.nMode = KLV_VT40_CAPTURE_MODE_OFF;
    ++m_nOpened;
  }
  void CloseSlot(StSlot& rSlot) {
    const long nClosed = LS_VT40CloseScanner(&rSlot.h);
    m_rFindings.Expect(nClosed == 0, "a closing answers " + std::to_string(nClosed));
  }

  void Work(uint64_t nSwitches, uint64_t nSeed) {
    std::mt19937_64 oRandom(nSeed);
    std::vector<unsigned char> aImage(1600 * 1600);
    while (m_nSwitches < nSwitches && std::chrono::steady_clock::now() < m_tEnd) {
      StSlot& rSlot = m_aSlots[static_cast<size_t>(oRandom() % 2)];
      const uint64_t nChoice = oRandom() % 100;
      if (nChoice < 2) {
        const std::unique_lock<std::shared_mutex> oLock(rSlot.oMutex);
        CloseSlot(rSlot);
        OpenSlot(rSlot);
        continue;
      }
      const std::shared_lock<std::shared_mutex> oLock(rSlot.oMutex);
      if (nChoice < 45) {
        Switch(rSlot, static_cast<int>(oRandom() % cnModes));
      } else if (nChoice < 75) {
        Capture(rSlot, oRandom() % 8 == 0, aImage);
      } else {
        Ask(rSlot, oRandom);
      }
    }
  }

  void Switch(StSlot& rSlot, int nMode) {
    const long nSwitched = LS_VT40SetCaptureMode(rSlot.h, nMode);
    m_rFindings.Expect(nSwitched == 0,
                       "a switch to mode " + std::to_string(nMode) + " answers " + std::to_string(nSwitched));
    rSlot.nMode = nMode;
    ++m_nSwitches;
  }

  void Capture(StSlot& rSlot, bool bOther, std::vector<unsigned char>& rImage) {
    double dScore = 0.0;
    unsigned char bDone = 0;
    long nResult = 0;
    const long nNumber = ImageCallOf(rSlot.nMode, bOther)(rSlot.h, rImage.data(), &dScore, &bDone, &nResult);
    ++(nNumber == 0 ? m_nImages : m_nMissed);
    const bool bKnown =
        nNumber == 0 || nNumber == KLV_ERROR_INVALID_STATE || nNumber == KLV_ERROR_DISCONNECTED;
    m_rFindings.Expect(bKnown, "an image call answers " + std::to_string(nNumber));
  }

  void Ask(StSlot& rSlot, std::mt19937_64& rRandom) {
    unsigned int nWidth = 0, nHeight = 0;
    char szText[64];
    unsigned int nSize = sizeof(szText);
    long nNumber = 0;
    switch (rRandom() % 8) {
      case 0:
        nNumber = LS_VT40GetPropertyA(rSlot.h, "dSignatureDetectTime", szText, &nSize);
        break;
      case 1:
        nNumber = LS_VT40SetPropertyLongA(rSlot.h, "nAutoCaptureBeep", static_cast<long>(rRandom() % 2));
        break;
      case 2:
        nNumber = LS_VT40SetPropertyDoubleA(rSlot.h, "dSignatureFilterSigma",
                                            0.5 + static_cast<double>(rRandom() % 4));
        break;
      case 3:
        nNumber = LS_VT40SetLED(rSlot.h, static_cast<unsigned char>(rRandom() % 12), 1);
        break;
      case 4:
        nNumber = LS_VT40GetVersionString(rSlot.h, szText, &nSize);
        break;
      case 5:
        nNumber = LS_VT40GetScannerCondition(rSlot.h, &nWidth, &nHeight);
        break;
      case 6:
        // Only rolls and signatures start afresh.
        LS_VT40SetPropertyLongA(rSlot.h, "nResetImage", 1);
        break;
      default:
        nNumber = LS_VT40GetSignaturePreviewImageSize(rSlot.h, &nWidth, &nHeight);
        break;
    }
    m_rFindings.Expect(nNumber == 0, "a question answers " + std::to_string(nNumber));
  }

  ClFindings& m_rFindings;
  std::array<StSlot, 2> m_aSlots;
  std::chrono::steady_clock::time_point m_tEnd;  ///< set before the threads begin
  std::atomic<uint64_t> m_nSwitches{0};
  std::atomic<uint64_t> m_nImages{0};
  std::atomic<uint64_t> m_nMissed{0};
  std::atomic<uint64_t> m_nOpened{0};
};

void ExpectEqual(ClFindings& rFindings, const StResources& oBefore, const StResources& oAfter) {
  rFindings.Expect(oBefore.nThreads == oAfter.nThreads,
                   std::to_string(oAfter.nThreads - oBefore.nThreads) + " more threads than before");
  rFindings.Expect(oBefore.nFiles == oAfter.nFiles,
                   std::to_string(oAfter.nFiles - oBefore.nFiles) + " more open files than before");
}

/// Rounds with a measurement after a tenth of them and at the end. The memory of sanitized programs grows by
/// what the sanitizer remembers.
template <typename TRound>
StResult Rounds(const std::string& sRow, uint64_t nRounds, const TRound& fnRound) {
  ClFindings oFindings;
  const auto tBegin = std::chrono::steady_clock::now();
  StResources oEarly;
  for (uint64_t n = 0; n < nRounds; ++n) {
    if (n == nRounds / 10) oEarly = StResources::Now();
    fnRound(oFindings);
  }
  const StResources oLate = StResources::Now();
  ExpectEqual(oFindings, oEarly, oLate);
  const long nGrowth = oLate.nKilobytes - oEarly.nKilobytes;
  const bool bPlain = std::string(KLV_SANITIZER_TEXT).empty();
  oFindings.Expect(
      !bPlain || nGrowth <= (nRounds < cnLongRun ? cnMostEarlyGrowthKilobytes : cnMostGrowthKilobytes),
      "memory grew by " + std::to_string(nGrowth) + " kB");
  const std::string sGrowth =
      bPlain ? ", memory grew by " + std::to_string(nGrowth) + " kB from a tenth of the rounds on" : "";
  return {sRow, nRounds, 0, SecondsSince(tBegin), oFindings.Number(), BuildName() + sGrowth, ""};
}

}  // namespace

StResult Storm(uint64_t nSwitches, uint64_t nSeed, double dMostSeconds) {
  ClFindings oFindings;
  SetClockScale(cnStormClock);
  const auto tBegin = std::chrono::steady_clock::now();
  oFindings.Expect(VTSimLoadScene(cszScene) == 0 && LS_VT40Initialize(nullptr) == 0,
                   "the scene can be played");
  ClStorm oStorm(oFindings);
  // What is made once is made before the first count.
  oStorm.Open();
  oStorm.Close();
  const StResources oBefore = StResources::Now();
  oStorm.Open();
  oStorm.Run(nSwitches, nSeed, dMostSeconds);
  oStorm.Close();
  ExpectEqual(oFindings, oBefore, StResources::Now());
  oFindings.Expect(LS_VT40Uninitialize() == 0, "the library ends");
  VTSimReset();
  SetClockScale(1);
  return {"storm",
          oStorm.Switches(),
          nSeed,
          SecondsSince(tBegin),
          oFindings.Number(),
          BuildName() + ", " + oStorm.Note(),
          ""};
}

StResult OpenAndClose(uint64_t nRounds) {
  VTSimLoadScene(cszScene);
  LS_VT40Initialize(nullptr);
  std::vector<unsigned char> aImage(800 * 800);
  const StResult oResult = Rounds("open, three frames, close", nRounds, [&](ClFindings& rFindings) {
    void* h = nullptr;
    rFindings.Expect(LS_VT40OpenScanner("VT40-AB0001", &h) == 0, "the scanner opens");
    rFindings.Expect(LS_VT40SetCaptureMode(h, KLV_VT40_CAPTURE_MODE_PREVIEW) == 0, "the mode is set");
    for (int n = 0; n < 3; ++n) {
      double dScore = 0.0;
      unsigned char bDone = 0;
      long nResult = 0;
      rFindings.Expect(LS_VT40GetPreviewImage(h, aImage.data(), &dScore, &bDone, &nResult) == 0,
                       "a frame comes");
    }
    rFindings.Expect(LS_VT40CloseScanner(&h) == 0, "the scanner closes");
  });
  LS_VT40Uninitialize();
  return oResult;
}

StResult InitializeAndEnd(uint64_t nRounds) {
  VTSimLoadScene(cszScene);
  return Rounds("initialise and end", nRounds, [](ClFindings& rFindings) {
    rFindings.Expect(LS_VT40Initialize(nullptr) == 0, "the library is initialised");
    rFindings.Expect(LS_VT40Uninitialize() == 0, "the library ends");
  });
}

}  // namespace Reliability
