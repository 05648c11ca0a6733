// The light that each sensor pixel of a mode collects from the platen.
#include "sensor/Signal.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include "sensor/Light.h"

namespace Simulator {
namespace {

/// Samples along one side of a merged pixel: enough that they are at most a picture pixel apart. A
/// full sensor pixel is 0.48 picture pixels wide and 0.65 high.
int SamplesAcross(int nMerge) {
  return std::max(1, nMerge / 2);
}
int SamplesDown(int nMerge) {
  return nMerge == 1 ? 1 : nMerge == 2 ? 2 : 3;
}

/// The deviation of the point spread and of a pixel's area together, on the platen.
double SpreadMm(double dPixels, double dPixelMm) {
  return dPixelMm * std::sqrt(dPixels * dPixels + 1.0 / 12.0);
}

}  // namespace

ClSignal::ClNode ClSignal::Between(const ClNode& a, const ClNode& b, float f) noexcept {
  return {a.fX + (b.fX - a.fX) * f, a.fY + (b.fY - a.fY) * f, a.fLight + (b.fLight - a.fLight) * f};
}

void ClSignal::Free() {
  m_oSignal.Free();
  std::vector<ClNode>().swap(m_aAbove);
  std::vector<ClNode>().swap(m_aBelow);
  std::vector<uint32_t>().swap(m_aSum);
}

/// Where the ends of the runs of a row lie in the picture. The row is counted in rows of the mode; a node is
/// the middle of a pixel's upper left sample, so that the other samples are reached by plain offsets.
void ClSignal::LookThrough(const ClOptics& oOptics, const ClSensorMode& oMode, int nRow,
                           std::vector<ClNode>& aNodes) const {
  for (size_t i = 0; i < aNodes.size(); ++i) {
    const double dX = oMode.nLeft + (static_cast<double>(i) * m_cnRun) * oMode.nMergeX - 0.5;
    const double dY = oMode.nTop + static_cast<double>(nRow) * oMode.nMergeY - 0.5;
    const ClPoint oPlace = oOptics.SensorToPicture(dX, dY);
    aNodes[i] = {static_cast<float>(oPlace.dX), static_cast<float>(oPlace.dY),
                 static_cast<float>(oOptics.Illumination(oPlace.dX, oPlace.dY))};
  }
}

void ClSignal::Render(const ClReflectance& oReflectance, const ClOptics& oOptics, const ClSensorMode& oMode) {
  if (m_oSignal.Width() != oMode.nWidth || m_oSignal.Height() != oMode.nHeight)
    m_oSignal.Resize(oMode.nWidth, oMode.nHeight);
  const size_t nNodes = static_cast<size_t>((oMode.nWidth + m_cnRun - 1) / m_cnRun) + 1;
  m_aAbove.resize(nNodes);
  m_aBelow.resize(nNodes);
  m_aSum.resize(m_cnRun);
  std::optional<ClSheetView> oView;
  if (oReflectance.Sheet())
    oView.emplace(*oReflectance.Sheet(), SpreadMm(oOptics.Spread().dX, oOptics.PixelMm().dX),
                  SpreadMm(oOptics.Spread().dY, oOptics.PixelMm().dY));
  LookThrough(oOptics, oMode, 0, m_aBelow);
  for (int y = 0; y < oMode.nHeight; ++y) {
    if (y % m_cnRun == 0) {
      m_aAbove.swap(m_aBelow);
      LookThrough(oOptics, oMode, y + m_cnRun, m_aBelow);
    }
    if (oView)
      RenderSheetRow(*oView, oMode, y);
    else
      RenderRow(oReflectance, oMode, y);
  }
}

void ClSignal::RenderSheetRow(const ClSheetView& oView, const ClSensorMode& oMode, int nRow) {
  const float fPixelMm = static_cast<float>(cdPixelMm), fMerge = static_cast<float>(oMode.nMergeX);
  const float fRidge =
      static_cast<float>(cdRidgeLevel * cnSignalSteps) / (fMerge * static_cast<float>(oMode.nMergeY));
  const float fStray = static_cast<float>(cdStrayLevel * cnSignalSteps);
  uint16_t* pOut = m_oSignal.Row(nRow);
  for (size_t i = 0; i + 1 < m_aAbove.size(); ++i) {
    const int nFirst = static_cast<int>(i) * m_cnRun, nCount = std::min(m_cnRun, oMode.nWidth - nFirst);
    std::array<float, m_cnRun> afSum{};
    ClNode oLeft{}, oRight{};
    for (int v = 0; v < oMode.nMergeY; ++v) {
      const float fDown = (static_cast<float>(nRow % m_cnRun) +
                           (static_cast<float>(v) + 0.5F) / static_cast<float>(oMode.nMergeY)) /
                          m_cnRun;
      oLeft = Between(m_aAbove[i], m_aBelow[i], fDown);
      oRight = Between(m_aAbove[i + 1], m_aBelow[i + 1], fDown);
      for (int n = 0; n < nCount * oMode.nMergeX; ++n) {
        const ClNode o = Between(oLeft, oRight, (static_cast<float>(n) + 0.5F) / (fMerge * m_cnRun));
        afSum[static_cast<size_t>(n / oMode.nMergeX)] +=
            oView.LightAt((o.fX + 0.5F) * fPixelMm, (o.fY + 0.5F) * fPixelMm);
      }
    }
    for (int k = 0; k < nCount; ++k) {
      const float fLight = oLeft.fLight + (oRight.fLight - oLeft.fLight) * static_cast<float>(k) / m_cnRun;
      pOut[nFirst + k] = static_cast<uint16_t>(fLight * (fStray + fRidge * afSum[static_cast<size_t>(k)]));
    }
  }
}

void ClSignal::RenderRow(const ClReflectance& oReflectance, const ClSensorMode& oMode, int nRow) {
  const int nAcross = SamplesAcross(oMode.nMergeX), nDown = SamplesDown(oMode.nMergeY);
  // Sums are in steps of 1/256 of reflectance; the ridge level stands for 255.
  const float fRidge = static_cast<float>(cdRidgeLevel * cnSignalSteps / (255.0 * 256.0 * nAcross * nDown));
  const float fStray = static_cast<float>(cdStrayLevel * cnSignalSteps);
  const int nInBlock = nRow % m_cnRun;
  uint16_t* pOut = m_oSignal.Row(nRow);
  for (size_t i = 0; i + 1 < m_aAbove.size(); ++i) {
    const int nFirst = static_cast<int>(i) * m_cnRun, nCount = std::min(m_cnRun, oMode.nWidth - nFirst);
    const float fMid = (static_cast<float>(nInBlock) + 0.5f) / m_cnRun;
    const ClNode oFirst = Between(m_aAbove[i], m_aBelow[i], fMid);
    const ClNode oLast = Between(m_aAbove[i + 1], m_aBelow[i + 1], fMid);
    std::fill_n(m_aSum.begin(), nCount, 0u);
    const int nMarginY = oMode.nMergeY + 2;
    if (oReflectance.Occupied(static_cast<int>(std::min(oFirst.fX, oLast.fX)) - 2,
                              static_cast<int>(std::min(oFirst.fY, oLast.fY)) - nMarginY,
                              static_cast<int>(std::max(oFirst.fX, oLast.fX)) + 2,
                              static_cast<int>(std::max(oFirst.fY, oLast.fY)) + nMarginY)) {
      for (int v = 0; v < nDown; ++v) {
        const float fRow =
            (static_cast<float>(nInBlock) + (static_cast<float>(v) + 0.5f) / static_cast<float>(nDown)) /
            m_cnRun;
        const ClNode oLeft = Between(m_aAbove[i], m_aBelow[i], fRow);
        const ClNode oRight = Between(m_aAbove[i + 1], m_aBelow[i + 1], fRow);
        for (int u = 0; u < nAcross; ++u)
          Collect(oReflectance, oLeft, oRight, (u + 0.5) / nAcross, nCount, m_aSum.data());
      }
    }
    float fLight = oFirst.fLight;
    const float fLightStep = (oLast.fLight - oFirst.fLight) / m_cnRun;
    for (int k = 0; k < nCount; ++k, fLight += fLightStep) {
      const float fSeen = fRidge * static_cast<float>(m_aSum[static_cast<size_t>(k)]);
      pOut[nFirst + k] = static_cast<uint16_t>(fLight * (fStray + fSeen));
    }
  }
}

/// Adds one bilinear sample, in 1/256 steps, for each pixel of a run; dOffset is its position across the
/// pixel.
void ClSignal::Collect(const ClReflectance& oReflectance, const ClNode& oFirst, const ClNode& oLast,
                       double dOffset, int nCount, uint32_t* pSum) const noexcept {
  const double dStepX = (static_cast<double>(oLast.fX) - oFirst.fX) / m_cnRun;
  const double dStepY = (static_cast<double>(oLast.fY) - oFirst.fY) / m_cnRun;
  int nX = static_cast<int>(std::floor((oFirst.fX + dStepX * dOffset) * 65536.0 + 0.5));
  int nY = static_cast<int>(std::floor((oFirst.fY + dStepY * dOffset) * 65536.0 + 0.5));
  const int nStepX = static_cast<int>(std::floor(dStepX * 65536.0 + 0.5));
  const int nStepY = static_cast<int>(std::floor(dStepY * 65536.0 + 0.5));
  const unsigned nLimit = static_cast<unsigned>(cnPictureSide - 1);
  const uint8_t* pPicture = oReflectance.Picture().Data();
  for (int k = 0; k < nCount; ++k, nX += nStepX, nY += nStepY) {
    int nColumn = nX >> 16, nRow = nY >> 16;
    if (static_cast<unsigned>(nColumn) >= nLimit || static_cast<unsigned>(nRow) >= nLimit) {
      if (!oReflectance.GoesOn()) continue;
      nColumn = std::clamp(nColumn, 0, cnPictureSide - 2);
      nRow = std::clamp(nRow, 0, cnPictureSide - 2);
    }
    const uint8_t* p = pPicture + static_cast<size_t>(nRow) * cnPictureSide + static_cast<size_t>(nColumn);
    const unsigned nA = (static_cast<unsigned>(nX) >> 8) & 255u, nB = (static_cast<unsigned>(nY) >> 8) & 255u;
    const unsigned nTop = p[0] * (256u - nA) + p[1] * nA;
    const unsigned nLow = p[cnPictureSide] * (256u - nA) + p[cnPictureSide + 1] * nA;
    pSum[k] += (nTop * (256u - nB) + nLow * nB) >> 8;
  }
}

}  // namespace Simulator
