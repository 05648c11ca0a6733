// Counts the classes of a window that moves down the image.
#include "MXLiveScannerTools/MaskTexture.h"

#include <cmath>
#include <cstdlib>

#include "MXKernels/MaskRows.h"
#include "MXLiveScannerTools/IpComputeLBPImage_4Neighborhood.h"

using namespace MaskWindows;

namespace {

constexpr int cnTextureWindowHalf = static_cast<int>(MXKernels::cnTextureHalf);
constexpr int cnCounted = static_cast<int>(MXKernels::cnCountedClasses);
/// The class of pixels that have none: those at the image's border and outside it.
constexpr uint8_t cnNoClass = 255;
// The level of each class on the scale where a window full of one class counts 255; their sum is 255.
constexpr uint8_t g_anSkin[ClIpComputeLBPImage_4Neighborhood::cnClasses] = {36, 49, 92, 44, 23, 11};

/// How many pixels of the window around n have a neighbour on both sides.
uint32_t CoveredInner(int n, int nExtent) {
  return Covered(n, cnTextureWindowHalf, nExtent) - (n <= cnTextureWindowHalf ? 1 : 0) -
         (n >= nExtent - 1 - cnTextureWindowHalf ? 1 : 0);
}

}  // namespace

void ClMaskTexture::Start(const ClImage& oSignal, const MXKernels::BrightnessLimits& oLimits) {
  m_poSignal = &oSignal;
  m_oLimits = oLimits;
  m_nInnerRows = 0;
  // The kernel takes whole vectors.
  const size_t nPadded = (static_cast<size_t>(oSignal.Width()) + 63) / 64 * 64;
  m_oClasses.Start(2 * cnTextureWindowHalf + 2, nPadded, cnNoClass);
  m_oNone.Start(1, nPadded, cnNoClass);
  m_oCounts.Start(cnCounted, nPadded, 0, 64);
  m_oTriples.Start(cnCounted, nPadded, 0, 64);
  m_oInner.Start(1, nPadded, 0);
}

const uint8_t* ClMaskTexture::MakeClasses(int y) {
  const ClImage& oIn = *m_poSignal;
  const int nWidth = oIn.Width();
  if (y == 0 || y == oIn.Height() - 1 || nWidth < 3) return m_oNone.Row(0);
  uint8_t* pClasses = m_oClasses.Row(y);
  MXKernels::TextureClassRow(oIn.Row<uint8_t>(y - 1) + 1, oIn.Row<uint8_t>(y) + 1,
                             oIn.Row<uint8_t>(y + 1) + 1, pClasses + 1, static_cast<size_t>(nWidth) - 2,
                             ClIpComputeLBPImage_4Neighborhood::m_anMapping);
  return pClasses;
}

void ClMaskTexture::MakeRow(int y, uint16_t* pDistance) {
  const int nWidth = m_poSignal->Width(), nHeight = m_poSignal->Height();
  if (FittingHalf(cnTextureWindowHalf, nWidth, nHeight) == 0) return MakeRowOfSmallImage(y, pDistance);
  const auto Leave = [&](int n) { return n == 0 ? m_oNone.Row(0) : m_oClasses.Row(n); };
  MoveRows<uint8_t>(
      y, cnTextureWindowHalf, nHeight, m_oNone.Row(0), [this](int n) { return MakeClasses(n); }, Leave,
      [this](const uint8_t* pEnter, const uint8_t* pLeave) {
        MXKernels::MoveClassCountsRow(pEnter, pLeave, m_oCounts.Row(0), m_oTriples.Row(0), m_oCounts.Stride(),
                                      m_oClasses.Stride());
      });
  CountInner(y);
  const MXKernels::TextureWindows oWindows{
      m_oTriples.Row(0), m_oTriples.Stride(), m_oInner.Row(0),
      m_oFactors.Row(y, cnTextureWindowHalf, nWidth, nHeight, MXKernels::TextureFactor), g_anSkin};
  MXKernels::TextureDistanceRow(oWindows, m_poSignal->Row<uint8_t>(y), m_oLimits, pDistance,
                                static_cast<size_t>(nWidth));
}

void ClMaskTexture::CountInner(int y) {
  const uint32_t nRows = CoveredInner(y, m_poSignal->Height());
  if (nRows == m_nInnerRows) return;
  m_nInnerRows = nRows;
  const int nWidth = m_poSignal->Width();
  uint8_t* pInner = m_oInner.Row(0);
  for (int x = 0; x < nWidth; ++x) pInner[x] = static_cast<uint8_t>(nRows * CoveredInner(x, nWidth));
}

/// A window has just its own pixel there.
void ClMaskTexture::MakeRowOfSmallImage(int y, uint16_t* pDistance) {
  const int nWidth = m_poSignal->Width();
  const uint8_t* pSignal = m_poSignal->Row<uint8_t>(y);
  const uint8_t* pClasses = MakeClasses(y);
  for (int x = 0; x < nWidth; ++x) {
    const int nClass = x == 0 || x == nWidth - 1 ? cnNoClass : pClasses[x];
    int nSum = 0;
    for (int n = 0; n <= cnCounted; ++n) {
      const int nDifference = (n == nClass ? 255 : 0) - g_anSkin[n];
      nSum += nDifference * nDifference / 6;
    }
    const auto nRoot = static_cast<uint16_t>(std::sqrt(static_cast<double>(nSum)) * 256);
    const uint16_t nBright = pSignal[x] > m_oLimits.m_nFront ? uint16_t{0} : nRoot;
    pDistance[x] = pSignal[x] < m_oLimits.m_nBack ? m_oLimits.m_nLimit : nBright;
  }
}
