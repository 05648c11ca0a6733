// Times of the processors over whole frames.
#include <benchmark/benchmark.h>

#include <random>

#include "MXImageProcessing/IpAnd.h"
#include "MXImageProcessing/IpDelta.h"
#include "MXImageProcessing/IpFlip.h"
#include "MXImageProcessing/IpMultiply.h"
#include "MXImageProcessing/IpSubsample.h"
#include "MXImageProcessing/IpSubtract.h"

namespace {

void FillRandom(ClImage& oImage, int nSide, unsigned char nType = ClImage::eUint8) {
  oImage.NewWithType(nType, nSide, nSide, 1, 19685, 19685, true);
  std::mt19937 oRandom(1);
  for (size_t n = 0; n < oImage.DataBytes(); ++n) oImage.Data()[n] = static_cast<unsigned char>(oRandom());
}

template <typename TProcessor>
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

BENCHMARK_TEMPLATE(TwoImages800, ClIpSubtract)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(TwoImages800, ClIpDelta)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(TwoImages800, ClIpAnd)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(TwoImages800, ClIpMultiply)->Unit(benchmark::kMillisecond);
BENCHMARK(Flip1600)->Args({1, 0})->Args({0, 1})->Unit(benchmark::kMillisecond);
BENCHMARK(Subsample1600)->Unit(benchmark::kMillisecond);

}  // namespace
