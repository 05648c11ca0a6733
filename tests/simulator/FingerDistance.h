// How far apart the fingers of two captures are: their minutiae lay one on the other, their ridges judge.
#pragma once

#include <algorithm>
#include <array>
#include <vector>

#include "Skeleton.h"

namespace Simulator {

inline double Between(double dA, double dB) {
  return std::fabs(std::remainder(dA - dB, 2.0 * Portable::cdPi));
}

/// A turn and a shift that lay one capture on another, in pixels of 500 dots per inch.
struct StLaying {
  double dFromX, dFromY, dToX, dToY, dTurn;
  int nMeet;  ///< minutiae that lie within 0.5 mm and 20 degrees of one of the other capture

  std::pair<double, double> operator()(double dX, double dY) const {
    const double dCos = std::cos(dTurn), dSin = std::sin(dTurn);
    return {dToX + (dX - dFromX) * dCos + (dY - dFromY) * dSin,
            dToY - (dX - dFromX) * dSin + (dY - dFromY) * dCos};
  }
};

/// A drawn finger: its minutiae, and its ridges at 250 dots per inch.
class ClFingerCapture {
 public:
  explicit ClFingerCapture(const ClPlatenMap& oMap)
      : m_aMinutiae(ClSkeleton(oMap).Minutiae()), m_aCells(cnCells * cnCells), m_oRidges(cnSide, cnSide) {
    for (size_t i = 0; i < m_aMinutiae.size(); ++i)
      m_aCells[Cell(m_aMinutiae[i].dX) + cnCells * Cell(m_aMinutiae[i].dY)].push_back(i);
    for (int y = 1; y + 1 < cnSide; ++y) {
      for (int x = 1; x + 1 < cnSide; ++x) {
        if (oMap.oCover.At(2 * x, 2 * y) < 250) continue;
        int nSum = 0;
        for (int r = -1; r <= 2; ++r)
          for (int c = -1; c <= 2; ++c) nSum += oMap.oContact.At(2 * x + c, 2 * y + r);
        // Ridges and valleys are on both sides of 0, which is where no skin is.
        m_oRidges.At(x, y) = static_cast<float>(nSum) / (16.0f * 255.0f) - 0.45f;
      }
    }
    for (int y = cnHalf; y < cnSide; y += cnStep)
      for (int x = cnHalf; x < cnSide; x += cnStep) m_nSquares += OnSkin(x, y);
  }

  /// 1 less how well the ridges of small squares agree with those of another capture, in the mean: 0 for one
  /// picture, some 0.7 for ridges that have nothing to do with each other. Of the ways to lay one on the
  /// other the four are tried for which most minutiae meet. Each square may lie half a millimetre off, since
  /// skin stretches; captures that overlap by less than half are far apart.
  double DistanceTo(const ClFingerCapture& oOther) const {
    double dMost = 0.0;
    for (const StLaying& o : Layings(oOther)) dMost = std::max(dMost, Agreement(oOther, o));
    return 1.0 - dMost;
  }

 private:
  static constexpr size_t cnLayings = 4;
  static constexpr int cnSide = cnPictureSide / 2;
  static constexpr int cnHalf = 16, cnStep = 24;  // squares of 3.25 mm
  static constexpr size_t cnOff = 5;
  static constexpr size_t cnSquare = 2 * cnHalf, cnPatch = cnSquare + 2 * cnOff;
  using Patch_t = std::array<std::array<float, cnPatch>, cnPatch>;
  static constexpr size_t cnCells = 166;  // of 10 pixels, with room on all sides
  static size_t Cell(double d) { return static_cast<size_t>(d / 10.0) + 2; }

  /// Whether the square round a sample lies on skin, by its corners and its middle.
  bool OnSkin(int nX, int nY) const {
    const auto Skin = [&](int x, int y) {
      return x >= 0 && y >= 0 && x < cnSide && y < cnSide && m_oRidges.At(x, y) != 0.0f;
    };
    return Skin(nX, nY) && Skin(nX - cnHalf, nY - cnHalf) && Skin(nX + cnHalf, nY - cnHalf) &&
           Skin(nX - cnHalf, nY + cnHalf) && Skin(nX + cnHalf, nY + cnHalf);
  }

  bool Meets(double dX, double dY, double dDirection) const {
    if (!(dX >= 0.0 && dY >= 0.0 && dX < cnPictureSide && dY < cnPictureSide)) return false;
    for (size_t y = Cell(dY) - 1; y <= Cell(dY) + 1; ++y)
      for (size_t x = Cell(dX) - 1; x <= Cell(dX) + 1; ++x)
        for (const size_t i : m_aCells[x + cnCells * y])
          if (std::hypot(m_aMinutiae[i].dX - dX, m_aMinutiae[i].dY - dY) < 0.5 / cdPixelMm &&
              Between(m_aMinutiae[i].dDirection, dDirection) < 0.35)
            return true;
    return false;
  }

  std::vector<StLaying> Layings(const ClFingerCapture& oOther) const {
    std::vector<StLaying> aAll;
    for (const ClFoundMinutia& oA : m_aMinutiae) {
      for (const ClFoundMinutia& oB : oOther.m_aMinutiae) {
        const double dTurn = std::remainder(oB.dDirection - oA.dDirection, 2.0 * Portable::cdPi);
        if (std::fabs(dTurn) > 0.8) continue;
        StLaying oLaying = {oA.dX, oA.dY, oB.dX, oB.dY, dTurn, 0};
        for (const ClFoundMinutia& o : m_aMinutiae) {
          const auto oTo = oLaying(o.dX, o.dY);
          oLaying.nMeet += oOther.Meets(oTo.first, oTo.second, o.dDirection + dTurn);
        }
        aAll.push_back(oLaying);
      }
    }
    const auto itEnd = aAll.begin() + static_cast<ptrdiff_t>(std::min(cnLayings, aAll.size()));
    std::partial_sort(aAll.begin(), itEnd, aAll.end(),
                      [](const StLaying& l, const StLaying& r) { return l.nMeet > r.nMeet; });
    aAll.erase(itEnd, aAll.end());
    return aAll;
  }

  /// The other capture's ridges round a position, turned as these lie.
  void Cut(double dX, double dY, double dTurn, Patch_t& aPatch) const {
    const double dCos = std::cos(dTurn), dSin = std::sin(dTurn), dHalf = cnPatch / 2;
    for (size_t r = 0; r < cnPatch; ++r) {
      for (size_t c = 0; c < cnPatch; ++c) {
        const double dRight = static_cast<double>(c) - dHalf, dDown = static_cast<double>(r) - dHalf;
        const double dAtX = dX + dRight * dCos + dDown * dSin, dAtY = dY - dRight * dSin + dDown * dCos;
        const int nX = static_cast<int>(dAtX), nY = static_cast<int>(dAtY);
        if (!(dAtX >= 0.0 && dAtY >= 0.0 && nX + 1 < cnSide && nY + 1 < cnSide)) {
          aPatch[r][c] = 0.0f;
          continue;
        }
        const float fX = static_cast<float>(dAtX - nX), fY = static_cast<float>(dAtY - nY);
        const float *pTop = m_oRidges.Row(nY) + nX, *pLow = m_oRidges.Row(nY + 1) + nX;
        aPatch[r][c] =
            (pTop[0] + (pTop[1] - pTop[0]) * fX) * (1.0f - fY) + (pLow[0] + (pLow[1] - pLow[0]) * fX) * fY;
      }
    }
  }

  /// The correlation of the square round a sample with a part of a patch.
  float Correlation(int nX, int nY, const Patch_t& aPatch, size_t nRight, size_t nDown) const {
    float fBoth = 0.0f, fHere = 1e-6f, fThere = 1e-6f;
    for (size_t r = 0; r < cnSquare; ++r) {
      const float* pHere = m_oRidges.Row(nY - cnHalf + static_cast<int>(r)) + nX - cnHalf;
      const float* pThere = aPatch[r + nDown].data() + nRight;
      for (size_t c = 0; c < cnSquare; ++c) {
        fBoth += pHere[c] * pThere[c];
        fHere += pHere[c] * pHere[c];
        fThere += pThere[c] * pThere[c];
      }
    }
    return fBoth / std::sqrt(fHere * fThere);
  }

  /// The greatest correlation over all shifts: of every second one, then of those round the best.
  float GreatestCorrelation(int nX, int nY, const Patch_t& aPatch) const {
    float fMost = 0.0f;
    size_t nBestX = 0, nBestY = 0;
    for (size_t v = 0; v <= 2 * cnOff; v += 2) {
      for (size_t u = 0; u <= 2 * cnOff; u += 2) {
        const float f = Correlation(nX, nY, aPatch, u, v);
        if (f > fMost) fMost = f, nBestX = u, nBestY = v;
      }
    }
    for (size_t v = std::max<size_t>(nBestY, 1) - 1; v <= std::min<size_t>(nBestY + 1, 2 * cnOff); ++v)
      for (size_t u = std::max<size_t>(nBestX, 1) - 1; u <= std::min<size_t>(nBestX + 1, 2 * cnOff); ++u)
        fMost = std::max(fMost, Correlation(nX, nY, aPatch, u, v));
    return fMost;
  }

  /// The mean over squares on the skin of both of their greatest correlation.
  double Agreement(const ClFingerCapture& oOther, const StLaying& oLaying) const {
    Patch_t aPatch;
    double dSum = 0.0;
    int nSquares = 0;
    for (int y = cnHalf; y < cnSide; y += cnStep) {
      for (int x = cnHalf; x < cnSide; x += cnStep) {
        if (!OnSkin(x, y)) continue;
        const auto oTo = oLaying(2.0 * x + 0.5, 2.0 * y + 0.5);
        const double dToX = 0.5 * oTo.first - 0.25, dToY = 0.5 * oTo.second - 0.25;
        if (!oOther.OnSkin(static_cast<int>(std::lround(dToX)), static_cast<int>(std::lround(dToY))))
          continue;
        oOther.Cut(dToX, dToY, oLaying.dTurn, aPatch);
        dSum += GreatestCorrelation(x, y, aPatch);
        ++nSquares;
      }
    }
    return dSum / std::max(nSquares, (std::min(m_nSquares, oOther.m_nSquares) + 1) / 2);
  }

  std::vector<ClFoundMinutia> m_aMinutiae;
  std::vector<std::vector<size_t>> m_aCells;
  TpPlane<float> m_oRidges;
  int m_nSquares = 0;
};

}  // namespace Simulator
