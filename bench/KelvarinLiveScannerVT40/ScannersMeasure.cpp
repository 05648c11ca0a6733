// How many scanners a machine serves: several simulated ones in one process, at the pace of the hardware,
// each polled by a thread of its own. No benchmark: what counts is which frames arrive, not what one takes.
//
//     measure_Scanners [SECONDS]
//
// A row for 1, 4 and 8 scanners in preview and in automatic mode, where fingers come, are captured and
// fetched, and go every four seconds. Frames are those of one scanner a second:
//
//   offered    previews that the sensor has time for beside the sequences of captures
//   taken      previews that the library has taken from the sensor; the rest is lost there
//   delivered  those that the application has got; the rest was replaced by a newer one before it came
//
// A capture costs frames by design: its light is shown for 150 ms, and two frames after it are spoiled. The
// last columns say how many processors the process keeps busy, and how many of them make simulated frames.
// Where frames are lost while that is well below what the machine has, other programs kept it busy.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <thread>
#include <vector>

#include "KelvarinLiveScannerVT40.h"
#include "KelvarinVTScanAPI/VTSim.h"

extern "C" {
long VTScanAPIInitialize(void*);
long VTScanAPIUninitialize();
long VTScanAPIQueryDevices(unsigned int*, unsigned int*, unsigned int);
long VTScanAPICreateHandle(unsigned int, void**);
long VTScanAPIDestroyHandle(void**);
long VTScanAPIEnableCapture(void*, int);
long VTScanAPISetCaptureMode(void*, int, unsigned int, unsigned long long*, unsigned int);
long VTScanAPILockRawSequence(void*, void**);
long VTScanAPIReleaseRawSequence(void*, void**);
}

namespace {

constexpr int cnPreviewMode = 35;
constexpr double cdPreviewSeconds = 1.0 / 15;
/// Of each plane in the other modes that captures use.
constexpr double cdCapturePlaneSeconds = 1.0 / 10;

void Require(long nError, const char* szWhat) {
  if (nError == 0) return;
  std::fprintf(stderr, "measure_Scanners: %s: %ld\n", szWhat, nError);
  std::exit(1);
}

std::string Serial(int nScanner) {
  return "VT40-AB000" + std::to_string(nScanner + 1);
}

/// Four fingers on each scanner, of the same prints on all. bReal: at the pace of the hardware; else each
/// frame is there at once.
void LoadScene(int nScanners, bool bReal) {
  std::string sScanners;
  for (int nScanner = 0; nScanner < nScanners; ++nScanner) {
    std::string sFingers;
    for (int n = 0; n < 4; ++n) {
      sFingers += std::string(n == 0 ? "" : ", ") + R"({"print": {"seed": )" + std::to_string(21 + n) +
                  R"(}, "x": )" + std::to_string(14 + 18 * n) +
                  R"(, "y": 40, "touch": 0.5, "lift": 3, "repeat": 4, "settle": {"x": 2, "turn": 3}})";
    }
    sScanners += std::string(nScanner == 0 ? "" : ", ") + R"({"serial": ")" + Serial(nScanner) +
                 R"(", "fingers": [)" + sFingers + "]}";
  }
  const std::string sPacing = bReal ? "real" : "consumer";
  Require(VTSimLoadScene((R"({"pacing": ")" + sPacing + R"(", "scanners": [)" + sScanners + "]}").c_str()),
          VTSimLastError());
}

/// Processor time of the process in seconds.
double ProcessorSeconds() {
  return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

/// What a simulated preview sequence takes while fingers lie on the platen, without the library.
double SimulatorSeconds() {
  constexpr int cnFrames = 60;  // a whole round of the fingers
  LoadScene(1, false);
  Require(VTScanAPIInitialize(nullptr), "initialise");
  unsigned int nId = 0;
  unsigned int nCount = 1;
  void* h = nullptr;
  void* pSequence = nullptr;
  unsigned long long aLights[] = {0, 1};
  Require(VTScanAPIQueryDevices(&nId, &nCount, 17), "query");
  Require(VTScanAPICreateHandle(nId, &h), "open");
  Require(VTScanAPIEnableCapture(h, 1), "capture");
  Require(VTScanAPISetCaptureMode(h, cnPreviewMode, 2, aLights, 2), "mode");
  const auto Frame = [&] {
    Require(VTScanAPILockRawSequence(h, &pSequence), "sequence");
    Require(VTScanAPIReleaseRawSequence(h, &pSequence), "release");
  };
  // The first round draws the prints.
  for (int n = 0; n < cnFrames; ++n) Frame();
  const double dBegin = ProcessorSeconds();
  for (int n = 0; n < cnFrames; ++n) Frame();
  const double dSeconds = (ProcessorSeconds() - dBegin) / cnFrames;
  Require(VTScanAPIDestroyHandle(&h), "close");
  Require(VTScanAPIUninitialize(), "uninitialise");
  return dSeconds;
}

/// An application before one scanner.
struct StClient {
  void Poll() {
    std::vector<unsigned char> aImage(1600 * 1600);
    double dScore = 0;
    unsigned char bDone = 0;
    long nResult = 0;
    while (!bStop) {
      Require(LS_VT40GetPreviewImage(h, aImage.data(), &dScore, &bDone, &nResult), "preview");
      ++nDelivered;
      if (bDone == 0) continue;
      Require(LS_VT40GetImage(h, aImage.data(), &dScore, &bDone, &nResult), "image");
      ++nCaptures;
    }
  }

  void* h = nullptr;
  std::atomic<bool> bStop{false};
  std::atomic<int> nDelivered{0};
  std::atomic<int> nCaptures{0};
};

/// What one scanner has handed out from a sequence on.
struct StTaken {
  int nPreviews = 0;
  double dCaptureSeconds = 0;
};

StTaken TakenFrom(const std::string& sSerial, unsigned long long nFirst) {
  std::vector<VTSimFrame> aFrames(4096);
  unsigned int nCount = static_cast<unsigned int>(aFrames.size());
  Require(VTSimGetFrames(sSerial.c_str(), nFirst, aFrames.data(), &nCount), VTSimLastError());
  StTaken oTaken;
  for (unsigned int n = 0; n < nCount; ++n) {
    if (aFrames[n].nSensorMode == cnPreviewMode && aFrames[n].nPlanes == 2) {
      ++oTaken.nPreviews;
    } else {
      oTaken.dCaptureSeconds += aFrames[n].nPlanes * cdCapturePlaneSeconds;
    }
  }
  return oTaken;
}

unsigned long long Sequences(const std::string& sSerial) {
  VTSimState oState = {};
  oState.nStructSize = sizeof(oState);
  Require(VTSimGetState(sSerial.c_str(), &oState), VTSimLastError());
  return oState.nSequences;
}

void Measure(int nScanners, int nMode, double dSeconds, double dSimulatorSeconds) {
  LoadScene(nScanners, true);
  std::vector<StClient> aClients(static_cast<size_t>(nScanners));
  std::vector<std::thread> aThreads;
  for (int n = 0; n < nScanners; ++n) {
    StClient& oClient = aClients[static_cast<size_t>(n)];
    Require(LS_VT40OpenScanner(Serial(n).c_str(), &oClient.h), "open");
    Require(LS_VT40SetCaptureMode(oClient.h, nMode), "mode");
    aThreads.emplace_back([&oClient] { oClient.Poll(); });
  }
  // The first second has the workers' allocations and the drawing of the prints.
  std::this_thread::sleep_for(std::chrono::seconds(1));
  std::vector<unsigned long long> aFirst;
  for (int n = 0; n < nScanners; ++n) aFirst.push_back(Sequences(Serial(n)));
  for (StClient& oClient : aClients) oClient.nDelivered = oClient.nCaptures = 0;
  const auto oBegin = std::chrono::steady_clock::now();
  const double dProcessor = ProcessorSeconds();
  std::this_thread::sleep_for(std::chrono::duration<double>(dSeconds));
  double dOffered = 0, dTaken = 0, dDelivered = 0, dWorst = 1;
  int nCaptures = 0;
  const double dBusy = ProcessorSeconds() - dProcessor;
  const double dLasted = std::chrono::duration<double>(std::chrono::steady_clock::now() - oBegin).count();
  for (int n = 0; n < nScanners; ++n) {
    StClient& oClient = aClients[static_cast<size_t>(n)];
    const int nDelivered = oClient.nDelivered;
    const StTaken oTaken = TakenFrom(Serial(n), aFirst[static_cast<size_t>(n)]);
    const double dOfferedHere = (dLasted - oTaken.dCaptureSeconds) / cdPreviewSeconds;
    dOffered += dOfferedHere;
    dTaken += oTaken.nPreviews;
    dDelivered += nDelivered;
    dWorst = std::min(dWorst, nDelivered / dOfferedHere);
    nCaptures += oClient.nCaptures;
  }
  const double dEach = nScanners * dLasted;
  std::printf("%8d  %-9s %8.1f %8.1f %9.1f %10.0f %% %8d %10.2f %10.2f\n", nScanners,
              nMode == KLV_VT40_CAPTURE_MODE_AUTO ? "automatic" : "preview", dOffered / dEach, dTaken / dEach,
              dDelivered / dEach, 100 * (1 - dWorst), nCaptures, dBusy / dLasted,
              dTaken * dSimulatorSeconds / dLasted);
  std::fflush(stdout);
  for (StClient& oClient : aClients) oClient.bStop = true;
  for (std::thread& oThread : aThreads) oThread.join();
  for (StClient& oClient : aClients) Require(LS_VT40CloseScanner(&oClient.h), "close");
}

}  // namespace

int main(int nArguments, char** ppArguments) {
  const double dSeconds = nArguments > 1 ? std::atof(ppArguments[1]) : 12.0;
  // The simulator remembers 4096 sequences.
  if (!(dSeconds > 0 && dSeconds <= 200)) Require(1, "seconds: 1 to 200");
  const double dSimulator = SimulatorSeconds();
  std::printf("a simulated preview takes %.2f ms of a processor\n", 1e3 * dSimulator);
  std::printf("%8s  %-9s %8s %8s %9s %12s %8s %10s %10s\n", "scanners", "mode", "offered", "taken",
              "delivered", "lost at most", "captures", "processors", "simulator");
  Require(LS_VT40Initialize(nullptr), "initialise");
  for (const int nMode : {KLV_VT40_CAPTURE_MODE_PREVIEW, KLV_VT40_CAPTURE_MODE_AUTO}) {
    for (const int nScanners : {1, 4, 8}) Measure(nScanners, nMode, dSeconds, dSimulator);
  }
  Require(LS_VT40Uninitialize(), "uninitialise");
  return 0;
}
