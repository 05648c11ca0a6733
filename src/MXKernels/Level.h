// The instruction-set level at which the kernels run: found once, capped by an environment variable.
#pragma once

#include <atomic>
#include <cstddef>

namespace MXKernels {

/// Levels from the plainest to the best. A higher one never gives other bytes, it is only faster.
enum ELevel { eLevelScalar, eLevelSse4, eLevelAvx2, eLevelAvx3, eLevelCount };

/// The level in force. The first call (of this or of any kernel) takes the best level that the
/// processor and this build have, capped by the environment variable KELVARIN_SDK_SIMD:
/// "scalar", "sse4", "avx2" or "avx3". Any other text caps nothing.
/// Threads: thread-safe.
ELevel Level() noexcept;

/// Whether the processor and this build have the level. eLevelScalar is always there.
bool HasLevel(ELevel eLevel) noexcept;

/// Puts a level in force for all kernels; false, and nothing changed, when it isn't there.
/// Threads: thread-safe; kernels that run at the same time finish at their old level.
bool SetLevel(ELevel eLevel) noexcept;

/// The name that KELVARIN_SDK_SIMD takes for the level.
const char* LevelName(ELevel eLevel) noexcept;

namespace Detail {
/// eLevelCount until the first use.
extern std::atomic<unsigned> g_nLevel;

unsigned ChooseLevel() noexcept;

/// The level as an index into the dispatch tables; one relaxed load.
inline size_t LevelIndex() noexcept {
  const unsigned nLevel = g_nLevel.load(std::memory_order_relaxed);
  return nLevel != eLevelCount ? nLevel : ChooseLevel();
}
}  // namespace Detail

}  // namespace MXKernels
