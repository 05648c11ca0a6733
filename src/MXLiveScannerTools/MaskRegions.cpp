// Counts the pixels of the regions, which are sets of runs, and replaces the small ones.
#include "MXLiveScannerTools/MaskRegions.h"

#include <algorithm>
#include <cstring>

#include "MXKernels/RunRows.h"

void ClMaskRegions::RemoveIslands(ClImage& oMask) {
  FindRegions(oMask, 255);
  Replace(oMask, cnLargestIsland, 0);
}

void ClMaskRegions::FillHoles(ClImage& oMask) {
  FindRegions(oMask, 0);
  if (oMask.Height() > 0) {
    m_oRuns.ForEachRun(0, [&](int32_t nRegion, int32_t nBegin, int32_t nEnd) {
      if (nBegin == 0 || nEnd == oMask.Width()) CountOf(nRegion) = cnLargestHole + 1;
    });
  }
  Replace(oMask, cnLargestHole, 255);
}

void ClMaskRegions::FindRegions(const ClImage& oMask, unsigned char nOf) {
  const int nWidth = oMask.Width(), nHeight = oMask.Height();
  m_aBits.SetEntries((static_cast<unsigned int>(nWidth) + 63) / 64);
  m_oRuns.Begin(nWidth, nHeight);
  for (int y = 0; y < nHeight; ++y) {
    MXKernels::BelowBitsRow(oMask.Row<uint8_t>(y), m_aBits.Data(), static_cast<size_t>(nWidth), 1);
    if (nOf != 0) InvertBits(nWidth);
    m_oRuns.AddRow(m_aBits.Data());
  }
  m_aCounts.SetEntries(static_cast<unsigned int>(m_oRuns.NumberSets()) + 1);
  std::fill_n(m_aCounts.Data(), m_aCounts.Entries(), 0);
  for (int y = 0; y < nHeight; ++y) {
    m_oRuns.ForEachRun(
        y, [this](int32_t nRegion, int32_t nBegin, int32_t nEnd) { CountOf(nRegion) += nEnd - nBegin; });
  }
}

/// The bits from the width on stay 0.
void ClMaskRegions::InvertBits(int nWidth) {
  for (unsigned int n = 0; n < m_aBits.Entries(); ++n) m_aBits[n] = ~m_aBits[n];
  if (nWidth % 64 != 0) m_aBits[m_aBits.Entries() - 1] &= (uint64_t{1} << nWidth % 64) - 1;
}

void ClMaskRegions::Replace(ClImage& oMask, int nLargest, unsigned char nValue) {
  for (int y = 0; y < oMask.Height(); ++y) {
    uint8_t* pRow = oMask.Row<uint8_t>(y);
    m_oRuns.ForEachRun(y, [&](int32_t nRegion, int32_t nBegin, int32_t nEnd) {
      if (CountOf(nRegion) <= nLargest)
        std::memset(pRow + nBegin, nValue, static_cast<size_t>(nEnd - nBegin));
    });
  }
}
