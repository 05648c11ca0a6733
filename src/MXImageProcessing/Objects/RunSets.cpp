// Finds the runs of each row and joins them with those of the row above.
#include "MXImageProcessing/RunSets.h"

#include <algorithm>
#include <numeric>

namespace {

/// Calls fnPlace(x) for each bit x that is set in the words, from the lowest on.
template <typename TPlace>
void ForEachBit(uint64_t nWord, int32_t nFirst, const TPlace& fnPlace) {
  for (; nWord != 0; nWord &= nWord - 1) fnPlace(nFirst + __builtin_ctzll(nWord));
}

}  // namespace

void ClRunSets::Begin(int nWidth, int nHeight) {
  m_nWidth = nWidth;
  m_aRuns.Clear();
  m_aLeaders.Clear();
  m_aRowBegins.SetEntries(static_cast<unsigned int>(nHeight) + 1);
  m_aRowBegins.Clear();
  m_aRowBegins.Add(0);
  // Each step of the search for pairs passes a run of one of the two rows, and may write one pair more.
  m_aPairs.SetEntries(static_cast<unsigned int>(nWidth) + 3);
}

void ClRunSets::AddRow(const uint64_t* pBits) {
  const unsigned int nRows = m_aRowBegins.Entries() - 1;
  FindRuns(pBits);
  JoinRows(m_aRowBegins[nRows == 0 ? 0 : nRows - 1], m_aRowBegins[nRows]);
  m_aRowBegins.Add(m_aRuns.Entries());
}

void ClRunSets::FindRuns(const uint64_t* pBits) {
  const unsigned int nFirst = m_aRuns.Entries();
  // A noisy image has very many runs; fixed steps would copy the list over and over.
  const unsigned int nMost = nFirst + static_cast<unsigned int>(m_nWidth) / 2 + 1;
  if (nMost > m_aRuns.Capacity()) {
    m_aRuns.SetEntries(nMost + nMost / 2);
    m_aLeaders.SetEntries(nMost + nMost / 2);
  }
  ClLinePart* pBegins = m_aRuns.Data() + nFirst;
  ClLinePart* pEnds = pBegins;
  uint64_t nCarry = 0;
  for (int32_t x = 0; x < m_nWidth; x += 64) {
    const uint64_t nBits = *pBits++;
    // Where a bit differs from the one below it, a run begins or the last one has ended.
    const uint64_t nChanges = nBits ^ (nBits << 1 | nCarry);
    ForEachBit(nChanges & nBits, x, [&](int32_t nAt) { pBegins++->m_nBegin = nAt; });
    ForEachBit(nChanges & ~nBits, x, [&](int32_t nAt) { pEnds++->m_nEnd = nAt; });
    nCarry = nBits >> 63;
  }
  if (pEnds != pBegins) pEnds->m_nEnd = m_nWidth;
  const auto nEntries = static_cast<unsigned int>(pBegins - m_aRuns.Data());
  m_aRuns.SetEntries(nEntries);
  m_aLeaders.SetEntries(nEntries);
  std::iota(m_aLeaders.Data() + nFirst, m_aLeaders.Data() + nEntries, nFirst);
}

/// Joins the runs [nAbove, nBelow) of one row with those from nBelow on where they share a column.
void ClRunSets::JoinRows(uint32_t nAbove, uint32_t nBelow) {
  const uint32_t nEnd = m_aRuns.Entries();
  const ClLinePart* pRuns = m_aRuns.Data();
  ClPair* pPair = m_aPairs.Data();
  uint32_t nUpper = nAbove, nLower = nBelow;
  // The pairs are gathered without a branch: in noise no branch of it could be predicted.
  while (nUpper != nBelow && nLower != nEnd) {
    const ClLinePart& oUpper = pRuns[nUpper];
    const ClLinePart& oLower = pRuns[nLower];
    *pPair = {nUpper, nLower};
    pPair +=
        static_cast<int>(oUpper.m_nBegin < oLower.m_nEnd) & static_cast<int>(oLower.m_nBegin < oUpper.m_nEnd);
    // The run that ends first touches no further run.
    const bool bUpperEndsFirst = oUpper.m_nEnd < oLower.m_nEnd;
    nUpper += bUpperEndsFirst ? 1 : 0;
    nLower += bUpperEndsFirst ? 0 : 1;
  }
  for (const ClPair* p = m_aPairs.Data(); p != pPair; ++p) Join(p->m_nUpper, p->m_nLower);
}

uint32_t ClRunSets::LeaderOf(uint32_t nRun) {
  uint32_t* pLeaders = m_aLeaders.Data();
  while (pLeaders[nRun] != nRun) {
    // Halves the path for the next search.
    pLeaders[nRun] = pLeaders[pLeaders[nRun]];
    nRun = pLeaders[nRun];
  }
  return nRun;
}

/// The earlier run leads, so that each set is led by the one with its first pixel.
void ClRunSets::Join(uint32_t nRunA, uint32_t nRunB) {
  const uint32_t nLeaderA = LeaderOf(nRunA);
  const uint32_t nLeaderB = LeaderOf(nRunB);
  m_aLeaders[std::max(nLeaderA, nLeaderB)] = std::min(nLeaderA, nLeaderB);
}

int32_t ClRunSets::NumberSets() {
  uint32_t* pLeaders = m_aLeaders.Data();
  uint32_t nSets = 0;
  for (unsigned int n = 0; n < m_aLeaders.Entries(); ++n) {
    // A run points at itself or at an earlier one of its set, which has its number by now.
    pLeaders[n] = pLeaders[n] == n ? ++nSets : pLeaders[pLeaders[n]];
  }
  return static_cast<int32_t>(nSets);
}
