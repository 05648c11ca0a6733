// What a judge of fingerprints should find in a generated print.
#include "scene/PrintTruth.h"

#include <algorithm>
#include <cmath>

#include "portable/Math.h"
#include "scene/Platen.h"
#include "scene/RidgeGrowth.h"
#include "scene/RidgeSurroundings.h"
#include "scene/SkinRelief.h"

namespace Simulator {
namespace {

// Sides of the squares for which ridges are measured, and of the surroundings that count, in grid steps.
constexpr int cnBlock = 4;
constexpr int cnAround = 8;
// Within this many ridge periods of each other, minutiae of opposite direction are a pair that the next
// round of growth would have closed.
constexpr double cdPair = 0.75;

/// The wave of ridges at a position of the grid, as a complex number of a direction.
struct ClWave {
  float fEven = 0.0f, fOdd = 0.0f;
  float fDirection = -1.0f;  ///< of the ridge, 0 to pi; negative where none has grown
};

/// A phase step from one wave to its neighbour, as a complex number. Directions that differ by half a turn
/// count the phase in opposite senses: both waves are turned to dDirection.
void AddStep(const ClWave& oFrom, const ClWave& oTo, double dDirection, double& dReal, double& dImaginary) {
  const double dFromOdd = Portable::Cos(oFrom.fDirection - dDirection) < 0.0 ? -oFrom.fOdd : oFrom.fOdd;
  const double dToOdd = Portable::Cos(oTo.fDirection - dDirection) < 0.0 ? -oTo.fOdd : oTo.fOdd;
  dReal += static_cast<double>(oFrom.fEven) * oTo.fEven + dFromOdd * dToOdd;
  dImaginary += oFrom.fEven * dToOdd - dFromOdd * oTo.fEven;
}

class ClMeasurement {
 public:
  explicit ClMeasurement(const ClPrintDescription& oDescription)
      : m_oFlow(oDescription),
        m_oGrowth(oDescription, m_oFlow, ClPrintOutline(oDescription), ClSkinMarks(oDescription)),
        m_oSkin(RaiseRidges(oDescription, ClPrintOutline(oDescription), m_oGrowth).oRidge),
        m_oWaves(m_oGrowth.Width(), m_oGrowth.Height()) {
    for (const ClRidgeGrowth::ClPlace& o : m_oGrowth.Places()) {
      const float* pHere = m_oGrowth.Heights().data() + o.nOffset;
      m_oWaves.At(m_oGrowth.Column(o), m_oGrowth.Row(o)) = {
          ClRidgeKernels::Even().Answer(o.nKernel, pHere, m_oGrowth.Stride()),
          ClRidgeKernels::Odd().Answer(o.nKernel, pHere, m_oGrowth.Stride()),
          static_cast<float>(ClRidgeKernels::DirectionOf(o.nKernel))};
    }
  }

  ClPrintTruth Measure() const {
    ClPrintTruth oTruth;
    oTruth.aPoints = Minutiae();
    for (const ClRidgeFlow::ClSingularity& o : m_oFlow.Singularities())
      oTruth.aPoints.push_back({o.bCore ? ePointCore : ePointDelta, o.dX, o.dY, Axis(o)});
    oTruth.dBlockMm = cnBlock * m_oGrowth.StepMm();
    oTruth.oRidges.Resize((m_oWaves.Width() + cnBlock - 1) / cnBlock,
                          (m_oWaves.Height() + cnBlock - 1) / cnBlock);
    // The plane has its middle where the grid has it only when the squares fill it: what is left over is
    // shared.
    for (int y = 0; y < oTruth.oRidges.Height(); ++y)
      for (int x = 0; x < oTruth.oRidges.Width(); ++x)
        oTruth.oRidges.At(x, y) = Ridge(Middle(x, oTruth.oRidges.Width(), m_oWaves.Width()),
                                        Middle(y, oTruth.oRidges.Height(), m_oWaves.Height()));
    return oTruth;
  }

 private:
  static int Middle(int nBlock, int nBlocks, int nGrid) {
    return nBlock * cnBlock + cnBlock / 2 - (nBlocks * cnBlock - nGrid) / 2;
  }

  bool Grown(int nX, int nY) const {
    return nX >= 0 && nY >= 0 && nX < m_oWaves.Width() && nY < m_oWaves.Height() &&
           m_oWaves.At(nX, nY).fDirection >= 0.0f;
  }

  /// How often the phase turns counter-clockwise round the square of which (nX, nY) is the upper left corner.
  int Turns(int nX, int nY) const {
    if (!Grown(nX, nY) || !Grown(nX + 1, nY) || !Grown(nX, nY + 1) || !Grown(nX + 1, nY + 1)) return 0;
    const ClWave* apRound[5] = {&m_oWaves.At(nX, nY + 1), &m_oWaves.At(nX + 1, nY + 1),
                                &m_oWaves.At(nX + 1, nY), &m_oWaves.At(nX, nY), &m_oWaves.At(nX, nY + 1)};
    double dSum = 0.0;
    for (int i = 0; i < 4; ++i) {
      double dReal = 0.0, dImaginary = 0.0;
      AddStep(*apRound[i], *apRound[i + 1], m_oWaves.At(nX, nY).fDirection, dReal, dImaginary);
      dSum += Portable::Atan2(dImaginary, dReal);
    }
    return static_cast<int>(std::floor(dSum / (2.0 * Portable::cdPi) + 0.5));
  }

  std::vector<ClPrintTruth::ClPoint> Minutiae() const {
    std::vector<ClPrintTruth::ClPoint> aFound;
    for (int y = 0; y + 1 < m_oWaves.Height(); ++y) {
      for (int x = 0; x + 1 < m_oWaves.Width(); ++x) {
        const int nTurns = Turns(x, y);
        if (nTurns == 0) continue;
        const double dX = m_oGrowth.X(x + 0.5), dY = m_oGrowth.Y(y + 0.5);
        if (AtSingularity(dX, dY)) continue;
        // There is one ridge more on the side to which the phase turns forward.
        const double dDirection = m_oWaves.At(x, y).fDirection + (nTurns > 0 ? 0.0 : Portable::cdPi);
        aFound.push_back({Kind(x, y, dDirection), dX, dY, dDirection});
      }
    }
    DropPairs(aFound);
    return aFound;
  }

  /// Where a core or delta turns the direction, the phase has no sense.
  bool AtSingularity(double dX, double dY) const {
    const double dReach = 2.5 * m_oGrowth.StepMm();
    for (const ClRidgeFlow::ClSingularity& o : m_oFlow.Singularities())
      if (Portable::Hypot(o.dX - dX, o.dY - dY) < dReach) return true;
    return false;
  }

  /// Whether it is a ridge or a valley that ends, as the skin shows it or, where that doesn't decide, as the
  /// wave is ahead.
  EPrintPoint Kind(int nX, int nY, double dDirection) const {
    const double dX = m_oGrowth.X(nX + 0.5) / cdPixelMm, dY = m_oGrowth.Y(nY + 0.5) / cdPixelMm;
    const int nEnds = WhatEnds(m_oSkin, static_cast<int>(std::lround(0.5 * (m_oSkin.Width() - 1) + dX)),
                               static_cast<int>(std::lround(0.5 * (m_oSkin.Height() - 1) - dY)));
    if (nEnds != 0) return nEnds > 0 ? ePointEnding : ePointBifurcation;
    return Ahead(nX + 0.5, nY + 0.5, dDirection) > 0.0 ? ePointEnding : ePointBifurcation;
  }

  /// The height of the wave ahead of a position, along the way that ridges take.
  double Ahead(double dX, double dY, double dDirection) const {
    double dSum = 0.0;
    for (int i = 0; i < 6; ++i) {
      dX += Portable::Cos(dDirection);
      dY -= Portable::Sin(dDirection);
      const int nX = static_cast<int>(std::floor(dX + 0.5)), nY = static_cast<int>(std::floor(dY + 0.5));
      if (!Grown(nX, nY)) break;
      const ClWave& o = m_oWaves.At(nX, nY);
      if (i > 0) dSum += o.fEven;
      const double dAhead = o.fDirection;
      dDirection = Portable::Cos(dAhead - dDirection) < 0.0 ? dAhead + Portable::cdPi : dAhead;
    }
    return dSum;
  }

  void DropPairs(std::vector<ClPrintTruth::ClPoint>& aFound) const {
    const double dReach = cdPair * ClRidgeKernels::cdStepsInPeriod * m_oGrowth.StepMm();
    std::vector<bool> abGone(aFound.size());
    for (size_t i = 0; i < aFound.size(); ++i) {
      size_t nNearest = i;
      double dNearest = dReach;
      for (size_t k = i + 1; k < aFound.size(); ++k) {
        const double dAway = Portable::Hypot(aFound[i].dX - aFound[k].dX, aFound[i].dY - aFound[k].dY);
        if (abGone[k] || dAway >= dNearest ||
            Portable::Cos(aFound[i].dDirection - aFound[k].dDirection) > 0.0)
          continue;
        dNearest = dAway;
        nNearest = k;
      }
      if (abGone[i] || nNearest == i) continue;
      abGone[i] = abGone[nNearest] = true;
    }
    size_t nKept = 0;
    for (size_t i = 0; i < aFound.size(); ++i)
      if (!abGone[i]) aFound[nKept++] = aFound[i];
    aFound.resize(nKept);
  }

  /// The direction in which ridges run straight away from a core or a delta; of the three of a delta the
  /// lowest.
  double Axis(const ClRidgeFlow::ClSingularity& oPoint) const {
    double dBest = 0.0, dLeast = 9.0;
    for (int i = 0; i < 180; ++i) {
      const double dAngle = -Portable::cdPi + i * (Portable::cdPi / 90.0);
      const double dFlow =
          m_oFlow.Direction(oPoint.dX + 0.7 * Portable::Cos(dAngle), oPoint.dY + 0.7 * Portable::Sin(dAngle));
      const double dOff =
          std::fabs(Portable::Sin(dFlow - dAngle)) + (oPoint.bCore ? 0.0 : 0.5 + 0.5 * Portable::Sin(dAngle));
      if (dOff >= dLeast) continue;
      dLeast = dOff;
      dBest = dAngle;
    }
    return dBest;
  }

  /// Direction and period round a position of the grid, from the steps of the phase to the right and upwards.
  ClPrintTruth::ClRidge Ridge(int nX, int nY) const {
    if (!Grown(nX, nY)) return {};
    const double dDirection = m_oWaves.At(nX, nY).fDirection;
    double adRight[2] = {}, adUp[2] = {};
    for (int y = nY - cnAround / 2; y <= nY + cnAround / 2; ++y) {
      for (int x = nX - cnAround / 2; x <= nX + cnAround / 2; ++x) {
        if (!Grown(x, y)) continue;
        if (Grown(x + 1, y))
          AddStep(m_oWaves.At(x, y), m_oWaves.At(x + 1, y), dDirection, adRight[0], adRight[1]);
        if (Grown(x, y - 1)) AddStep(m_oWaves.At(x, y), m_oWaves.At(x, y - 1), dDirection, adUp[0], adUp[1]);
      }
    }
    const double dRight = Portable::Atan2(adRight[1], adRight[0]), dUp = Portable::Atan2(adUp[1], adUp[0]);
    const double dStep = Portable::Hypot(dRight, dUp);
    if (dStep < 0.3) return {};
    // The phase grows along the normal, a quarter of a turn ahead of the ridge.
    return {static_cast<float>(Portable::Atan2(-dRight, dUp)),
            static_cast<float>(2.0 * Portable::cdPi / dStep * m_oGrowth.StepMm())};
  }

  ClRidgeFlow m_oFlow;
  ClRidgeGrowth m_oGrowth;
  TpPlane<uint8_t> m_oSkin;
  TpPlane<ClWave> m_oWaves;
};

}  // namespace

ClPrintTruth::ClRidge ClPrintTruth::RidgeAt(double dX, double dY) const {
  const int nX = static_cast<int>(std::floor(dX / dBlockMm + 0.5 * oRidges.Width()));
  const int nY = static_cast<int>(std::floor(0.5 * oRidges.Height() - dY / dBlockMm));
  if (nX < 0 || nY < 0 || nX >= oRidges.Width() || nY >= oRidges.Height()) return {};
  return oRidges.At(nX, nY);
}

ClPrintTruth MeasurePrint(const ClPrintDescription& oDescription) {
  if (!oDescription.sFile.empty()) return {};
  return ClMeasurement(oDescription).Measure();
}

}  // namespace Simulator
