// Joins the runs of neighbouring rows to regions, counts their pixels and replaces the small ones.
#include "MXLiveScannerTools/MaskRegions.h"

#include <algorithm>
#include <cstring>

#include "MXKernels/RunRows.h"

namespace {

/// The first position in [nFrom, nEnd) whose bit is set after nFlip has been applied; nEnd when there is
/// none.
int NextBit(const uint64_t* pBits, uint64_t nFlip, int nFrom, int nEnd) {
  for (int nWord = nFrom / 64; nWord * 64 < nEnd; ++nWord) {
    uint64_t nBits = pBits[nWord] ^ nFlip;
    if (nWord == nFrom / 64) nBits &= ~uint64_t{0} << (nFrom % 64);
    if (nBits != 0) return std::min(nWord * 64 + __builtin_ctzll(nBits), nEnd);
  }
  return nEnd;
}

}  // namespace

void ClMaskRegions::RemoveIslands(ClImage& oMask) {
  FindRegions(oMask, 255);
  Replace(oMask, cnLargestIsland, 0);
}

void ClMaskRegions::FillHoles(ClImage& oMask) {
  FindRegions(oMask, 0);
  const unsigned int nFirstRow = oMask.Height() > 0 ? m_aRowEnds[0] : 0;
  for (unsigned int n = 0; n < nFirstRow; ++n) {
    const bool bCorner = m_aRuns[n].nBegin == 0 || m_aRuns[n].nEnd == oMask.Width();
    if (bCorner) m_aRuns[RootOf(n)].nPixels = cnLargestHole + 1;
  }
  Replace(oMask, cnLargestHole, 255);
}

void ClMaskRegions::FindRegions(const ClImage& oMask, unsigned char nOf) {
  const int nWidth = oMask.Width(), nHeight = oMask.Height();
  m_aBits.SetEntries(static_cast<unsigned int>(nWidth / 64 + 1));
  m_aRowEnds.SetEntries(static_cast<unsigned int>(nHeight));
  m_aRuns.SetEntries(0);
  unsigned int nAbove = 0;
  for (int y = 0; y < nHeight; ++y) {
    const unsigned int nFirst = m_aRuns.Entries();
    AddRuns(oMask.Row<uint8_t>(y), nWidth, nOf);
    JoinRows(nAbove, nFirst);
    m_aRowEnds[static_cast<unsigned int>(y)] = m_aRuns.Entries();
    nAbove = nFirst;
  }
  for (unsigned int n = 0; n < m_aRuns.Entries(); ++n) {
    m_aRuns[RootOf(n)].nPixels += m_aRuns[n].nEnd - m_aRuns[n].nBegin;
  }
}

void ClMaskRegions::AddRuns(const uint8_t* pRow, int nWidth, unsigned char nOf) {
  uint64_t* pBits = m_aBits.Data();
  MXKernels::ZeroBitsRow(pRow, pBits, static_cast<size_t>(nWidth / 64 * 64));
  // The kernel takes 64 pixels at once: the last ones of a row are read with some that it has already seen.
  const int nRest = nWidth % 64, nSeen = nWidth < 64 ? 0 : 64 - nRest;
  if (nRest != 0) {
    MXKernels::ZeroBitsRow(pRow + nWidth - nRest - nSeen, pBits + nWidth / 64,
                           static_cast<size_t>(nRest + nSeen));
    pBits[nWidth / 64] >>= nSeen;
  }
  const uint64_t nFlip = nOf == 0 ? 0 : ~uint64_t{0};
  for (int x = NextBit(pBits, nFlip, 0, nWidth); x < nWidth;) {
    const int nEnd = NextBit(pBits, ~nFlip, x, nWidth);
    const unsigned int nRun = m_aRuns.Entries();
    if (nRun == m_aRuns.Capacity()) m_aRuns.SetEntries(2 * nRun + 1024);
    m_aRuns.SetEntries(nRun + 1);
    m_aRuns[nRun] = {x, nEnd, nRun, 0};
    x = NextBit(pBits, nFlip, nEnd, nWidth);
  }
}

/// The runs from nFirst on are those of a row, those from nAbove on those of the row above.
void ClMaskRegions::JoinRows(unsigned int nAbove, unsigned int nFirst) {
  for (unsigned int nUpper = nAbove, nLower = nFirst; nUpper < nFirst && nLower < m_aRuns.Entries();) {
    const StRun &oUpper = m_aRuns[nUpper], &oLower = m_aRuns[nLower];
    if (oUpper.nBegin < oLower.nEnd && oLower.nBegin < oUpper.nEnd) {
      const unsigned int nA = RootOf(nUpper), nB = RootOf(nLower);
      m_aRuns[std::max(nA, nB)].nParent = std::min(nA, nB);
    }
    oUpper.nEnd < oLower.nEnd ? ++nUpper : ++nLower;
  }
}

unsigned int ClMaskRegions::RootOf(unsigned int nRun) {
  while (m_aRuns[nRun].nParent != nRun) {
    // Every step shortens the way for the next one.
    m_aRuns[nRun].nParent = m_aRuns[m_aRuns[nRun].nParent].nParent;
    nRun = m_aRuns[nRun].nParent;
  }
  return nRun;
}

void ClMaskRegions::Replace(ClImage& oMask, int nLargest, unsigned char nValue) {
  unsigned int n = 0;
  for (int y = 0; y < oMask.Height(); ++y) {
    for (; n < m_aRowEnds[static_cast<unsigned int>(y)]; ++n) {
      const StRun& oRun = m_aRuns[n];
      if (m_aRuns[RootOf(n)].nPixels > nLargest) continue;
      std::memset(oMask.Row<uint8_t>(y) + oRun.nBegin, nValue, static_cast<size_t>(oRun.nEnd - oRun.nBegin));
    }
  }
}
