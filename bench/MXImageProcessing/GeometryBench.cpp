// Times of the processors that move pixels, over frames of both resolutions.
#include <benchmark/benchmark.h>

#include <random>

#include "MXImageProcessing/IpCut.h"
#include "MXImageProcessing/IpFlip.h"
#include "MXImageProcessing/IpMoveImage.h"
#include "MXImageProcessing/IpRescale.h"
#include "MXImageProcessing/IpRotate.h"
#include "MXImageProcessing/IpSubsample.h"

namespace {

/// Runs fnApply(in, out, side) on a square of random pixels.
template <typename TApply>
void Run(benchmark::State& oState, TApply&& fnApply) {
  const int nSide = static_cast<int>(oState.range(0));
  ClImage oIn(nSide, nSide, 1, 19685, 19685), oOut;
  std::mt19937 oRandom(1);
  for (size_t n = 0; n < oIn.DataBytes(); ++n) oIn.Data()[n] = static_cast<unsigned char>(oRandom());
  for (auto _ : oState) fnApply(oIn, oOut, nSide);
}

void Flip(benchmark::State& oState) {
  ClIpFlip oFlip;
  const bool bX = oState.range(1) != 0, bY = oState.range(2) != 0;
  Run(oState, [&](ClImage& oIn, ClImage& oOut, int) { oFlip.ApplyParam(oIn, oOut, bX, bY); });
}

void Rotate(benchmark::State& oState) {
  ClIpRotate oRotate;
  const bool bInterpolate = oState.range(1) != 0;
  Run(oState, [&](ClImage& oIn, ClImage& oOut, int nSide) {
    oRotate.ApplyParam(oIn, oOut, ClVector(nSide / 2, nSide / 2), 0.4, false, bInterpolate);
  });
}

void MoveImage(benchmark::State& oState) {
  ClIpMoveImage oMove;
  Run(oState, [&](ClImage& oIn, ClImage& oOut, int) { oMove.ApplyParam(oIn, oOut, 31, -17, 255); });
}

void Cut(benchmark::State& oState) {
  ClIpCut oCut;
  Run(oState, [&](ClImage& oIn, ClImage& oOut, int) { oCut.ApplyParam(oIn, 33, oOut); });
}

void Subsample(benchmark::State& oState) {
  ClIpSubsample oSubsample;
  const int nRate = static_cast<int>(oState.range(1));
  Run(oState, [&](ClImage& oIn, ClImage& oOut, int) { oSubsample.ApplyParam(oIn, nRate, oOut, true); });
}

/// To three fifths or six fifths of the size.
void Rescale(benchmark::State& oState) {
  ClIpRescale oRescale;
  const auto eMode = static_cast<ClIpRescale::eProcessingMode>(oState.range(1));
  const int nFifths = static_cast<int>(oState.range(2));
  Run(oState, [&](ClImage& oIn, ClImage& oOut, int nSide) {
    oRescale.ApplyParamSize(oIn, oOut, nSide * nFifths / 5, nSide * nFifths / 5, eMode);
  });
}

BENCHMARK(Flip)->ArgsProduct({{800, 1600}, {0, 1}, {1}})->Unit(benchmark::kMillisecond);
BENCHMARK(Rotate)->ArgsProduct({{800, 1600}, {0, 1}})->Unit(benchmark::kMillisecond);
BENCHMARK(MoveImage)->Arg(800)->Arg(1600)->Unit(benchmark::kMillisecond);
BENCHMARK(Cut)->Arg(800)->Arg(1600)->Unit(benchmark::kMillisecond);
BENCHMARK(Subsample)->ArgsProduct({{800, 1600}, {2, 3}})->Unit(benchmark::kMillisecond);
BENCHMARK(Rescale)->ArgsProduct({{800, 1600}, {1, 2, 3, 4}, {3, 6}})->Unit(benchmark::kMillisecond);

}  // namespace
