// Runs of object pixels, joined row by row.
#include "MXImageProcessing/IpLabeling.h"

#include <algorithm>
#include <cstring>

#include "MXImageProcessing/NewProcessor.h"
#include "MXImageProcessing/PublishImage.h"
#include "MXTools/Exception.h"

namespace {

constexpr uint64_t cnOnes = 0x0101010101010101U;

uint64_t LoadWord(const uint8_t* p) {
  uint64_t nWord;
  std::memcpy(&nWord, p, sizeof(nWord));
  return nWord;
}

bool HasNoZero(uint64_t nWord) {
  return ((nWord - cnOnes) & ~nWord & (cnOnes << 7)) == 0;
}

/// Writes the places where runs of zeros begin and end, in turn, and returns their number, which is even.
/// Room for nWidth + 2 of them is needed.
int FindEdges(const uint8_t* pRow, int nWidth, int32_t* pEdges) {
  int nEdges = 0;
  bool bInRun = false;
  // Taken without a branch: in noise no branch of it could be predicted.
  const auto Look = [&](int x) {
    const bool bObject = pRow[x] == 0;
    pEdges[nEdges] = x;
    nEdges += bObject != bInRun ? 1 : 0;
    bInRun = bObject;
  };
  int x = 0;
  for (; x + 8 <= nWidth; x += 8) {
    const uint64_t nWord = LoadWord(pRow + x);
    if (bInRun ? nWord == 0 : HasNoZero(nWord)) continue;
    for (int k = 0; k < 8; ++k) Look(x + k);
  }
  for (; x < nWidth; ++x) Look(x);
  if (bInRun) pEdges[nEdges++] = nWidth;
  return nEdges;
}

}  // namespace

ClProcessorBase* ClIpLabeling::Create() const {
  return NewProcessor<ClIpLabeling>();
}

bool ClIpLabeling::CanApply() {
  return m_pInImage != nullptr && m_pOutImage != nullptr && m_pInImage != m_pOutImage;
}

void ClIpLabeling::PublishParameters(ClParameterContainer& oContainer) {
  PublishInputImage(oContainer, "pInImage", &m_pInImage);
  PublishOutputImage(oContainer, "pOutImage", &m_pOutImage);
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
  *m_pOutImage = 0;
  m_aRuns.Clear();
  m_aEdges.SetEntries(static_cast<unsigned int>(oIn.Width()) + 2);
  unsigned int nAbove = 0;
  for (int y = 0; y < oIn.Height(); ++y) {
    const unsigned int nHere = m_aRuns.Entries();
    FindRuns(y);
    JoinRows(nAbove, nHere);
    nAbove = nHere;
  }
  WriteLabels();
  return 0;
}

void ClIpLabeling::FindRuns(int nY) {
  const int nEdges = FindEdges(m_pInImage->Row<uint8_t>(nY), m_pInImage->Width(), m_aEdges.Data());
  const unsigned int nFirst = m_aRuns.Entries();
  const unsigned int nRuns = static_cast<unsigned int>(nEdges) / 2;
  // A noisy image has very many runs; fixed steps would copy the list over and over.
  if (nFirst + nRuns > m_aRuns.Capacity()) m_aRuns.SetEntries(nFirst + nFirst / 2 + nRuns + 100);
  m_aRuns.SetEntries(nFirst + nRuns);
  const int32_t* pEdge = m_aEdges.Data();
  for (unsigned int n = nFirst; n < nFirst + nRuns; ++n, pEdge += 2)
    m_aRuns[n] = {pEdge[0], pEdge[1], nY, n, 0};
}

/// Joins the runs [nAbove, nBelow) of one row with those from nBelow on where they share a column.
void ClIpLabeling::JoinRows(unsigned int nAbove, unsigned int nBelow) {
  const ClLinePart* pUpper = m_aRuns.Data() + nAbove;
  const ClLinePart* pLower = m_aRuns.Data() + nBelow;
  const ClLinePart* const pUpperEnd = pLower;
  const ClLinePart* const pLowerEnd = m_aRuns.Data() + m_aRuns.Entries();
  while (pUpper != pUpperEnd && pLower != pLowerEnd) {
    if (pUpper->m_nBegin < pLower->m_nEnd && pLower->m_nBegin < pUpper->m_nEnd) {
      Join(static_cast<uint32_t>(pUpper - m_aRuns.Data()), static_cast<uint32_t>(pLower - m_aRuns.Data()));
    }
    // The run that ends first meets nothing more.
    const bool bUpperEndsFirst = pUpper->m_nEnd < pLower->m_nEnd;
    pUpper += bUpperEndsFirst ? 1 : 0;
    pLower += bUpperEndsFirst ? 0 : 1;
  }
}

uint32_t ClIpLabeling::LeaderOf(uint32_t nRun) {
  while (m_aRuns[nRun].m_nLeader != nRun) {
    // Halves the path for the next search.
    uint32_t& rnLeader = m_aRuns[nRun].m_nLeader;
    rnLeader = m_aRuns[rnLeader].m_nLeader;
    nRun = rnLeader;
  }
  return nRun;
}

/// The earlier run leads, so that each set is led by the one with its first pixel.
void ClIpLabeling::Join(uint32_t nRunA, uint32_t nRunB) {
  const uint32_t nLeaderA = LeaderOf(nRunA);
  const uint32_t nLeaderB = LeaderOf(nRunB);
  m_aRuns[std::max(nLeaderA, nLeaderB)].m_nLeader = std::min(nLeaderA, nLeaderB);
}

void ClIpLabeling::WriteLabels() {
  m_nLabels = 0;
  for (unsigned int n = 0; n < m_aRuns.Entries(); ++n) {
    ClLinePart& oRun = m_aRuns[n];
    // A run points at an earlier one of its set, which has its label by now, or at itself.
    oRun.m_nLabel = oRun.m_nLeader == n ? ++m_nLabels : m_aRuns[oRun.m_nLeader].m_nLabel;
    int32_t* pLabels = m_pOutImage->Row<int32_t>(oRun.m_nY);
    std::fill(pLabels + oRun.m_nBegin, pLabels + oRun.m_nEnd, oRun.m_nLabel);
  }
}
