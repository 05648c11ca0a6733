// What a scanner's set-up costs, whole and by part, and what the rectification of each kind of frame costs.
#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

#include "CalibrationBlocks.h"
#include "MXLiveScannerAPI/VT40SetupCalibrationData.h"
#include "MXMath/ThinPlateSplinesBOOST.h"
#include "MXTools/FpImage.h"

namespace {

constexpr const char* cszSerial = "VT40-AD0042";

void SetUp(ClVT40SetupCalibrationData& oSetup) {
  const Bytes aGeo = GeometricBlock(ClGeometricRecord());
  const Bytes aBrightness = LegacyBrightnessBlock();
  oSetup.Setup(aGeo.data(), static_cast<unsigned int>(aGeo.size()), aBrightness.data(),
               static_cast<unsigned int>(aBrightness.size()), nullptr, 0);
}

ClVT40SetupCalibrationData& Shared() {
  static const auto pSetup = [] {
    auto p = std::make_unique<ClVT40SetupCalibrationData>(cszSerial, false);
    SetUp(*p);
    return p;
  }();
  return *pSetup;
}

void Construction(benchmark::State& oState) {
  for (auto _ : oState) benchmark::DoNotOptimize(ClVT40SetupCalibrationData(cszSerial, false).GetExposure());
}

void Setup(benchmark::State& oState) {
  for (auto _ : oState) {
    ClVT40SetupCalibrationData oSetup(cszSerial, false);
    SetUp(oSetup);
  }
}

void BrightnessReferences(benchmark::State& oState) {
  const Bytes aBrightness = LegacyBrightnessBlock();
  for (auto _ : oState)
    Shared().UpdateBrightnessData(aBrightness.data(), static_cast<unsigned int>(aBrightness.size()));
}

void SplineOfAPreview(benchmark::State& oState) {
  TpThinPlateSplines<double> oSpline;
  const std::vector<ClVector> aTarget = TargetGrid();
  const std::vector<ClVector> aActual = ActualGrid();
  oSpline.Setup(64, aTarget.data(), aActual.data());
  std::vector<double> aX(800);
  std::vector<double> aY(800);
  for (auto _ : oState) {
    for (int nY = 0; nY < 800; ++nY) oSpline.TransformRow(0, nY, 1, 800, aX.data(), aY.data());
    benchmark::DoNotOptimize(aX.data());
  }
}

using Call = void (ClVT40SetupCalibrationData::*)(ClImage&, ClImage&);

void Frame(benchmark::State& oState, Call pfnCall, int nWidth, int nHeight) {
  ClImage oIn;
  ClImage oOut;
  oIn.NewWithType(ClImage::eUint8, nWidth, nHeight, 1, 0, 0, true);
  for (size_t n = 0; n < oIn.DataBytes(); ++n)
    oIn.Data()[n] = static_cast<unsigned char>(n * 2654435761u >> 24);
  ClVT40SetupCalibrationData& oSetup = Shared();
  for (auto _ : oState) (oSetup.*pfnCall)(oIn, oOut);
}

BENCHMARK(Construction)->Unit(benchmark::kMillisecond);
BENCHMARK(Setup)->Unit(benchmark::kMillisecond)->UseRealTime()->MeasureProcessCPUTime();
BENCHMARK(BrightnessReferences)->Unit(benchmark::kMillisecond);
BENCHMARK(SplineOfAPreview)->Unit(benchmark::kMillisecond);
#define KLV_FRAME(NAME, CALL, WIDTH, HEIGHT)                                       \
  BENCHMARK_CAPTURE(Frame, NAME, &ClVT40SetupCalibrationData::CALL, WIDTH, HEIGHT) \
      ->Unit(benchmark::kMillisecond)
KLV_FRAME(Preview, CalibratePreview, 1920, 1360);
KLV_FRAME(PreviewSmall, CalibratePreview, 960, 1360);
KLV_FRAME(Full, CalibrateFull, 3840, 2720);
KLV_FRAME(FullSmall, CalibrateFull, 1920, 2720);
KLV_FRAME(Roll, CalibrateRoll, 1920, 1362);
KLV_FRAME(RollSmall, CalibrateRoll, 960, 1362);

}  // namespace
