// Ranks over the last seven rows, and a mean of what they give.
#include "MXLiveScannerTools/MaskSmooth.h"

void ClMaskSmooth::ClRank::Start(int nWidth, int nHeight, const Rank& oRank) {
  m_poRank = &oRank;
  m_nWidth = nWidth;
  m_nHeight = nHeight;
  m_nTaken = 0;
  m_oMade.Start(cnRows, static_cast<size_t>(nWidth), 0);
  m_oWork.Start(1, static_cast<size_t>(nWidth) + 2 * cnRankHalf, 0);
}

const uint8_t* ClMaskSmooth::ClRank::Make(int n) {
  const uint8_t* apRows[2 * cnRankHalf + 1];
  for (int k = -cnRankHalf; k <= cnRankHalf; ++k) {
    apRows[k + cnRankHalf] = m_apIn[std::clamp(n + k, 0, m_nHeight - 1) % cnRows];
  }
  (*m_poRank)(apRows, m_oWork.Row(0), m_oMade.Row(n), static_cast<size_t>(m_nWidth));
  return m_oMade.Row(n);
}

void ClMaskSmooth::Start(int nWidth, int nHeight, const Rank& oFirst, const Rank& oSecond, uint8_t nMost) {
  m_nWidth = nWidth;
  m_nHeight = nHeight;
  m_nHalf = MaskWindows::FittingHalf(3, nWidth, nHeight);
  m_nMost = nMost;
  m_aRanks[0].Start(nWidth, nHeight, oFirst);
  m_aRanks[1].Start(nWidth, nHeight, oSecond);
  m_oNone.Start(1, static_cast<size_t>(nWidth), 0);
  m_oSums.Start(1, static_cast<size_t>(nWidth), 0, static_cast<size_t>(m_nHalf));
}

void ClMaskSmooth::Move(const uint8_t* pEnter, const uint8_t* pLeave) {
  MXKernels::MoveLimitedSumsRow(pEnter, pLeave, m_oSums.Row(0), static_cast<size_t>(m_nWidth), m_nMost);
}

void ClMaskSmooth::Store(int y, uint8_t* pOut) {
  const uint16_t* pSums = m_oSums.Row(0);
  if (m_nHalf == 0) {
    std::transform(pSums, pSums + m_nWidth, pOut, [](uint16_t n) { return static_cast<uint8_t>(n); });
    return;
  }
  MXKernels::MeanOf7Row(pSums - m_nHalf,
                        m_oFactors.Row(y, m_nHalf, m_nWidth, m_nHeight, MXKernels::MeanFactor), pOut,
                        static_cast<size_t>(m_nWidth));
}
