// Seeded random numbers that are the same on every machine and need no mathematics library.
#pragma once

#include <cstdint>

namespace Simulator {

/// One well-mixed word from another; equal words give equal results.
inline uint64_t Mix(uint64_t nValue) noexcept {
  nValue += 0x9E3779B97F4A7C15ull;
  nValue = (nValue ^ (nValue >> 30)) * 0xBF58476D1CE4E5B9ull;
  nValue = (nValue ^ (nValue >> 27)) * 0x94D049BB133111EBull;
  return nValue ^ (nValue >> 31);
}

inline uint64_t Mix(uint64_t nFirst, uint64_t nSecond) noexcept {
  return Mix(Mix(nFirst) ^ nSecond);
}

/// A word from a text (FNV-1a, then mixed).
inline uint64_t MixText(const char* szText) noexcept {
  uint64_t nHash = 0xCBF29CE484222325ull;
  for (; *szText; ++szText) nHash = (nHash ^ static_cast<unsigned char>(*szText)) * 0x100000001B3ull;
  return Mix(nHash);
}

class ClRandom {
 public:
  explicit ClRandom(uint64_t nSeed) noexcept : m_nState(Mix(nSeed)) {}

  uint64_t Next() noexcept { return Mix(m_nState++); }
  /// Range [0, 1).
  double Uniform() noexcept { return static_cast<double>(Next() >> 11) * (1.0 / 9007199254740992.0); }
  /// Range [dLow, dHigh).
  double Range(double dLow, double dHigh) noexcept { return dLow + (dHigh - dLow) * Uniform(); }
  /// Mean 0, standard deviation 1, never beyond 6: the sum of twelve uniform numbers.
  double Gauss() noexcept {
    double dSum = -6.0;
    for (int i = 0; i < 12; ++i) dSum += Uniform();
    return dSum;
  }

 private:
  uint64_t m_nState;
};

}  // namespace Simulator
