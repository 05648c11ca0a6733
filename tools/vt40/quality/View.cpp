// Maps between pixels, platen and sheet.
#include "quality/View.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double cdPictureSide = 1600;
constexpr double cdPlatenMm = 81.28;
constexpr double cdFullPerMm = cdPictureSide / cdPlatenMm;

}  // namespace

bool Solve(std::vector<double>& aMatrix, std::vector<double>& aRight) {
  const size_t nSide = aRight.size();
  const auto At = [&](size_t nRow, size_t nColumn) -> double& { return aMatrix[nRow * nSide + nColumn]; };
  for (size_t n = 0; n < nSide; ++n) {
    size_t nBest = n;
    for (size_t i = n + 1; i < nSide; ++i)
      if (std::fabs(At(i, n)) > std::fabs(At(nBest, n))) nBest = i;
    if (!(std::fabs(At(nBest, n)) > 1e-12)) return false;
    for (size_t k = 0; k < nSide; ++k) std::swap(At(n, k), At(nBest, k));
    std::swap(aRight[n], aRight[nBest]);
    for (size_t i = 0; i < nSide; ++i) {
      if (i == n) continue;
      const double dFactor = At(i, n) / At(n, n);
      for (size_t k = n; k < nSide; ++k) At(i, k) -= dFactor * At(n, k);
      aRight[i] -= dFactor * aRight[n];
    }
  }
  for (size_t n = 0; n < nSide; ++n) aRight[n] /= At(n, n);
  return true;
}

ClCubic::ClCubic() {
  m_aX[1] = m_aY[2] = 1;
}

std::array<double, ClCubic::cnTerms> ClCubic::Terms(const StPoint& o) const {
  const double dX = (o.dX - m_oMiddle.dX) * m_dScale, dY = (o.dY - m_oMiddle.dY) * m_dScale;
  return {1, dX, dY, dX * dX, dX * dY, dY * dY, dX * dX * dX, dX * dX * dY, dX * dY * dY, dY * dY * dY};
}

ClCubic::ClCubic(const std::vector<StPoint>& aFrom, const std::vector<StPoint>& aTo) {
  StPoint oLow = aFrom[0], oHigh = aFrom[0];
  for (const StPoint& o : aFrom) {
    oLow = {std::min(oLow.dX, o.dX), std::min(oLow.dY, o.dY)};
    oHigh = {std::max(oHigh.dX, o.dX), std::max(oHigh.dY, o.dY)};
  }
  m_oMiddle = {(oLow.dX + oHigh.dX) / 2, (oLow.dY + oHigh.dY) / 2};
  m_dScale = 2 / std::max({oHigh.dX - oLow.dX, oHigh.dY - oLow.dY, 1e-9});
  std::vector<double> aMatrix(cnTerms * cnTerms), aX(cnTerms), aY(cnTerms);
  for (size_t n = 0; n < aFrom.size(); ++n) {
    const auto aTerms = Terms(aFrom[n]);
    for (size_t i = 0; i < cnTerms; ++i) {
      for (size_t k = 0; k < cnTerms; ++k) aMatrix[i * cnTerms + k] += aTerms[i] * aTerms[k];
      aX[i] += aTerms[i] * aTo[n].dX;
      aY[i] += aTerms[i] * aTo[n].dY;
    }
  }
  std::vector<double> aCopy = aMatrix;
  Solve(aMatrix, aX);
  Solve(aCopy, aY);
  std::copy(aX.begin(), aX.end(), m_aX.begin());
  std::copy(aY.begin(), aY.end(), m_aY.begin());
}

StPoint ClCubic::At(const StPoint& o) const {
  const auto aTerms = Terms(o);
  StPoint oAt{0, 0};
  for (size_t n = 0; n < cnTerms; ++n) {
    oAt.dX += m_aX[n] * aTerms[n];
    oAt.dY += m_aY[n] * aTerms[n];
  }
  return oAt;
}

StPoint StSheetPlace::ToSheet(const StPoint& o) const {
  const double dU = o.dX - dX, dV = o.dY - dY, dCos = std::cos(dTurn), dSin = std::sin(dTurn);
  return {dU * dCos - dV * dSin, dU * dSin + dV * dCos};
}

StPoint StSheetPlace::ToPlaten(const StPoint& o) const {
  const double dCos = std::cos(dTurn), dSin = std::sin(dTurn);
  return {dX + o.dX * dCos + o.dY * dSin, dY + o.dY * dCos - o.dX * dSin};
}

StPoint StView::ToPlaten(const StPoint& oPixel) const {
  const StPoint o = bRaw ? oToPlaten.At(oPixel) : oPixel;
  const double dPerMm = bRaw ? cdFullPerMm : dPixelsPerMm;
  return {(o.dX + 0.5) / dPerMm, (o.dY + 0.5) / dPerMm};
}

StPoint StView::ToPixel(const StPoint& oPlatenMm) const {
  const double dPerMm = bRaw ? cdFullPerMm : dPixelsPerMm;
  const StPoint o{oPlatenMm.dX * dPerMm - 0.5, oPlatenMm.dY * dPerMm - 0.5};
  return bRaw ? oToPixel.At(o) : o;
}

std::vector<StSample> SamplesIn(const StView& oView, const StSheetPlace& oPlace, const StPoint& oMiddle,
                                double dHalfX, double dHalfY) {
  double dLeft = 1e9, dTop = 1e9, dRight = -1e9, dBottom = -1e9;
  for (const double dU : {-dHalfX, dHalfX}) {
    for (const double dV : {-dHalfY, dHalfY}) {
      const StPoint o = oView.ToPixel(oPlace.ToPlaten({oMiddle.dX + dU, oMiddle.dY + dV}));
      dLeft = std::min(dLeft, o.dX);
      dRight = std::max(dRight, o.dX);
      dTop = std::min(dTop, o.dY);
      dBottom = std::max(dBottom, o.dY);
    }
  }
  const auto Inside = [](double d, unsigned int nSize) {
    return static_cast<unsigned int>(std::clamp(d, 0.0, static_cast<double>(nSize)));
  };
  const ClPicture& oPicture = *oView.pPicture;
  std::vector<StSample> aSamples;
  for (unsigned int y = Inside(dTop - 1, oPicture.nHeight); y < Inside(dBottom + 2, oPicture.nHeight); ++y) {
    for (unsigned int x = Inside(dLeft - 1, oPicture.nWidth); x < Inside(dRight + 2, oPicture.nWidth); ++x) {
      const StPoint o = oPlace.ToSheet(oView.ToPlaten({static_cast<double>(x), static_cast<double>(y)}));
      const double dU = o.dX - oMiddle.dX, dV = o.dY - oMiddle.dY;
      if (std::fabs(dU) <= dHalfX && std::fabs(dV) <= dHalfY)
        aSamples.push_back({dU, dV, static_cast<double>(oPicture.Row(y)[x])});
    }
  }
  return aSamples;
}

double Percentile99(std::vector<double>& aValues) {
  std::sort(aValues.begin(), aValues.end());
  return aValues[static_cast<size_t>(std::ceil(0.99 * static_cast<double>(aValues.size()))) - 1];
}
