// Times of the kernels over whole frames, one row at a time, at every level that the machine has.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <random>
#include <vector>

#include "MXKernels/BalanceRows.h"
#include "MXKernels/BoxRows.h"
#include "MXKernels/Level.h"
#include "MXKernels/RankRows.h"
#include "MXKernels/WarpRow.h"

namespace {

using namespace MXKernels;

std::vector<uint8_t> RandomBytes(size_t nCount) {
  std::mt19937 oRandom(1);
  std::vector<uint8_t> aBytes(nCount);
  for (uint8_t& n : aBytes) n = static_cast<uint8_t>(oRandom());
  return aBytes;
}

/// Puts the level of the benchmark's last argument in force; false when the machine lacks it.
bool TakeLevel(benchmark::State& oState, int nArgument) {
  const auto eLevel = static_cast<ELevel>(oState.range(static_cast<size_t>(nArgument)));
  oState.SetLabel(LevelName(eLevel));
  if (SetLevel(eLevel)) return true;
  oState.SkipWithError("the machine lacks this level");
  return false;
}

void Warp1600(benchmark::State& oState) {
  if (!TakeLevel(oState, 0)) return;
  constexpr size_t cnSide = 1600, cnSourceWidth = 2560, cnSourceHeight = 2720;
  const std::vector<uint8_t> aSource = RandomBytes(cnSourceWidth * cnSourceHeight);
  std::vector<int16_t> aWeights(1024 * 16, 64);
  std::vector<WarpMapEntry> aMap(cnSide * cnSide);
  for (size_t y = 0; y < cnSide; ++y) {
    for (size_t x = 0; x < cnSide; ++x) {
      const size_t nX = x * (cnSourceWidth - 8) / cnSide, nY = y * (cnSourceHeight - 8) / cnSide;
      aMap[y * cnSide + x] = {static_cast<int32_t>(nY * cnSourceWidth + nX),
                              static_cast<uint32_t>((x * 19 + y * 7) % 1024)};
    }
  }
  std::vector<uint8_t> aOut(cnSide * cnSide);
  const auto pWeights = reinterpret_cast<const int16_t(*)[4][4]>(aWeights.data());
  for (auto _ : oState) {
    for (size_t y = 0; y < cnSide; ++y) {
      WarpRow(&aMap[y * cnSide], cnSide, aSource.data(), cnSourceWidth, pWeights, 0, &aOut[y * cnSide]);
    }
    benchmark::DoNotOptimize(aOut.data());
    benchmark::ClobberMemory();
  }
}

void SlidingMean800(benchmark::State& oState) {
  if (!TakeLevel(oState, 1)) return;
  const auto nHalf = static_cast<size_t>(oState.range(0));
  std::vector<uint32_t> aSums(800, 1000), aPrefix(801);
  std::vector<uint8_t> aOut(800);
  for (auto _ : oState) {
    for (int y = 0; y < 800; ++y) {
      SlidingMeanRow(aSums.data(), 800, nHalf, static_cast<uint32_t>(2 * nHalf + 1), aPrefix.data(),
                     aOut.data());
    }
    benchmark::DoNotOptimize(aOut.data());
    benchmark::ClobberMemory();
  }
}

void MinWindow800(benchmark::State& oState) {
  if (!TakeLevel(oState, 1)) return;
  const auto nHalf = static_cast<size_t>(oState.range(0));
  const std::vector<uint8_t> aIn = RandomBytes(800);
  std::vector<uint8_t> aWork(800 + 2 * nHalf), aOut(800);
  for (auto _ : oState) {
    for (int y = 0; y < 800; ++y) MinWindowRow(aIn.data(), 800, nHalf, aWork.data(), aOut.data());
    benchmark::DoNotOptimize(aOut.data());
    benchmark::ClobberMemory();
  }
}

void AdjustBrightness800(benchmark::State& oState) {
  if (!TakeLevel(oState, 0)) return;
  const std::vector<uint8_t> aIn = RandomBytes(800), aReference = RandomBytes(800);
  std::vector<uint8_t> aOut(800);
  for (auto _ : oState) {
    for (int y = 0; y < 800; ++y) {
      AdjustBrightnessRow(aIn.data(), aReference.data(), aOut.data(), 800, 255, 1);
    }
    benchmark::DoNotOptimize(aOut.data());
    benchmark::ClobberMemory();
  }
}

/// What scripts/bench keeps with the times, taken before a benchmark changes the level.
[[maybe_unused]] const bool g_bSurroundings = [] {
  benchmark::AddCustomContext("level", LevelName(Level()));
  benchmark::AddCustomContext("compiler", KLV_COMPILER);
  benchmark::AddCustomContext("flags", KLV_FLAGS);
  return true;
}();

const std::vector<int64_t> g_aLevels = {eLevelScalar, eLevelSse4, eLevelAvx2, eLevelAvx3};

BENCHMARK(Warp1600)->ArgsProduct({g_aLevels})->Unit(benchmark::kMillisecond);
BENCHMARK(SlidingMean800)->ArgsProduct({{3, 7, 50}, g_aLevels})->Unit(benchmark::kMillisecond);
BENCHMARK(MinWindow800)->ArgsProduct({{3, 50}, g_aLevels})->Unit(benchmark::kMillisecond);
BENCHMARK(AdjustBrightness800)->ArgsProduct({g_aLevels})->Unit(benchmark::kMillisecond);

}  // namespace
