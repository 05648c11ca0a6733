// Times of the processors over whole frames.
#include <benchmark/benchmark.h>

#include <random>

#include "MXImageProcessing/Histogram.h"
#include "MXImageProcessing/IpAnd.h"
#include "MXImageProcessing/IpDelta.h"
#include "MXImageProcessing/IpFilterMid.h"
#include "MXImageProcessing/IpFilterMin.h"
#include "MXImageProcessing/IpFlip.h"
#include "MXImageProcessing/IpLabeling.h"
#include "MXImageProcessing/IpMultiply.h"
#include "MXImageProcessing/IpSubsample.h"
#include "MXImageProcessing/IpSubtract.h"

namespace {

void FillRandom(ClImage& oImage, int nSide, unsigned char nType = ClImage::eUint8) {
  oImage.NewWithType(nType, nSide, nSide, 1, 19685, 19685, true);
  std::mt19937 oRandom(1);
  for (size_t n = 0; n < oImage.DataBytes(); ++n) oImage.Data()[n] = static_cast<unsigned char>(oRandom());
}

void FilterMid(benchmark::State& oState) {
  ClImage oIn, oOut;
  FillRandom(oIn, static_cast<int>(oState.range(0)));
  ClIpFilterMid oFilter;
  for (auto _ : oState) oFilter.ApplyParam(oIn, oOut, oState.range(1));
}

void FilterMid16Bit(benchmark::State& oState) {
  ClImage oIn, oOut;
  FillRandom(oIn, 800, ClImage::eUint16);
  ClIpFilterMid oFilter;
  for (auto _ : oState) oFilter.ApplyParam(oIn, oOut, 15);
}

void FilterMin(benchmark::State& oState) {
  ClImage oIn, oOut;
  FillRandom(oIn, 800);
  ClIpFilterMin oFilter;
  for (auto _ : oState) oFilter.ApplyParam(oIn, oOut, oState.range(0), ClIpFilterBase::eModeXY);
}

/// What is labelled: 0 one empty plane, 1 dots of noise, 2 stripes joined at one end.
void Labeling(benchmark::State& oState) {
  ClImage oIn, oOut;
  FillRandom(oIn, 800);
  for (int y = 0; y < 800; ++y) {
    for (int x = 0; x < 800; ++x) {
      unsigned char& n = oIn.Row<unsigned char>(y)[x];
      if (oState.range(0) == 0) n = 0;
      if (oState.range(0) == 1) n = n < 160 ? 0 : 255;
      if (oState.range(0) == 2) n = x % 2 == 0 || y == 799 ? 0 : 255;
    }
  }
  ClIpLabeling oLabeling;
  for (auto _ : oState) oLabeling.ApplyParam(oIn, oOut);
}

template <class TProcessor>
void TwoImages800(benchmark::State& oState) {
  ClImage oIn1, oIn2, oOut;
  FillRandom(oIn1, 800);
  FillRandom(oIn2, 800);
  TProcessor oProcessor;
  for (auto _ : oState) oProcessor.ApplyParam(oIn1, oIn2, oOut, ClImage::cnTypeDefault);
}

void Flip1600(benchmark::State& oState) {
  ClImage oIn, oOut;
  FillRandom(oIn, 1600);
  ClIpFlip oFlip;
  for (auto _ : oState) oFlip.ApplyParam(oIn, oOut, oState.range(0) != 0, oState.range(1) != 0);
}

void Subsample1600(benchmark::State& oState) {
  ClImage oIn, oOut;
  FillRandom(oIn, 1600);
  ClIpSubsample oSubsample;
  for (auto _ : oState) oSubsample.ApplyParam(oIn, 2, oOut, true);
}

void Histogram1600(benchmark::State& oState) {
  ClImage oIn;
  FillRandom(oIn, 1600);
  ClHistogram oHistogram;
  for (auto _ : oState) {
    oHistogram.Create(oIn);
    benchmark::DoNotOptimize(oHistogram.MaxCount());
  }
}

BENCHMARK(FilterMid)->ArgsProduct({{800, 1600}, {3, 7, 15, 101}})->Unit(benchmark::kMillisecond);
BENCHMARK(FilterMid16Bit)->Unit(benchmark::kMillisecond);
BENCHMARK(FilterMin)->Arg(7)->Arg(101)->Unit(benchmark::kMillisecond);
BENCHMARK(Labeling)->DenseRange(0, 2)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(TwoImages800, ClIpSubtract)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(TwoImages800, ClIpDelta)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(TwoImages800, ClIpAnd)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(TwoImages800, ClIpMultiply)->Unit(benchmark::kMillisecond);
BENCHMARK(Flip1600)->Args({1, 0})->Args({0, 1})->Unit(benchmark::kMillisecond);
BENCHMARK(Subsample1600)->Unit(benchmark::kMillisecond);
BENCHMARK(Histogram1600)->Unit(benchmark::kMillisecond);

}  // namespace
