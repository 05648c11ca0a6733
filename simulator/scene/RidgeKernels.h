// The bank of Gabor kernels with which ridges are grown and measured.
#pragma once

#include <array>
#include <cstddef>
#include <cstring>
#include <vector>

namespace Simulator {

/// Kernels for all directions and for ridge periods round the mean of a finger. Their grid is counted in
/// ridge periods, so that one bank serves fingers with fine and with wide ridges.
///
/// Threads    const operations are thread-safe.
class ClRidgeKernels {
 public:
  static constexpr int cnReach = 5;
  static constexpr int cnSide = 2 * cnReach + 1;
  static constexpr int cnRow = 12;  ///< a row of the kernel and a zero
  static constexpr int cnDirections = 48;
  static constexpr int cnPeriods = 12;
  /// Grid steps in the mean ridge period.
  static constexpr double cdStepsInPeriod = 4.5;

  /// Answers 1 on the crest of a wave of its own direction and period, -1 in the valley.
  static const ClRidgeKernels& Even();
  /// Answers 1 a quarter of a wave beyond a crest, counted along the normal of the direction.
  static const ClRidgeKernels& Odd();

  /// Number of the kernel nearest to a direction in radians and to a period relative to the mean.
  static int Nearest(double dDirection, double dPeriod);
  /// The direction of a kernel in radians, from 0 to pi.
  static double DirectionOf(int nKernel);

  /// The answer at a position of a field of heights; pField points to it, and there are cnReach values more
  /// to the left and above, and cnReach + 1 to the right and below.
  float Answer(int nKernel, const float* pField, ptrdiff_t nStride) const noexcept {
    const float* pRow = pField - cnReach * nStride - cnReach;
    const float* pTap = m_aKernels[static_cast<size_t>(nKernel)].data();
    Four a{}, b{}, c{};
    for (int r = 0; r < cnSide; ++r, pRow += nStride, pTap += cnRow) {
      a += Load(pRow) * Load(pTap);
      b += Load(pRow + 4) * Load(pTap + 4);
      c += Load(pRow + 8) * Load(pTap + 8);
    }
    a += b + c;
    return (a[0] + a[2]) + (a[1] + a[3]);
  }

 private:
  // The sum is in the order that these lanes give on every machine.
  using Four = float __attribute__((vector_size(16)));
  static Four Load(const float* p) noexcept {
    Four o;
    std::memcpy(&o, p, sizeof o);
    return o;
  }

  explicit ClRidgeKernels(bool bOdd);

  std::vector<std::array<float, cnSide * cnRow>> m_aKernels;
};

}  // namespace Simulator
