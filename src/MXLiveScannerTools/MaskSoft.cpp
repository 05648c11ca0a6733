// Counts the zeros around each pixel of a mask.
#include "MXLiveScannerTools/MaskSoft.h"

#include "MXKernels/ComposeRows.h"
#include "MXKernels/FirstMaskRows.h"
#include "MXKernels/LayoutRows.h"
#include "MXKernels/TextureRows.h"

namespace {

/// Half the widths of the windows, and how far the wider one reaches in pixels that are not doubled.
constexpr int cnSoftHalf = 3;
constexpr int cnDoubledHalf = 7;
constexpr int cnReach = 4;

uint8_t AreaOf(uint32_t nArea) {
  return static_cast<uint8_t>(nArea);
}

}  // namespace

void ClSoftMask::Start(const ClImage& oMask, bool bDoubled) {
  m_poMask = &oMask;
  m_bDoubled = bDoubled;
  const int nHalf = bDoubled ? cnDoubledHalf : cnSoftHalf, nScale = bDoubled ? 2 : 1;
  m_bFits = MaskWindows::FittingHalf(nHalf, nScale * oMask.Width(), nScale * oMask.Height()) != 0;
  const auto nCount = static_cast<size_t>(oMask.Width());
  m_oAllSet.Start(1, nCount, 255);
  m_oZeros.Start(1, nCount, 0, cnReach);
  m_oDoubledZeros.Start(1, nCount, 0, cnReach);
  m_oSoft.Start(1, 2 * nCount, 0);
}

void ClSoftMask::CountZeros(int y) {
  const auto MaskRow = [this](int n) { return m_poMask->Row<uint8_t>(n); };
  MaskWindows::MoveRows<uint8_t>(y, cnSoftHalf, m_poMask->Height(), m_oAllSet.Row(0), MaskRow, MaskRow,
                                 [this](const uint8_t* pEnter, const uint8_t* pLeave) {
                                   MXKernels::MoveZerosRow(pEnter, pLeave, m_oZeros.Row(0),
                                                           static_cast<size_t>(m_poMask->Width()));
                                 });
}

const uint8_t* ClSoftMask::Row(int y) {
  if (m_bDoubled) return DoubledRow(y);
  if (!m_bFits) return m_poMask->Row<uint8_t>(y);
  CountZeros(y);
  const int nWidth = m_poMask->Width(), nHeight = m_poMask->Height();
  MXKernels::SoftRow({m_oZeros.Row(0) - cnReach, m_oAreas.Row(y, cnSoftHalf, nWidth, nHeight, AreaOf),
                      m_oFactors.Row(y, cnSoftHalf, nWidth, nHeight, MXKernels::SoftFactor)},
                     m_oSoft.Row(0), static_cast<size_t>(nWidth));
  return m_oSoft.Row(0);
}

/// A window of 15 rows holds 7 rows of the mask twice, and once the next one above or below them.
const uint8_t* ClSoftMask::DoubledRow(int y) {
  const auto nCount = static_cast<size_t>(m_poMask->Width());
  const int nRow = y / 2, nOther = y % 2 == 0 ? nRow - cnReach : nRow + cnReach;
  if (!m_bFits) {
    MXKernels::ScaleUpRow(m_poMask->Row<uint8_t>(nRow), m_oSoft.Row(0), nCount);
    return m_oSoft.Row(0);
  }
  if (y % 2 == 0) CountZeros(nRow);
  const bool bExists = nOther >= 0 && nOther < m_poMask->Height();
  MXKernels::DoubleZerosRow(m_oZeros.Row(0), bExists ? m_poMask->Row<uint8_t>(nOther) : m_oAllSet.Row(0),
                            m_oDoubledZeros.Row(0), nCount);
  const int nWidth = 2 * m_poMask->Width(), nHeight = 2 * m_poMask->Height();
  MXKernels::DoubledSoftRow(
      {m_oDoubledZeros.Row(0) - cnReach, m_oAreas.Row(y, cnDoubledHalf, nWidth, nHeight, AreaOf),
       m_oFactors.Row(y, cnDoubledHalf, nWidth, nHeight, MXKernels::TextureFactor)},
      m_oSoft.Row(0), nCount);
  return m_oSoft.Row(0);
}
