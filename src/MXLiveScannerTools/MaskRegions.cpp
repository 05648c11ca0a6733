// Counts the pixels of labelled regions and replaces them.
#include "MXLiveScannerTools/MaskRegions.h"

#include <algorithm>
#include <cstring>

namespace {

/// The first position after nFrom whose label differs from that at nFrom; nEnd when there is none.
int EndOfLabel(const int32_t* pLabels, int nFrom, int nEnd) {
  const int32_t aTwice[2] = {pLabels[nFrom], pLabels[nFrom]};
  int x = nFrom + 1;
  while (x + 4 <= nEnd && std::memcmp(pLabels + x, aTwice, 8) == 0 &&
         std::memcmp(pLabels + x + 2, aTwice, 8) == 0) {
    x += 4;
  }
  while (x < nEnd && pLabels[x] == pLabels[nFrom]) ++x;
  return x;
}

}  // namespace

void ClMaskRegions::RemoveIslands(ClImage& oMask) {
  m_oInvert.ApplyParam(oMask, m_oInverted);
  m_oLabeling.ApplyParam(m_oInverted, m_oLabels);
  CountLabels();
  Replace(oMask, cnLargestIsland, 0);
}

void ClMaskRegions::FillHoles(ClImage& oMask) {
  const int nWidth = oMask.Width(), nHeight = oMask.Height();
  if (nWidth == 0 || nHeight == 0) return;
  m_oLabeling.ApplyParam(oMask, m_oLabels);
  CountLabels();
  const int32_t* pFirstRow = m_oLabels.Row<int32_t>(0);
  m_aCounts[static_cast<unsigned int>(pFirstRow[0])] = cnLargestHole + 1;
  m_aCounts[static_cast<unsigned int>(pFirstRow[nWidth - 1])] = cnLargestHole + 1;
  Replace(oMask, cnLargestHole, 255);
}

void ClMaskRegions::CountLabels() {
  m_aCounts.SetEntries(static_cast<unsigned int>(m_oLabeling.m_nLabels) + 1);
  std::fill_n(m_aCounts.Data(), m_aCounts.Entries(), 0);
  int32_t* pCounts = m_aCounts.Data();
  const int nWidth = m_oLabels.Width();
  for (int y = 0; y < m_oLabels.Height(); ++y) {
    const int32_t* pLabels = m_oLabels.Row<int32_t>(y);
    for (int x = 0; x < nWidth;) {
      const int nBegin = x;
      x = EndOfLabel(pLabels, x, nWidth);
      pCounts[pLabels[nBegin]] += x - nBegin;
    }
  }
}

void ClMaskRegions::Replace(ClImage& oMask, int nLargest, unsigned char nValue) const {
  const int32_t* pCounts = m_aCounts.Data();
  const int nWidth = m_oLabels.Width();
  for (int y = 0; y < m_oLabels.Height(); ++y) {
    const int32_t* pLabels = m_oLabels.Row<int32_t>(y);
    uint8_t* pMask = oMask.Row<uint8_t>(y);
    for (int x = 0; x < nWidth;) {
      const int nBegin = x;
      x = EndOfLabel(pLabels, x, nWidth);
      if (pCounts[pLabels[nBegin]] <= nLargest) {
        std::memset(pMask + nBegin, nValue, static_cast<size_t>(x - nBegin));
      }
    }
  }
}
