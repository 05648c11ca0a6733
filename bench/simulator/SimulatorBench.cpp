// What the simulated scanner costs: it must never be what a measurement of the host waits for.
#include <benchmark/benchmark.h>

#include "scene/PrintGenerator.h"
#include "scene/SceneReader.h"
#include "sensor/Sensor.h"

namespace {

using namespace Simulator;

struct ClSetUp {
  ClSetUp(const char* szScene, int nMode, double dExposure)
      : oSensor(FindScene(szScene).aScanners[0], 1), oSettings(Make(oSensor, nMode, dExposure)) {
    aBytes.resize(oSettings.PlaneBytes() * oSettings.aMasks.size());
  }

  static ClSensorSettings Make(const ClSensor& oSensor, int nMode, double dExposure) {
    ClSensorSettings o;
    o.pMode = FindSensorMode(nMode);
    o.nExposure = static_cast<unsigned>(oSensor.NominalExposure() * dExposure);
    o.anGain = oSensor.NominalGain();
    o.aMasks = {0, 1};
    return o;
  }

  ClSensor oSensor;
  ClSensorSettings oSettings;
  std::vector<uint8_t> aBytes;
};

/// A sequence of a still scene; the first one, which draws it, isn't counted.
void StillSequence(benchmark::State& oState, int nMode, double dExposure) {
  ClSetUp o("slap-right", nMode, dExposure);
  uint64_t nSequence = 0;
  o.oSensor.Render(o.oSettings, 0.0, nSequence++, o.aBytes.data());
  for (auto _ : oState) o.oSensor.Render(o.oSettings, 0.0, nSequence++, o.aBytes.data());
  oState.SetItemsProcessed(oState.iterations());
}

/// A sequence after the scene has changed: it is drawn and seen through the optics anew.
void ChangedSequence(benchmark::State& oState, int nMode, double dExposure) {
  ClSetUp o("slap-right", nMode, dExposure);
  ClScannerDescription oScanner = FindScene("slap-right").aScanners[0];
  for (ClFingerDescription& oFinger : oScanner.aFingers) oFinger.dTouch = 0.0;
  o.oSensor.SetScene(oScanner, 1);
  uint64_t nSequence = 0;
  // While fingers come down each of these moments shows another picture.
  for (auto _ : oState) {
    o.oSensor.Render(o.oSettings, nSequence % 2 ? 0.2 : 0.24, nSequence, o.aBytes.data());
    ++nSequence;
  }
  oState.SetItemsProcessed(oState.iterations());
}

/// The first full sequence out of a preview and back, as a capture does it.
void CaptureOutOfPreview(benchmark::State& oState) {
  ClSetUp oFull("slap-right", 34, 2.0);
  const ClSensorSettings oPreview = ClSetUp::Make(oFull.oSensor, 35, 1.0);
  uint64_t nSequence = 0;
  for (auto _ : oState) {
    oFull.oSensor.Render(oFull.oSettings, 0.0, nSequence++, oFull.aBytes.data());
    oFull.oSensor.Render(oPreview, 0.0, nSequence++, oFull.aBytes.data());
  }
}

void MakePrint(benchmark::State& oState) {
  ClPrintDescription oDescription;
  for (auto _ : oState) {
    ++oDescription.nSeed;
    benchmark::DoNotOptimize(GeneratePrint(oDescription));
  }
}

BENCHMARK_CAPTURE(StillSequence, preview, 35, 1.0)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(StillSequence, roll, 36, 4.0)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(StillSequence, full, 34, 2.0)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(StillSequence, whole_sensor, 7, 1.0)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ChangedSequence, preview, 35, 1.0)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ChangedSequence, full, 34, 2.0)->Unit(benchmark::kMillisecond);
BENCHMARK(CaptureOutOfPreview)->Unit(benchmark::kMillisecond);
BENCHMARK(MakePrint)->Unit(benchmark::kMillisecond);

}  // namespace
