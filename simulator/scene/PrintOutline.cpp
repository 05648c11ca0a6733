// The outline of the skin that a finger presses on the glass.
#include "scene/PrintOutline.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "portable/Math.h"
#include "scene/Platen.h"
#include "scene/SmoothNoise.h"

namespace Simulator {
namespace {

// The outline is smooth: it is looked at every so many pixels only.
constexpr int cnStep = 4;

/// (dA^dPower + dB^dPower)^(1 / dPower) for values from 0 on.
double PowerSum(double dA, double dB, double dPower) {
  const double dLarge = std::max(dA, dB), dSmall = std::min(dA, dB);
  if (dSmall <= 1e-9) return dLarge;
  const double dRatio = Portable::Exp(dPower * Portable::Log(dSmall / dLarge));
  return dLarge * Portable::Exp(Portable::Log(1.0 + dRatio) / dPower);
}

}  // namespace

ClPrintOutline::ClPrintOutline(const ClPrintDescription& oDescription)
    : m_nSeed(oDescription.nSeed), m_dHalfHeight(0.5 * oDescription.dHeightMm) {
  ClRandom oRandom(Mix(m_nSeed, 0x45646765));
  const double dUneven = oRandom.Range(-0.05, 0.05);
  m_dHalfLeft = 0.5 * oDescription.dWidthMm * (1.0 + dUneven);
  m_dHalfRight = 0.5 * oDescription.dWidthMm * (1.0 - dUneven);
  m_dTipPower = oRandom.Range(1.85, 2.35);
  m_dLowPower = oRandom.Range(2.1, 3.4);
  m_dLean = oRandom.Range(-0.05, 0.05);
  for (int i = 0; i < cnBulges; ++i) {
    m_adBulge[i] = oRandom.Range(0.0, 0.034) / std::sqrt(1.0 + i);
    m_adPhase[i] = oRandom.Range(0.0, 2.0 * Portable::cdPi);
  }
}

double ClPrintOutline::Distance(double dX, double dY) const {
  // Halves of different width meet beside the middle, so that the whole lies in the middle.
  const double dAside = dX - m_dLean * dY - 0.5 * (m_dHalfLeft - m_dHalfRight);
  const double dA = std::fabs(dAside) / (dAside < 0.0 ? m_dHalfLeft : m_dHalfRight),
               dB = std::fabs(dY) / m_dHalfHeight;
  const double dPlain = PowerSum(dA, dB, dY > 0.0 ? m_dTipPower : m_dLowPower);
  if (dPlain < 0.3) return dPlain;
  const double dAngle = Portable::Atan2(dY, dAside);
  double dBulge = 0.0;
  for (int i = 0; i < cnBulges; ++i)
    dBulge += m_adBulge[i] * Portable::Cos((i + 2.0) * dAngle + m_adPhase[i]);
  return dPlain * (1.0 - dBulge * std::min(1.0, 2.0 * (dPlain - 0.3)));
}

TpPlane<uint8_t> ClPrintOutline::Depth(int nWidth, int nHeight) const {
  const int nKnots = nWidth / cnStep + 2;
  std::vector<float> aAbove(static_cast<size_t>(nKnots)), aBelow(aAbove),
      aRow(static_cast<size_t>(nKnots * cnStep));
  const auto Knots = [&](int nRow, std::vector<float>& aOut) {
    const double dY = (0.5 * nHeight - nRow * cnStep - 0.5) * cdPixelMm;
    for (int k = 0; k < nKnots; ++k)
      aOut[static_cast<size_t>(k)] =
          static_cast<float>(Distance((k * cnStep + 0.5 - 0.5 * nWidth) * cdPixelMm, dY));
  };
  ClNoiseRows oEdge(Mix(m_nSeed, 4), 30, nWidth), oFringe(Mix(m_nSeed, 5), 5, nWidth);
  TpPlane<uint8_t> oDepth(nWidth, nHeight);
  Knots(0, aBelow);
  for (int y = 0; y < nHeight; ++y) {
    if (y % cnStep == 0) {
      aAbove.swap(aBelow);
      Knots(y / cnStep + 1, aBelow);
    }
    const float fDown = static_cast<float>(y % cnStep) / cnStep;
    for (size_t k = 0; k + 1 < aAbove.size(); ++k) {
      const float fLeft = aAbove[k] + (aBelow[k] - aAbove[k]) * fDown;
      const float fRight = aAbove[k + 1] + (aBelow[k + 1] - aAbove[k + 1]) * fDown;
      for (int i = 0; i < cnStep; ++i)
        aRow[k * cnStep + static_cast<size_t>(i)] =
            fLeft + (fRight - fLeft) * (static_cast<float>(i) / cnStep);
    }
    oEdge.Add(y, 0.02f, aRow.data());
    oFringe.Add(y, 0.012f, aRow.data());
    uint8_t* pOut = oDepth.Row(y);
    for (int x = 0; x < nWidth; ++x)
      pOut[x] = static_cast<uint8_t>(
          std::clamp((1.12f - aRow[static_cast<size_t>(x)]) * (255.0f / 0.5f), 0.0f, 255.0f));
  }
  return oDepth;
}

}  // namespace Simulator
