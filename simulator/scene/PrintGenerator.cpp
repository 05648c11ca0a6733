// Makes fingerprints that never belonged to anybody.
#include "scene/PrintGenerator.h"

#include <array>
#include <cmath>

#include "portable/Math.h"
#include "scene/Platen.h"
#include "scene/Random.h"
#include "scene/RidgeFlow.h"

namespace Simulator {
namespace {

// Ridges are grown at 250 dots per inch: they are band-limited, so nothing is lost, and it costs a sixteenth.
constexpr double cdGrowMm = 2.0 * cdPixelMm;
constexpr int cnReach = 5;
constexpr int cnKernel = 2 * cnReach + 1;
constexpr int cnDirections = 48;
constexpr int cnPeriods = 3;
constexpr int cnRounds = 11;

using Kernel = std::array<float, cnKernel * cnKernel>;

/// A Gabor kernel without a mean, scaled so that a wave of its own direction and period passes unchanged.
Kernel MakeKernel(double dDirection, double dPeriod) {
  std::array<double, cnKernel * cnKernel> aWave{}, aEnvelope{};
  const double dAcross = 0.48 * dPeriod, dAlong = 0.62 * dPeriod;
  double dWaveSum = 0.0, dEnvelopeSum = 0.0;
  for (int y = -cnReach; y <= cnReach; ++y) {
    for (int x = -cnReach; x <= cnReach; ++x) {
      // Rows run downwards while directions are counted with y up.
      const double dU = x * Portable::Cos(dDirection) - y * Portable::Sin(dDirection);
      const double dV = x * Portable::Sin(dDirection) + y * Portable::Cos(dDirection);
      const size_t i = static_cast<size_t>(y + cnReach) * cnKernel + static_cast<size_t>(x + cnReach);
      aEnvelope[i] = Portable::Exp(-0.5 * (dU * dU / (dAlong * dAlong) + dV * dV / (dAcross * dAcross)));
      aWave[i] = Portable::Cos(2.0 * Portable::cdPi * dV / dPeriod);
      dEnvelopeSum += aEnvelope[i];
      dWaveSum += aEnvelope[i] * aWave[i];
    }
  }
  const double dMean = dWaveSum / dEnvelopeSum;
  double dResponse = 0.0;
  for (size_t i = 0; i < aWave.size(); ++i) dResponse += aEnvelope[i] * (aWave[i] - dMean) * aWave[i];
  Kernel aKernel;
  for (size_t i = 0; i < aWave.size(); ++i)
    aKernel[i] = static_cast<float>(aEnvelope[i] * (aWave[i] - dMean) / dResponse);
  return aKernel;
}

/// A smooth random surface from -1 to 1 with knots that lie dKnot samples apart.
class ClSmoothNoise {
 public:
  ClSmoothNoise(uint64_t nSeed, double dKnot) : m_nSeed(nSeed), m_dKnot(dKnot) {}

  double At(double dX, double dY) const {
    const double dU = dX / m_dKnot, dV = dY / m_dKnot;
    const int nX = static_cast<int>(std::floor(dU)), nY = static_cast<int>(std::floor(dV));
    const double dA = Ease(dU - nX), dB = Ease(dV - nY);
    const double dTop = Knot(nX, nY) * (1.0 - dA) + Knot(nX + 1, nY) * dA;
    const double dLow = Knot(nX, nY + 1) * (1.0 - dA) + Knot(nX + 1, nY + 1) * dA;
    return dTop * (1.0 - dB) + dLow * dB;
  }

 private:
  static double Ease(double d) { return d * d * (3.0 - 2.0 * d); }
  double Knot(int nX, int nY) const {
    const uint64_t nPlace =
        (static_cast<uint64_t>(static_cast<uint32_t>(nX)) << 32) | static_cast<uint32_t>(nY);
    return static_cast<double>(Mix(m_nSeed, nPlace) >> 11) * (2.0 / 9007199254740992.0) - 1.0;
  }

  uint64_t m_nSeed;
  double m_dKnot;
};

struct ClPlace {
  int nOffset;
  int nKernel;
};

/// Distance from the middle, 1 on the outline of a finger under ordinary pressure: half an ellipse for the
/// tip, fuller below, where the crease cuts the print off.
double OutlineDistance(double dX, double dY, double dHalfWidth, double dHalfHeight) {
  const double dA = std::fabs(dX) / dHalfWidth, dB = std::fabs(dY) / dHalfHeight;
  if (dY > 0.0) return std::sqrt(dA * dA + dB * dB);
  return Portable::CubeRoot(dA * dA * dA + dB * dB * dB);
}

class ClGrower {
 public:
  explicit ClGrower(const ClPrintDescription& oDescription)
      : m_oDescription(oDescription),
        m_nWidth(static_cast<int>(std::ceil(oDescription.dWidthMm * 1.16 / cdGrowMm))),
        m_nHeight(static_cast<int>(std::ceil(oDescription.dHeightMm * 1.16 / cdGrowMm))),
        m_nStride(m_nWidth + 2 * cnReach) {}

  ClPrint Grow() {
    MakeKernels();
    ChoosePlaces();
    std::vector<float> aNow = MakeNoise(), aNext(aNow.size(), 0.0f);
    for (int i = 0; i < cnRounds; ++i) {
      Filter(aNow.data(), aNext.data());
      aNow.swap(aNext);
    }
    ClPrint oPrint;
    oPrint.dSlope = 2.4;
    oPrint.oRidge = Enlarge(aNow);
    Imitate(oPrint);
    oPrint.oDepth = MakeDepth(oPrint.oRidge.Width(), oPrint.oRidge.Height());
    return oPrint;
  }

 private:
  double X(int nX) const { return (nX + 0.5 - 0.5 * m_nWidth) * cdGrowMm; }
  double Y(int nY) const { return (0.5 * m_nHeight - nY - 0.5) * cdGrowMm; }

  void MakeKernels() {
    const double dPeriod = m_oDescription.dRidgePeriodMm / cdGrowMm;
    for (int i = 0; i < cnPeriods; ++i)
      for (int k = 0; k < cnDirections; ++k)
        m_aKernels.push_back(MakeKernel(Portable::cdPi * k / cnDirections, dPeriod * (0.93 + 0.07 * i)));
  }

  void ChoosePlaces() {
    const ClRidgeFlow oFlow(m_oDescription);
    const ClSmoothNoise oSpacing(Mix(m_oDescription.nSeed, 1), 40.0);
    for (int y = 0; y < m_nHeight; ++y) {
      for (int x = 0; x < m_nWidth; ++x) {
        const double dX = X(x), dY = Y(y);
        if (OutlineDistance(dX, dY, 0.5 * m_oDescription.dWidthMm, 0.5 * m_oDescription.dHeightMm) > 1.15)
          continue;
        const double dTurn = oFlow.Direction(dX, dY) / Portable::cdPi;
        const int nDirection = static_cast<int>(std::lround((dTurn - std::floor(dTurn)) * cnDirections));
        const int nPeriod = std::clamp(static_cast<int>(1.5 + 1.4 * oSpacing.At(x, y)), 0, cnPeriods - 1);
        m_aPlaces.push_back(
            {(y + cnReach) * m_nStride + x + cnReach, nPeriod * cnDirections + nDirection % cnDirections});
      }
    }
  }

  std::vector<float> MakeNoise() const {
    std::vector<float> aNoise(static_cast<size_t>(m_nStride) * static_cast<size_t>(m_nHeight + 2 * cnReach));
    ClRandom oRandom(Mix(m_oDescription.nSeed, 2));
    for (const ClPlace& oPlace : m_aPlaces)
      aNoise[static_cast<size_t>(oPlace.nOffset)] = static_cast<float>(oRandom.Range(-1.0, 1.0));
    return aNoise;
  }

  void Filter(const float* pIn, float* pOut) const {
    const int nUp = cnReach * m_nStride + cnReach;
    for (const ClPlace& oPlace : m_aPlaces) {
      const float* pKernel = m_aKernels[static_cast<size_t>(oPlace.nKernel)].data();
      const float* pRow = pIn + (oPlace.nOffset - nUp);
      float aSum[cnKernel] = {};
      for (int r = 0; r < cnKernel; ++r, pRow += m_nStride, pKernel += cnKernel)
        for (int k = 0; k < cnKernel; ++k) aSum[k] += pKernel[k] * pRow[k];
      float fSum = 0.0f;
      for (float f : aSum) fSum += f;
      pOut[oPlace.nOffset] = std::clamp(1.7f * fSum, -1.0f, 1.0f);
    }
  }

  /// Twice the size by Catmull-Rom splines, as heights from 0 to 255.
  TpPlane<uint8_t> Enlarge(const std::vector<float>& aIn) const {
    // These are the samples a quarter to the left and a quarter to the right of a pixel centre.
    static const float aTaps[4] = {-0.0703125f, 0.8671875f, 0.2265625f, -0.0234375f};
    TpPlane<float> oWide(2 * m_nWidth, m_nHeight + 2 * cnReach);
    for (int y = 0; y < oWide.Height(); ++y) {
      const float* pIn = aIn.data() + static_cast<ptrdiff_t>(y) * m_nStride + cnReach;
      float* pOut = oWide.Row(y);
      for (int x = 0; x < m_nWidth; ++x) {
        const float* p = pIn + x;
        pOut[2 * x] = aTaps[0] * p[1] + aTaps[1] * p[0] + aTaps[2] * p[-1] + aTaps[3] * p[-2];
        pOut[2 * x + 1] = aTaps[0] * p[-1] + aTaps[1] * p[0] + aTaps[2] * p[1] + aTaps[3] * p[2];
      }
    }
    TpPlane<uint8_t> oOut(2 * m_nWidth, 2 * m_nHeight);
    for (int y = 0; y < oOut.Height(); ++y) {
      const int nMid = y / 2 + cnReach, nStep = (y & 1) ? 1 : -1;
      const float* aRow[4] = {oWide.Row(nMid - nStep), oWide.Row(nMid), oWide.Row(nMid + nStep),
                              oWide.Row(nMid + 2 * nStep)};
      for (int x = 0; x < oOut.Width(); ++x) {
        const float f =
            aTaps[0] * aRow[0][x] + aTaps[1] * aRow[1][x] + aTaps[2] * aRow[2][x] + aTaps[3] * aRow[3][x];
        oOut.At(x, y) = static_cast<uint8_t>(std::clamp(128.5f + 112.0f * f, 0.0f, 255.0f));
      }
    }
    return oOut;
  }

  /// Turns living skin into the material of the description.
  void Imitate(ClPrint& oPrint) const {
    switch (m_oDescription.eMaterial) {
      case eMaterialSkin:
        AddPores(oPrint.oRidge);
        break;
      case eMaterialSoftCast:
        for (int i = 0; i < 3; ++i) Soften(oPrint.oRidge);
        oPrint.dSlope = 1.5;
        break;
      case eMaterialFlatCast:
        oPrint.dSlope = 6.0;
        break;
      case eMaterialHalftone:
        AddRaster(oPrint.oRidge);
        break;
    }
  }

  /// Means of three by three.
  static void Soften(TpPlane<uint8_t>& oRidge) {
    const TpPlane<uint8_t> oIn = oRidge;
    for (int y = 1; y + 1 < oIn.Height(); ++y) {
      const uint8_t* aRow[3] = {oIn.Row(y - 1), oIn.Row(y), oIn.Row(y + 1)};
      for (int x = 1; x + 1 < oIn.Width(); ++x) {
        unsigned nSum = 4;
        for (const uint8_t* pRow : aRow) nSum += 0u + pRow[x - 1] + pRow[x] + pRow[x + 1];
        oRidge.At(x, y) = static_cast<uint8_t>(nSum / 9);
      }
    }
  }

  /// A printer's dots, 133 to the inch at 45 degrees: heights become larger and smaller dots of ink.
  static void AddRaster(TpPlane<uint8_t>& oRidge) {
    const double dWave = 2.0 * Portable::cdPi * 133.0 * cdPixelMm / 25.4 * 0.70710678118654752;
    for (int y = 0; y < oRidge.Height(); ++y) {
      for (int x = 0; x < oRidge.Width(); ++x) {
        const double dDot = Portable::Cos(dWave * (x + y)) + Portable::Cos(dWave * (x - y));
        oRidge.At(x, y) = static_cast<uint8_t>(std::clamp(oRidge.At(x, y) + 45.0 * dDot, 0.0, 255.0));
      }
    }
  }

  /// Pores sit on the crests of ridges, some two or three to a millimetre.
  void AddPores(TpPlane<uint8_t>& oRidge) const {
    constexpr int nCell = 9;
    ClRandom oRandom(Mix(m_oDescription.nSeed, 3));
    for (int nTop = 0; nTop + nCell < oRidge.Height(); nTop += nCell) {
      for (int nLeft = 0; nLeft + nCell < oRidge.Width(); nLeft += nCell) {
        if (oRandom.Uniform() >= m_oDescription.dPores) continue;
        const int nDropX = static_cast<int>(oRandom.Range(0.0, nCell));
        int nBestX = nLeft + nDropX, nBestY = nTop;
        for (int y = nTop; y < nTop + nCell; ++y)
          if (oRidge.At(nBestX, y) > oRidge.At(nBestX, nBestY)) nBestY = y;
        if (oRidge.At(nBestX, nBestY) < 215) continue;
        Dent(oRidge, nBestX, nBestY, oRandom.Range(0.6, 1.15));
      }
    }
  }

  static void Dent(TpPlane<uint8_t>& oRidge, int nX, int nY, double dRadius) {
    for (int y = std::max(0, nY - 3); y <= std::min(oRidge.Height() - 1, nY + 3); ++y) {
      for (int x = std::max(0, nX - 3); x <= std::min(oRidge.Width() - 1, nX + 3); ++x) {
        const double dSquare = (x - nX) * (x - nX) + (y - nY) * (y - nY);
        const double dCut = 150.0 * Portable::Exp(-0.5 * dSquare / (dRadius * dRadius));
        oRidge.At(x, y) = static_cast<uint8_t>(std::max(0.0, oRidge.At(x, y) - dCut));
      }
    }
  }

  TpPlane<uint8_t> MakeDepth(int nWidth, int nHeight) const {
    const ClSmoothNoise oEdge(Mix(m_oDescription.nSeed, 4), 30.0);
    const ClSmoothNoise oFringe(Mix(m_oDescription.nSeed, 5), 5.0);
    TpPlane<uint8_t> oDepth(nWidth, nHeight);
    for (int y = 0; y < nHeight; ++y) {
      for (int x = 0; x < nWidth; ++x) {
        const double dX = (x + 0.5 - 0.5 * nWidth) * cdPixelMm, dY = (0.5 * nHeight - y - 0.5) * cdPixelMm;
        const double dAway =
            OutlineDistance(dX, dY, 0.5 * m_oDescription.dWidthMm, 0.5 * m_oDescription.dHeightMm) +
            0.02 * oEdge.At(x, y) + 0.012 * oFringe.At(x, y);
        oDepth.At(x, y) = static_cast<uint8_t>(std::clamp(255.0 * (1.12 - dAway) / 0.5, 0.0, 255.0));
      }
    }
    return oDepth;
  }

  const ClPrintDescription& m_oDescription;
  int m_nWidth;
  int m_nHeight;
  int m_nStride;
  std::vector<Kernel> m_aKernels;
  std::vector<ClPlace> m_aPlaces;
};

}  // namespace

ClPrint GeneratePrint(const ClPrintDescription& oDescription) {
  return ClGrower(oDescription).Grow();
}

}  // namespace Simulator
