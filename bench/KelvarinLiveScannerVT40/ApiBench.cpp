// What an application waits for: opening a scanner, a preview, a full image.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <vector>

#include "KelvarinLiveScannerVT40.h"
#include "KelvarinVTScanAPI/VTSim.h"

namespace {

void Require(long nError, const char* szWhat) {
  if (nError == 0) return;
  std::fprintf(stderr, "bench_Api: %s: %s (%ld)\n", szWhat, LS_VT40GetErrorDescriptionA(nError), nError);
  std::exit(1);
}

void* OpenFirst() {
  char szSerial[KLV_VT40_SERIAL_SIZE];
  unsigned int nCount = 1;
  void* h = nullptr;
  Require(LS_VT40QueryScanners(szSerial, &nCount), "query");
  Require(LS_VT40OpenScanner(szSerial, &h), "open");
  return h;
}

double ResidentMegabytes() {
  long nTotal = 0;
  long nResident = 0;
  if (std::FILE* pFile = std::fopen("/proc/self/statm", "r")) {
    if (std::fscanf(pFile, "%ld %ld", &nTotal, &nResident) != 2) nResident = 0;
    std::fclose(pFile);
  }
  return static_cast<double>(nResident * sysconf(_SC_PAGESIZE)) / 1e6;
}

void OpenScanner(benchmark::State& oState) {
  for (auto _ : oState) {
    void* h = OpenFirst();
    oState.PauseTiming();
    Require(LS_VT40CloseScanner(&h), "close");
    oState.ResumeTiming();
  }
}

template <typename TFunction>
void Poll(benchmark::State& oState, int nMode, TFunction pfnImage) {
  void* h = OpenFirst();
  std::vector<unsigned char> aImage(1600 * 1600);
  double dScore = 0;
  unsigned char bDone = 0;
  long nResult = 0;
  Require(LS_VT40SetCaptureMode(h, nMode), "mode");
  for (auto _ : oState) Require(pfnImage(h, aImage.data(), &dScore, &bDone, &nResult), "image");
  oState.counters["resident_MB"] = ResidentMegabytes();
  Require(LS_VT40CloseScanner(&h), "close");
}

void PreviewPoll(benchmark::State& oState) {
  Poll(oState, KLV_VT40_CAPTURE_MODE_PREVIEW, LS_VT40GetPreviewImage);
}
void FullPoll(benchmark::State& oState) {
  Poll(oState, KLV_VT40_CAPTURE_MODE_FULL, LS_VT40GetImage);
}
void CaptureOnRequest(benchmark::State& oState) {
  Poll(oState, KLV_VT40_CAPTURE_MODE_PREVIEW, LS_VT40GetImage);
}
void OneShot(benchmark::State& oState) {
  Poll(oState, KLV_VT40_CAPTURE_MODE_OFF, LS_VT40GetImage);
}

BENCHMARK(OpenScanner)->Unit(benchmark::kMillisecond)->UseRealTime()->MeasureProcessCPUTime();
BENCHMARK(PreviewPoll)->Unit(benchmark::kMillisecond)->UseRealTime()->MeasureProcessCPUTime();
BENCHMARK(FullPoll)->Unit(benchmark::kMillisecond)->UseRealTime()->MeasureProcessCPUTime();
BENCHMARK(CaptureOnRequest)->Unit(benchmark::kMillisecond)->UseRealTime()->MeasureProcessCPUTime();
BENCHMARK(OneShot)->Unit(benchmark::kMillisecond)->UseRealTime()->MeasureProcessCPUTime();

}  // namespace

int main(int nArguments, char** ppArguments) {
  benchmark::Initialize(&nArguments, ppArguments);
  Require(VTSimLoadScene("slap-right"), "scene");
  Require(LS_VT40Initialize(nullptr), "initialise");
  benchmark::RunSpecifiedBenchmarks();
  Require(LS_VT40Uninitialize(), "uninitialise");
  return 0;
}
