// Finds the level from what the processor offers, what this build holds and what the user allows.
#include "MXKernels/Level.h"

#include <strings.h>

#include <cstdint>
#include <cstdlib>

#include "KernelTargets.h"

#include <hwy/highway.h>

namespace MXKernels {
namespace {

const char* const g_aLevelNames[eLevelCount] = {"scalar", "sse4", "avx2", "avx3"};
constexpr int64_t g_aLevelTargets[eLevelCount] = {0, HWY_SSE4, HWY_AVX2, HWY_AVX3};

}  // namespace

namespace Detail {

std::atomic<unsigned> g_nLevel{eLevelCount};

unsigned ChooseLevel() noexcept {
  int nCap = eLevelCount - 1;
  if (const char* szCap = secure_getenv("KELVARIN_SDK_SIMD")) {
    for (int nLevel = 0; nLevel < eLevelCount; ++nLevel) {
      if (strcasecmp(szCap, g_aLevelNames[nLevel]) == 0) nCap = nLevel;
    }
  }
  while (!HasLevel(static_cast<ELevel>(nCap))) --nCap;
  // Threads that are here at the same time find the same level; a level that SetLevel has set stays.
  unsigned nExpected = eLevelCount;
  const auto nFound = static_cast<unsigned>(nCap);
  return g_nLevel.compare_exchange_strong(nExpected, nFound) ? nFound : nExpected;
}

}  // namespace Detail

ELevel Level() noexcept {
  return static_cast<ELevel>(Detail::LevelIndex());
}

bool HasLevel(ELevel eLevel) noexcept {
  if (eLevel == eLevelScalar) return true;
  return (g_aLevelTargets[eLevel] & HWY_TARGETS & HWY_SUPPORTED_TARGETS) != 0;
}

bool SetLevel(ELevel eLevel) noexcept {
  if (!HasLevel(eLevel)) return false;
  Detail::g_nLevel.store(eLevel);
  return true;
}

const char* LevelName(ELevel eLevel) noexcept {
  return g_aLevelNames[eLevel];
}

}  // namespace MXKernels
