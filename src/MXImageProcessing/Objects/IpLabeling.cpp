// Runs of object pixels, joined row by row.
#include "MXImageProcessing/IpLabeling.h"

#include <algorithm>
#include <numeric>

#include "MXImageProcessing/MakeProcessor.h"
#include "MXKernels/RunRows.h"
#include "MXTools/Exception.h"
#include "MXTools/ParameterRows.h"

namespace {

/// Calls fnPlace(x) for each bit x that is set in the words, from the lowest on.
template <typename TPlace>
void ForEachBit(uint64_t nWord, int32_t nFirst, const TPlace& fnPlace) {
  for (; nWord != 0; nWord &= nWord - 1) fnPlace(nFirst + __builtin_ctzll(nWord));
}

/// Labels [nBegin, nEnd) of a row. Where there is room, a short run is written as a full step: what goes
/// beyond its end is overwritten by the runs that follow.
void FillAndBeyond(int32_t* pRow, int nBegin, int nEnd, int nRowEnd, int32_t nLabel) {
  constexpr int cnStep = 8;
  if (nEnd - nBegin <= cnStep && nBegin + cnStep <= nRowEnd) {
    std::fill_n(pRow + nBegin, cnStep, nLabel);
  } else {
    std::fill(pRow + nBegin, pRow + nEnd, nLabel);
  }
}

}  // namespace

ClProcessorBase* ClIpLabeling::Create() const {
  return MakeProcessor<ClIpLabeling>();
}

bool ClIpLabeling::CanApply() {
  return m_pInImage != nullptr && m_pOutImage != nullptr && m_pInImage != m_pOutImage;
}

void ClIpLabeling::DeclareParameters(ClParameterRows& oRows) {
  oRows.InOutImages(&m_pInImage, &m_pOutImage);
}

long ClIpLabeling::ApplyParam(ClImage& oIn, ClImage& oOut) {
  m_pInImage = &oIn;
  m_pOutImage = &oOut;
  return Apply();
}

long ClIpLabeling::Process() {
  if (m_pInImage == nullptr) KLV_RAISE(ClException, "Inputimage is missing", -37);
  if (m_pOutImage == nullptr) KLV_RAISE(ClException, "Outputimage is missing", -37);
  if (m_pInImage == m_pOutImage) KLV_RAISE(ClException, "Resize image with im self is senseless.", -44);
  const ClImage& oIn = *m_pInImage;
  m_pOutImage->NewWithType(ClImage::eInt32, oIn.Width(), oIn.Height(), oIn.Planes(), oIn.PelsX(), oIn.PelsY(),
                           oIn.AlignedRows());
  m_pOutImage->SetContent(oIn.Content());
  m_pOutImage->SetBlackWhite(oIn.Black(), oIn.White());
  m_aRuns.Clear();
  m_aLeaders.Clear();
  m_aRowEnds.SetEntries(static_cast<unsigned int>(oIn.Height()));
  m_aBits.SetEntries((static_cast<unsigned int>(oIn.Width()) + 63) / 64);
  // Each step of the search for pairs passes a run of one of the two rows, and may write one pair more.
  m_aPairs.SetEntries(static_cast<unsigned int>(oIn.Width()) + 3);
  unsigned int nAbove = 0;
  for (int y = 0; y < oIn.Height(); ++y) {
    const unsigned int nHere = m_aRuns.Entries();
    FindRuns(oIn.Row<uint8_t>(y), oIn.Width());
    JoinRows(nAbove, nHere);
    nAbove = nHere;
    m_aRowEnds[static_cast<unsigned int>(y)] = m_aRuns.Entries();
  }
  NumberSets();
  WriteLabels();
  return 0;
}

void ClIpLabeling::FindRuns(const uint8_t* pRow, int nWidth) {
  MXKernels::ZeroBitsRow(pRow, m_aBits.Data(), static_cast<size_t>(nWidth));
  const unsigned int nFirst = m_aRuns.Entries();
  // A noisy image has very many runs; fixed steps would copy the list over and over.
  const unsigned int nMost = nFirst + static_cast<unsigned int>(nWidth) / 2 + 1;
  if (nMost > m_aRuns.Capacity()) {
    m_aRuns.SetEntries(nMost + nMost / 2);
    m_aLeaders.SetEntries(nMost + nMost / 2);
  }
  ClLinePart* pBegins = m_aRuns.Data() + nFirst;
  ClLinePart* pEnds = pBegins;
  uint64_t nCarry = 0;
  for (unsigned int w = 0; w < m_aBits.Entries(); ++w) {
    const uint64_t nBits = m_aBits[w];
    // Where a bit differs from the one below it, a run begins or the last one has ended.
    const uint64_t nChanges = nBits ^ (nBits << 1 | nCarry);
    const auto nX = static_cast<int32_t>(64 * w);
    ForEachBit(nChanges & nBits, nX, [&](int32_t x) { pBegins++->m_nBegin = x; });
    ForEachBit(nChanges & ~nBits, nX, [&](int32_t x) { pEnds++->m_nEnd = x; });
    nCarry = nBits >> 63;
  }
  if (pEnds != pBegins) pEnds->m_nEnd = nWidth;
  const auto nEntries = static_cast<unsigned int>(pBegins - m_aRuns.Data());
  m_aRuns.SetEntries(nEntries);
  m_aLeaders.SetEntries(nEntries);
  std::iota(m_aLeaders.Data() + nFirst, m_aLeaders.Data() + nEntries, nFirst);
}

/// Joins the runs [nAbove, nBelow) of one row with those from nBelow on where they share a column.
void ClIpLabeling::JoinRows(unsigned int nAbove, unsigned int nBelow) {
  const unsigned int nEnd = m_aRuns.Entries();
  const ClLinePart* pRuns = m_aRuns.Data();
  ClPair* pPair = m_aPairs.Data();
  unsigned int nUpper = nAbove, nLower = nBelow;
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

uint32_t ClIpLabeling::LeaderOf(uint32_t nRun) {
  uint32_t* pLeaders = m_aLeaders.Data();
  while (pLeaders[nRun] != nRun) {
    // Halves the path for the next search.
    pLeaders[nRun] = pLeaders[pLeaders[nRun]];
    nRun = pLeaders[nRun];
  }
  return nRun;
}

/// The earlier run leads, so that each set is led by the one with its first pixel.
void ClIpLabeling::Join(uint32_t nRunA, uint32_t nRunB) {
  const uint32_t nLeaderA = LeaderOf(nRunA);
  const uint32_t nLeaderB = LeaderOf(nRunB);
  m_aLeaders[std::max(nLeaderA, nLeaderB)] = std::min(nLeaderA, nLeaderB);
}

/// Replaces leaders by labels.
void ClIpLabeling::NumberSets() {
  uint32_t* pLeaders = m_aLeaders.Data();
  uint32_t nLabels = 0;
  for (unsigned int n = 0; n < m_aLeaders.Entries(); ++n) {
    // A run points at itself or at an earlier one of its set, which has its label by now.
    pLeaders[n] = pLeaders[n] == n ? ++nLabels : pLeaders[pLeaders[n]];
  }
  m_nLabels = static_cast<int32_t>(nLabels);
}

void ClIpLabeling::WriteLabels() {
  const int nRowEnd = m_pOutImage->ElementsPerRow();
  unsigned int n = 0;
  for (int y = 0; y < m_pOutImage->Height(); ++y) {
    int32_t* pRow = m_pOutImage->Row<int32_t>(y);
    int nDone = 0;
    for (; n < m_aRowEnds[static_cast<unsigned int>(y)]; ++n) {
      const ClLinePart& oRun = m_aRuns[n];
      FillAndBeyond(pRow, nDone, oRun.m_nBegin, nRowEnd, 0);
      FillAndBeyond(pRow, oRun.m_nBegin, oRun.m_nEnd, nRowEnd, static_cast<int32_t>(m_aLeaders[n]));
      nDone = oRun.m_nEnd;
    }
    std::fill(pRow + nDone, pRow + nRowEnd, 0);
  }
}
