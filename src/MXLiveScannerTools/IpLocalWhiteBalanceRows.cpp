// Rows of sums that enter and leave the windows.
#include "MXLiveScannerTools/IpLocalWhiteBalanceRows.h"

#include <algorithm>

#include "MXKernels/DifferenceRows.h"
#include "MXKernels/MosaicRows.h"
#include "MXTools/FpImage.h"

bool ClIpLocalWhiteBalanceRows::Fits(const ClImage& oIn, int nFilterWidth) {
  const int64_t nWidth = nFilterWidth | 1;
  return nWidth <= oIn.Width() / 2 && nWidth <= oIn.Height() / 2 &&
         nWidth * nWidth <= MXKernels::cnMaxBalanceArea;
}

void ClIpLocalWhiteBalanceRows::Begin(const ClImage& oIn, int nFilterWidth) {
  m_pIn = &oIn;
  m_nHalf = nFilterWidth / 2;
  m_nCellRow = 0;
  m_nWindowRows = 0;
  const size_t nWidth = static_cast<size_t>(oIn.Width());
  const size_t nHalf = static_cast<size_t>(m_nHalf);
  // One row more than a window has: a row enters before the one that it replaces has left.
  m_aaRing.resize(2 * (2 * nHalf + 2));
  for (Sums& aSums : m_aaRing) aSums.resize(nWidth);
  m_aNone.assign(nWidth, 0);
  m_aWork.resize(nWidth + 4 * nHalf + 2);
  m_aPerArea.resize(nWidth);
  for (auto& aWindows : m_aWindows) aWindows.assign(nWidth, 0);
  for (int nCellRow = 0; nCellRow < m_nHalf; ++nCellRow) {
    AddRow(nCellRow);
    for (const int n : {0, 1}) {
      MXKernels::AddToSumsRow(SumsOf(nCellRow, n).data(), m_aWindows[n].data(), nWidth);
    }
  }
}

void ClIpLocalWhiteBalanceRows::Next(uint8_t* pUpper, uint8_t* pLower) {
  const int nCellRows = m_pIn->Height() / 2;
  const int nEnter = m_nCellRow + m_nHalf, nLeave = m_nCellRow - m_nHalf - 1;
  if (nEnter < nCellRows) AddRow(nEnter);
  SetAreas(std::min(nEnter + 1, nCellRows) - std::max(nLeave + 1, 0));
  MXKernels::BalancePair oPair = {};
  for (const int n : {0, 1}) {
    oPair.m_apEnter[n] = (nEnter < nCellRows ? SumsOf(nEnter, n) : m_aNone).data();
    oPair.m_apLeave[n] = (nLeave >= 0 ? SumsOf(nLeave, n) : m_aNone).data();
    oPair.m_apSums[n] = m_aWindows[n].data();
    oPair.m_apIn[n] = m_pIn->Row<uint8_t>(2 * m_nCellRow + n);
  }
  oPair.m_pPerArea = m_aPerArea.data();
  oPair.m_apOut[0] = pUpper;
  oPair.m_apOut[1] = pLower;
  MXKernels::BalancePairRow(oPair, m_aPerArea.size());
  ++m_nCellRow;
}

ClIpLocalWhiteBalanceRows::Sums& ClIpLocalWhiteBalanceRows::SumsOf(int nCellRow, int nRow) {
  const int nKept = nCellRow % (2 * m_nHalf + 2);
  return m_aaRing[2 * static_cast<size_t>(nKept) + static_cast<size_t>(nRow)];
}

void ClIpLocalWhiteBalanceRows::AddRow(int nCellRow) {
  for (const int n : {0, 1}) {
    MXKernels::PhaseSumsRow(m_pIn->Row<uint8_t>(2 * nCellRow + n), m_aPerArea.size(),
                            static_cast<size_t>(m_nHalf), m_aWork.data(), SumsOf(nCellRow, n).data());
  }
}

void ClIpLocalWhiteBalanceRows::SetAreas(int nRows) {
  if (nRows == m_nWindowRows) return;
  m_nWindowRows = nRows;
  const int nCells = m_pIn->Width() / 2;
  std::fill(m_aPerArea.begin(), m_aPerArea.end(), 1.0F / static_cast<float>(nRows * (2 * m_nHalf + 1)));
  for (int nFromEdge = 0; nFromEdge < m_nHalf; ++nFromEdge) {
    const int nColumns = std::min(nFromEdge + m_nHalf + 1, nCells);
    const float fPerArea = 1.0F / static_cast<float>(nRows * nColumns);
    for (const int nCell : {nFromEdge, nCells - 1 - nFromEdge}) {
      std::fill_n(m_aPerArea.begin() + 2 * nCell, 2, fPerArea);
    }
  }
}
