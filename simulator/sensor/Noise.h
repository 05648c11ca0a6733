// A store of random numbers from which each row of a frame takes its noise.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Simulator {

/// Normally distributed numbers, made once. Each row reads a stretch of them, and a number decides where the
/// stretch begins. So noise needs no random generator, and the same number gives the same noise.
///
/// Threads    const operations are thread-safe.
class ClNoise {
 public:
  /// The standard deviation of the stored numbers.
  static constexpr int nDeviation = 2048;
  static constexpr int nLongestRow = 4096;

  explicit ClNoise(uint64_t nSeed);

  /// nLongestRow numbers for the row of that number.
  const int16_t* Row(uint64_t nNumber) const noexcept;

 private:
  static constexpr int m_cnPlaces = 65536;
  std::vector<int16_t> m_aNumbers;
};

}  // namespace Simulator
