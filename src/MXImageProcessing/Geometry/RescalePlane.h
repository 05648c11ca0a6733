// The ways to bring a plane of 8-bit samples to another size in one go.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "MXTools/ImageTypeDispatch.h"

/// Input and output are two one-plane images of element type T; the output has its size.
namespace RescalePlane {

/// Two neighbours on an axis and the share of the second one in 4096.
struct ClPair {
  int m_nFirst;
  int m_nSecond;
  int m_nShare;
};

/// Four neighbours on an axis, the ends repeated; how far each is away and its weight in 4096.
struct ClFour {
  int m_aIndex[4];
  double m_aDistance[4];
  int m_aWeight[4];
};

/// The tables of both axes, kept by their user so that a next run of the same sizes allocates nothing.
struct ClTables {
  std::vector<ClPair> m_aPairsX;
  std::vector<ClPair> m_aPairsY;
  std::vector<ClFour> m_aFoursX;
  std::vector<ClFour> m_aFoursY;
};

/// The sample at the position n * step, 12 fractional bits.
template <typename T>
void Nearest(const ClImage& oIn, int64_t nStepX, int64_t nStepY, ClImage& oOut) {
  for (int y = 0; y < oOut.Height(); ++y) {
    const T* pIn = oIn.Row<T>(static_cast<int>(std::min<int64_t>((y * nStepY) >> 12, oIn.Height() - 1)));
    T* pOut = oOut.Row<T>(y);
    const int64_t nLast = oIn.Width() - 1;
    for (int x = 0; x < oOut.Width(); ++x) pOut[x] = pIn[std::min((x * nStepX) >> 12, nLast)];
  }
}

/// Sets the pairs whose blends lie at the centres of the output's samples. Near the ends, where there is no
/// second neighbour, the outermost sample stands alone.
inline void SetPairs(std::vector<ClPair>& rPairs, int nIn, int nOut) {
  const int64_t nStep = (int64_t{nIn} << 12) / nOut;
  const float fRatio = static_cast<float>(nOut) / static_cast<float>(nIn);
  const int nMargin = static_cast<int>(fRatio * 0.5 + 0.5);
  const auto nStart = static_cast<int64_t>((-0.5 * fRatio + 0.5 + nMargin) * static_cast<double>(nStep));
  rPairs.assign(static_cast<size_t>(nOut), ClPair{0, 0, 0});
  for (int n = 0; n < nOut; ++n) {
    ClPair& rPair = rPairs[static_cast<size_t>(n)];
    if (n >= nOut - nMargin && n >= nMargin) rPair = {nIn - 1, nIn - 1, 0};
    if (n < nMargin || n >= nOut - nMargin) continue;
    const int64_t nPosition = nStart + (n - nMargin) * nStep;
    // The ratio's rounding to single precision may lead one sample too far.
    rPair.m_nFirst = static_cast<int>(std::min<int64_t>(nPosition >> 12, nIn - 1));
    rPair.m_nSecond = std::min(rPair.m_nFirst + 1, nIn - 1);
    rPair.m_nShare = static_cast<int>(nPosition & 4095);
  }
}

/// Blends four samples; the products of weights and the sum are truncated to 12 fractional bits.
template <typename T>
void Bilinear(const ClImage& oIn, ClTables& rTables, ClImage& oOut) {
  SetPairs(rTables.m_aPairsX, oIn.Width(), oOut.Width());
  SetPairs(rTables.m_aPairsY, oIn.Height(), oOut.Height());
  for (int y = 0; y < oOut.Height(); ++y) {
    const ClPair& oY = rTables.m_aPairsY[static_cast<size_t>(y)];
    const T *pUpper = oIn.Row<T>(oY.m_nFirst), *pLower = oIn.Row<T>(oY.m_nSecond);
    T* pOut = oOut.Row<T>(y);
    const int nFy = oY.m_nShare, nWy = 4096 - nFy;
    for (const ClPair& oX : rTables.m_aPairsX) {
      const int nFx = oX.m_nShare, nWx = 4096 - nFx;
      const int nSum = ((nWx * nWy) >> 12) * pUpper[oX.m_nFirst] +
                       ((nFx * nWy) >> 12) * pUpper[oX.m_nSecond] +
                       ((nWx * nFy) >> 12) * pLower[oX.m_nFirst] + ((nFx * nFy) >> 12) * pLower[oX.m_nSecond];
      *pOut++ = static_cast<T>(nSum >> 12);
    }
  }
}

/// The weight of a sample at the distance dR. Keys, Cubic Convolution Interpolation for Digital Image
/// Processing, IEEE ASSP 1981.
inline double CubicWeight(double dR, double dA) {
  if (dR <= 1) return ((dA + 2) * dR - (dA + 3)) * dR * dR + 1;
  return dR <= 2 ? ((dA * dR - 5 * dA) * dR + 8 * dA) * dR - 4 * dA : 0;
}

inline void SetFours(std::vector<ClFour>& rFours, int nIn, int nOut, double dA) {
  rFours.resize(static_cast<size_t>(nOut));
  for (int n = 0; n < nOut; ++n) {
    ClFour& rFour = rFours[static_cast<size_t>(n)];
    const double dPosition = (n + 0.5) * nIn / nOut - 0.5;
    const int nFirst = static_cast<int>(std::floor(dPosition)) - 1;
    for (int k = 0; k < 4; ++k) {
      rFour.m_aIndex[k] = std::clamp(nFirst + k, 0, nIn - 1);
      rFour.m_aDistance[k] = std::fabs(dPosition - (nFirst + k));
      rFour.m_aWeight[k] =
          ElementFromDouble<int16_t>(std::round(CubicWeight(rFour.m_aDistance[k], dA) * 4096));
    }
    // A near neighbour gets what rounding has lost or added, so that flat areas stay as they are.
    rFour.m_aWeight[1] = 4096 - rFour.m_aWeight[0] - rFour.m_aWeight[2] - rFour.m_aWeight[3];
  }
}

/// Weights by the distance in the plane; they do not add up to 1 everywhere.
template <typename T>
void CubicExact(const ClImage& oIn, double dA, ClTables& rTables, ClImage& oOut) {
  SetFours(rTables.m_aFoursX, oIn.Width(), oOut.Width(), dA);
  SetFours(rTables.m_aFoursY, oIn.Height(), oOut.Height(), dA);
  for (int y = 0; y < oOut.Height(); ++y) {
    const ClFour& oY = rTables.m_aFoursY[static_cast<size_t>(y)];
    T* pOut = oOut.Row<T>(y);
    for (const ClFour& oX : rTables.m_aFoursX) {
      double dSum = 0;
      for (int j = 0; j < 4; ++j) {
        const T* pIn = oIn.Row<T>(oY.m_aIndex[j]);
        const double dY = oY.m_aDistance[j];
        for (int i = 0; i < 4; ++i) {
          const double dX = oX.m_aDistance[i];
          dSum += CubicWeight(std::sqrt(dX * dX + dY * dY), dA) * pIn[oX.m_aIndex[i]];
        }
      }
      *pOut++ = ElementFromDouble<T>(dSum);
    }
  }
}

/// Weights by the distance on each axis, in fixed point.
template <typename T>
void CubicFast(const ClImage& oIn, double dA, ClTables& rTables, ClImage& oOut) {
  SetFours(rTables.m_aFoursX, oIn.Width(), oOut.Width(), dA);
  SetFours(rTables.m_aFoursY, oIn.Height(), oOut.Height(), dA);
  constexpr int64_t cnLowest = std::numeric_limits<T>::lowest(), cnHighest = std::numeric_limits<T>::max();
  for (int y = 0; y < oOut.Height(); ++y) {
    const ClFour& oY = rTables.m_aFoursY[static_cast<size_t>(y)];
    T* pOut = oOut.Row<T>(y);
    for (const ClFour& oX : rTables.m_aFoursX) {
      int64_t nSum = 0;
      for (int j = 0; j < 4; ++j) {
        const T* pIn = oIn.Row<T>(oY.m_aIndex[j]);
        int64_t nRow = 0;
        for (int i = 0; i < 4; ++i) nRow += int64_t{oX.m_aWeight[i]} * pIn[oX.m_aIndex[i]];
        nSum += oY.m_aWeight[j] * nRow;
      }
      *pOut++ = static_cast<T>(std::clamp(nSum / (1 << 24), cnLowest, cnHighest));
    }
  }
}

}  // namespace RescalePlane
