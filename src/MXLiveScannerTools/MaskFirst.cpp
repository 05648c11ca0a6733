// Sums of columns that move down the image, and windows over them; each row goes through all steps at once.
#include "MXLiveScannerTools/MaskFirst.h"

#include "MXKernels/DifferenceRows.h"
#include "MXKernels/FirstMaskRows.h"
#include "MXKernels/SmoothRows.h"

using namespace MaskWindows;

namespace {

/// Of a window's pixels, so many may be no finger: the mean of 0 and 255 is then 192 at least.
uint8_t MostZeros(uint32_t nArea) {
  return static_cast<uint8_t>(nArea * 63 / 255);
}

float FogFactor(uint32_t nArea) {
  return 2.0F / static_cast<float>(nArea);
}

size_t WindowWidth(int nHalf) {
  return 2 * static_cast<size_t>(nHalf) + 1;
}

}  // namespace

void ClFirstMask::Start(const ClImage& oSignal, const StLimits& oLimits) {
  m_nWidth = oSignal.Width();
  m_nHeight = oSignal.Height();
  m_oLimits = oLimits;
  m_nDistanceHalf = FittingHalf(7, m_nWidth, m_nHeight);
  m_nNearHalf = FittingHalf(5, m_nWidth, m_nHeight);
  m_nFarHalf = FittingHalf(50, m_nWidth, m_nHeight);
  m_nMaskHalf = FittingHalf(10, m_nWidth, m_nHeight);
  m_oTexture.Start(oSignal, oLimits.oBrightness);
  const auto nCount = static_cast<size_t>(m_nWidth);
  const auto Margin = [](int nHalf) { return static_cast<size_t>(nHalf); };
  m_oDistances.Start(2 * m_nDistanceHalf + 2, nCount, 0);
  m_oNoDistance.Start(1, nCount, 0);
  m_oDistanceSums.Start(1, nCount, 0, Margin(m_nDistanceHalf));
  m_oDistanceWork.Start(1, 80, 0);
  m_oDark.Start(1, nCount, 0);
  m_oNear.Start(1, nCount, 0, Margin(m_nNearHalf));
  m_oFar.Start(1, nCount, 0, Margin(m_nFarHalf));
  m_oFarPrefix.Start(1, nCount + WindowWidth(m_nFarHalf), 0);
  m_oFingers.Start(2 * m_nMaskHalf + 2, nCount, 0);
  m_oAllFinger.Start(1, nCount, 255);
  m_oZeros.Start(1, nCount, 0, Margin(m_nMaskHalf));
  m_oZerosWork.Start(1, nCount + WindowWidth(m_nMaskHalf), 0);
}

void ClFirstMask::Make(const ClImage& oSignal, const ClImage& oEnvelope, const StLimits& oLimits,
                       ClImage& oMask) {
  Start(oSignal, oLimits);
  m_poEnvelope = &oEnvelope;
  oMask.NewWithType(ClImage::eUint8, m_nWidth, m_nHeight, 1, 0, 0, true);
  const auto nCount = static_cast<size_t>(m_nWidth);
  uint8_t* pZeros = m_oZeros.Row(0);
  for (int y = 0; y < m_nHeight; ++y) {
    MoveRows<uint8_t>(
        y, m_nMaskHalf, m_nHeight, m_oAllFinger.Row(0), [this](int n) { return MakeFingerRow(n); },
        [this](int n) { return m_oFingers.Row(n); },
        [&](const uint8_t* pEnter, const uint8_t* pLeave) {
          MXKernels::MoveZerosRow(pEnter, pLeave, pZeros, nCount);
        });
    MXKernels::FewZerosRow(pZeros - m_nMaskHalf, WindowWidth(m_nMaskHalf),
                           m_oZerosLimits.Row(y, m_nMaskHalf, m_nWidth, m_nHeight, MostZeros),
                           m_oZerosWork.Row(0), oMask.Row<uint8_t>(y), nCount);
  }
}

const uint8_t* ClFirstMask::MakeFingerRow(int y) {
  const auto nCount = static_cast<size_t>(m_nWidth);
  const auto Distance = [this](int n) { return m_oDistances.Row(n); };
  uint32_t* pSums = m_oDistanceSums.Row(0);
  MoveRows<uint16_t>(
      y, m_nDistanceHalf, m_nHeight, m_oNoDistance.Row(0),
      [&](int n) {
        m_oTexture.MakeRow(n, Distance(n));
        return Distance(n);
      },
      Distance,
      [&](const uint16_t* pEnter, const uint16_t* pLeave) {
        MXKernels::MoveSumsRow(pEnter, pLeave, pSums, nCount);
      });
  const uint32_t nLimit = m_oLimits.nDistance;
  const uint32_t* pLimits = m_oDistanceLimits.Row(y, m_nDistanceHalf, m_nWidth, m_nHeight,
                                                  [nLimit](uint32_t nArea) { return nLimit * nArea; });
  uint8_t* pFinger = m_oFingers.Row(y);
  const bool bAny = MXKernels::BelowLimitRow(pSums - m_nDistanceHalf, WindowWidth(m_nDistanceHalf), pLimits,
                                             nLimit * Covered(y, m_nDistanceHalf, m_nHeight),
                                             m_oDistanceWork.Row(0), pFinger, nCount);
  TestFog(y, bAny, pFinger);
  return pFinger;
}

/// The sums of columns move in any case; windows are looked at where the texture is that of skin.
void ClFirstMask::TestFog(int y, bool bAny, uint8_t* pFinger) {
  const auto nCount = static_cast<size_t>(m_nWidth);
  const auto Row = [this](int n) { return m_poEnvelope->Row<uint8_t>(n); };
  const auto Move = [&](uint16_t* pSums, int nHalf) {
    MoveRows<uint8_t>(y, nHalf, m_nHeight, m_oDark.Row(0), Row, Row,
                      [=](const uint8_t* pEnter, const uint8_t* pLeave) {
                        MXKernels::MoveLimitedSumsRow(pEnter, pLeave, pSums, nCount, 127);
                      });
  };
  Move(m_oNear.Row(0), m_nNearHalf);
  Move(m_oFar.Row(0), m_nFarHalf);
  const float* pNearFactors = m_oNearFactors.Row(y, m_nNearHalf, m_nWidth, m_nHeight, FogFactor);
  const float* pFarFactors = m_oFarFactors.Row(y, m_nFarHalf, m_nWidth, m_nHeight, FogFactor);
  if (!bAny) return;
  const size_t nNear = WindowWidth(m_nNearHalf), nFar = WindowWidth(m_nFarHalf);
  MXKernels::PrefixSumsRow(m_oFar.Row(0) - m_nFarHalf, m_oFarPrefix.Row(0), nCount + nFar - 1);
  MXKernels::FogRow(
      {m_oNear.Row(0) - m_nNearHalf, nNear, pNearFactors, m_oFarPrefix.Row(0), nFar, pFarFactors},
      m_oLimits.nFog, pFinger, nCount);
}
