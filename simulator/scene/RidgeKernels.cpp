// The bank of Gabor kernels with which ridges are grown and measured.
#include "scene/RidgeKernels.h"

#include <algorithm>
#include <cmath>

#include "portable/Math.h"

namespace Simulator {
namespace {

using Kernel = std::array<float, ClRidgeKernels::cnSide * ClRidgeKernels::cnRow>;

constexpr double cdLeastPeriod = 0.72;
constexpr double cdPeriodStep = 0.06;

/// A Gabor kernel without a mean, scaled so that a wave of its own direction and period passes unchanged.
Kernel MakeKernel(double dDirection, double dPeriod, bool bOdd) {
  constexpr int cnReach = ClRidgeKernels::cnReach, cnRow = ClRidgeKernels::cnRow;
  const double dAcross = 0.48 * dPeriod, dAlong = 0.62 * dPeriod;
  const double dCos = Portable::Cos(dDirection), dSin = Portable::Sin(dDirection);
  double adWave[ClRidgeKernels::cnSide * ClRidgeKernels::cnRow] = {};
  double adEnvelope[ClRidgeKernels::cnSide * ClRidgeKernels::cnRow] = {};
  double dWaveSum = 0.0, dEnvelopeSum = 0.0;
  for (int y = -cnReach; y <= cnReach; ++y) {
    for (int x = -cnReach; x <= cnReach; ++x) {
      // Rows run downwards while directions are counted with y up. The normal is a quarter turn ahead.
      const double dU = x * dCos - y * dSin, dV = -x * dSin - y * dCos;
      const int i = (y + cnReach) * cnRow + x + cnReach;
      adEnvelope[i] = Portable::Exp(-0.5 * (dU * dU / (dAlong * dAlong) + dV * dV / (dAcross * dAcross)));
      const double dPhase = 2.0 * Portable::cdPi * dV / dPeriod;
      adWave[i] = bOdd ? -Portable::Sin(dPhase) : Portable::Cos(dPhase);
      dEnvelopeSum += adEnvelope[i];
      dWaveSum += adEnvelope[i] * adWave[i];
    }
  }
  const double dMean = dWaveSum / dEnvelopeSum;
  double dResponse = 0.0;
  for (size_t i = 0; i < std::size(adWave); ++i) dResponse += adEnvelope[i] * (adWave[i] - dMean) * adWave[i];
  Kernel aKernel;
  for (size_t i = 0; i < std::size(adWave); ++i)
    aKernel[i] = static_cast<float>(adEnvelope[i] * (adWave[i] - dMean) / dResponse);
  return aKernel;
}

}  // namespace

ClRidgeKernels::ClRidgeKernels(bool bOdd) {
  for (int i = 0; i < cnPeriods; ++i)
    for (int k = 0; k < cnDirections; ++k)
      m_aKernels.push_back(
          MakeKernel(DirectionOf(k), cdStepsInPeriod * (cdLeastPeriod + cdPeriodStep * i), bOdd));
}

const ClRidgeKernels& ClRidgeKernels::Even() {
  static const ClRidgeKernels s_oKernels(false);
  return s_oKernels;
}

const ClRidgeKernels& ClRidgeKernels::Odd() {
  static const ClRidgeKernels s_oKernels(true);
  return s_oKernels;
}

int ClRidgeKernels::Nearest(double dDirection, double dPeriod) {
  const double dTurn = dDirection / Portable::cdPi;
  const int nDirection =
      static_cast<int>(std::lround((dTurn - std::floor(dTurn)) * cnDirections)) % cnDirections;
  const int nPeriod =
      std::clamp(static_cast<int>(std::lround((dPeriod - cdLeastPeriod) / cdPeriodStep)), 0, cnPeriods - 1);
  return nPeriod * cnDirections + nDirection;
}

double ClRidgeKernels::DirectionOf(int nKernel) {
  return Portable::cdPi * (nKernel % cnDirections) / cnDirections;
}

}  // namespace Simulator
