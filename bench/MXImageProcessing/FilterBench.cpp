// Times of the neighbourhood filters, thresholds and the search for objects, over frames of both resolutions.
#include <benchmark/benchmark.h>

#include <random>

#include "MXImageProcessing/Histogram.h"
#include "MXImageProcessing/IpBinarizeGlobal.h"
#include "MXImageProcessing/IpBinarizeLocal2.h"
#include "MXImageProcessing/IpConnectedComponent2.h"
#include "MXImageProcessing/IpFilterGauss.h"
#include "MXImageProcessing/IpFilterMax.h"
#include "MXImageProcessing/IpFilterMid.h"
#include "MXImageProcessing/IpFilterMin.h"
#include "MXImageProcessing/IpLabeling.h"
#include "MXTools/ImageTypeDispatch.h"

namespace {

/// Random samples from 0 to 127, which every type holds, or over the whole range of a byte.
void FillRandom(ClImage& oImage, int64_t nSide, unsigned char nType = ClImage::eUint8) {
  const int n = static_cast<int>(nSide);
  oImage.NewWithType(nType, n, n, 1, 19685, 19685, true);
  std::mt19937 oRandom(1);
  DispatchElementType(nType, 0, [&](auto oElement) {
    using T = typename decltype(oElement)::Type;
    const unsigned nMask = nType == ClImage::eUint8 ? 255 : 127;
    for (int y = 0; y < n; ++y) {
      for (int x = 0; x < n; ++x) oImage.Row<T>(y)[x] = static_cast<T>(oRandom() & nMask);
    }
    return 0L;
  });
}

/// Arguments: side, width, mode.
template <typename TFilter>
void Filter(benchmark::State& oState) {
  ClImage oIn, oOut;
  FillRandom(oIn, oState.range(0));
  TFilter oFilter;
  ClIpFilterBase& oBase = oFilter;
  for (auto _ : oState) oBase.ApplyParam(oIn, oOut, oState.range(1), oState.range(2));
}

/// Arguments: element type, width.
template <typename TFilter>
void FilterType(benchmark::State& oState) {
  ClImage oIn, oOut;
  FillRandom(oIn, 800, static_cast<unsigned char>(oState.range(0)));
  TFilter oFilter;
  ClIpFilterBase& oBase = oFilter;
  for (auto _ : oState) oBase.ApplyParam(oIn, oOut, oState.range(1), ClIpFilterBase::eModeXY);
}

template <typename TFilter>
void FilterDirected(benchmark::State& oState) {
  ClImage oIn, oOut, oDx, oDy;
  FillRandom(oIn, oState.range(0));
  FillRandom(oDx, oState.range(0), ClImage::eInt8);
  FillRandom(oDy, oState.range(0), ClImage::eInt8);
  TFilter oFilter;
  oFilter.pInDxImage = &oDx;
  oFilter.pInDyImage = &oDy;
  ClIpFilterBase& oBase = oFilter;
  for (auto _ : oState) oBase.ApplyParam(oIn, oOut, oState.range(1), ClIpFilterBase::eModeDirected);
}

void FilterMidRemainder(benchmark::State& oState) {
  ClImage oIn, oOut, oRemainder;
  FillRandom(oIn, oState.range(0));
  ClIpFilterMid oFilter;
  oFilter.m_pRemainderImage = &oRemainder;
  for (auto _ : oState) oFilter.ApplyParam(oIn, oOut, oState.range(1));
}

/// What is labelled: one empty plane, noise (the argument is the share of object pixels in 256ths) or, for
/// 256, stripes joined at one end.
void MakeObjects(ClImage& oImage, int64_t nSide, int64_t nShare) {
  FillRandom(oImage, nSide);
  for (int y = 0; y < oImage.Height(); ++y) {
    for (int x = 0; x < oImage.Width(); ++x) {
      unsigned char& n = oImage.Row<unsigned char>(y)[x];
      const bool bStripe = x % 2 == 0 || y == oImage.Height() - 1;
      n = (nShare < 256 ? n < nShare : bStripe) ? 0 : 255;
    }
  }
}

void Labeling(benchmark::State& oState) {
  ClImage oIn, oOut;
  MakeObjects(oIn, oState.range(0), oState.range(1));
  ClIpLabeling oLabeling;
  for (auto _ : oState) oLabeling.ApplyParam(oIn, oOut);
}

void ConnectedComponent(benchmark::State& oState) {
  ClImage oIn, oGrey;
  MakeObjects(oIn, oState.range(0), 160);
  FillRandom(oGrey, oState.range(0));
  ClIpConnectedComponent2 oComponents;
  ClIpConnectedComponent2::ComponentsArray_t aFound;
  for (auto _ : oState) oComponents.ApplyParam(oIn, aFound, &oGrey);
}

void BinarizeGlobal(benchmark::State& oState) {
  ClImage oIn, oOut;
  FillRandom(oIn, oState.range(0));
  ClIpBinarizeGlobal oBinarize;
  for (auto _ : oState) oBinarize.ApplyParam(oIn, oOut, 128.0);
}

void BinarizeLocal(benchmark::State& oState) {
  ClImage oIn, oOut;
  FillRandom(oIn, oState.range(0));
  ClIpBinarizeLocal2 oBinarize;
  for (auto _ : oState) oBinarize.ApplyParam(oIn, oOut, oState.range(1), oState.range(1), 0);
}

void Histogram(benchmark::State& oState) {
  ClImage oIn;
  FillRandom(oIn, oState.range(0));
  ClHistogram oHistogram;
  for (auto _ : oState) {
    oHistogram.Create(oIn);
    benchmark::DoNotOptimize(oHistogram.MaxCount());
  }
}

void TwoMeansClustering(benchmark::State& oState) {
  ClImage oIn;
  FillRandom(oIn, 800);
  ClHistogram oHistogram;
  oHistogram.Create(oIn);
  for (auto _ : oState) benchmark::DoNotOptimize(oHistogram.TwoMeansClustering(oState.range(0) != 0));
}

void ForFrames(benchmark::internal::Benchmark* pBenchmark) {
  pBenchmark->ArgsProduct({{800, 1600}, {3, 15, 51}})->Unit(benchmark::kMillisecond);
}
void ForModes(benchmark::internal::Benchmark* pBenchmark) {
  pBenchmark->ArgsProduct({{800, 1600}, {3, 15, 51}, {1, 2, 3}})->Unit(benchmark::kMillisecond);
}
void ForTypes(benchmark::internal::Benchmark* pBenchmark) {
  pBenchmark
      ->ArgsProduct(
          {{ClImage::eInt8, ClImage::eUint16, ClImage::eInt32, ClImage::eFloat32, ClImage::eDouble64},
           {3, 51}})
      ->Unit(benchmark::kMillisecond);
}

BENCHMARK_TEMPLATE(Filter, ClIpFilterMid)->Apply(ForModes);
BENCHMARK_TEMPLATE(Filter, ClIpFilterMin)->Apply(ForModes);
BENCHMARK_TEMPLATE(Filter, ClIpFilterMax)->Apply(ForModes);
BENCHMARK_TEMPLATE(Filter, ClIpFilterGauss)->Apply(ForModes);
BENCHMARK_TEMPLATE(FilterType, ClIpFilterMid)->Apply(ForTypes);
BENCHMARK_TEMPLATE(FilterType, ClIpFilterMin)->Apply(ForTypes);
BENCHMARK_TEMPLATE(FilterType, ClIpFilterGauss)->Apply(ForTypes);
BENCHMARK_TEMPLATE(FilterDirected, ClIpFilterMid)->Apply(ForFrames);
BENCHMARK_TEMPLATE(FilterDirected, ClIpFilterGauss)->Apply(ForFrames);
BENCHMARK(FilterMidRemainder)->Apply(ForFrames);
BENCHMARK(BinarizeLocal)->Apply(ForFrames);
BENCHMARK(Labeling)->ArgsProduct({{800, 1600}, {0, 100, 160, 200, 256}})->Unit(benchmark::kMillisecond);
BENCHMARK(ConnectedComponent)->Arg(800)->Arg(1600)->Unit(benchmark::kMillisecond);
BENCHMARK(BinarizeGlobal)->Arg(800)->Arg(1600)->Unit(benchmark::kMillisecond);
BENCHMARK(Histogram)->Arg(800)->Arg(1600)->Unit(benchmark::kMillisecond);
BENCHMARK(TwoMeansClustering)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

}  // namespace
