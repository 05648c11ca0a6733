// Dilation by doubling: each step ors the plane with itself, moved by what it covers already.
#include "MXImageProcessing/BitPlane.h"

#include <algorithm>

#include "MXKernels/RunRows.h"

namespace {

/// Calls fnStep(s) for steps by which a window of one pixel grows to nWindow pixels: the window covers s
/// pixels at least, and s more afterwards.
template <typename TStep>
void ForDoublingSteps(int nWindow, const TStep& fnStep) {
  for (int nCovered = 1; nCovered < nWindow;) {
    const int nStep = std::min(nCovered, nWindow - nCovered);
    nCovered += nStep;
    fnStep(nStep, nCovered);
  }
}

/// The word nHere of a row after its dilation by nHalf columns, with the words before and after it.
uint64_t DilatedWord(uint64_t nBefore, uint64_t nHere, uint64_t nAfter, int nHalf) {
  if (nHalf == 0 || (nBefore | nHere | nAfter) == 0 || nHere == ~uint64_t{0}) return nHere;
  // Bit x of the two words is pixel x - nHalf: the window begins at its own bit.
  uint64_t nLow = nHere << nHalf | nBefore >> (64 - nHalf);
  uint64_t nHigh = nAfter << nHalf | nHere >> (64 - nHalf);
  ForDoublingSteps(2 * nHalf + 1, [&](int nStep, int) {
    nLow |= nLow >> nStep | nHigh << (64 - nStep);
    nHigh |= nHigh >> nStep;
  });
  return nLow;
}

}  // namespace

void ClBitPlane::SetSize(int nWidth, int nHeight, int nMoreRows) {
  m_nWidth = nWidth;
  m_nHeight = nHeight;
  m_nWords = (static_cast<unsigned int>(nWidth) + 63) / 64;
  m_aWords.SetEntries(m_nWords * static_cast<unsigned int>(nHeight + nMoreRows));
}

void ClBitPlane::Clear(int nWidth, int nHeight) {
  SetSize(nWidth, nHeight, 0);
  std::fill_n(m_aWords.Data(), AllWords(), uint64_t{0});
}

void ClBitPlane::TakeBelow(const ClImage& oImage, uint8_t nLimit) {
  SetSize(oImage.Width(), oImage.Height(), 0);
  for (int y = 0; y < m_nHeight; ++y) {
    MXKernels::BelowBitsRow(oImage.Row<uint8_t>(y), Row(y), static_cast<size_t>(m_nWidth), nLimit);
  }
}

void ClBitPlane::Dilate(const ClBitPlane& oPlane, int nHalf) {
  SetSize(oPlane.m_nWidth, oPlane.m_nHeight, 2 * nHalf);
  // Row y of the taller plane is row y - nHalf of the other: the window begins at its own row.
  uint64_t* pWords = m_aWords.Data();
  const size_t nMargin = static_cast<size_t>(m_nWords) * static_cast<size_t>(nHalf);
  std::fill_n(pWords, nMargin, uint64_t{0});
  std::copy_n(oPlane.m_aWords.Data(), AllWords(), pWords + nMargin);
  std::fill_n(pWords + nMargin + AllWords(), nMargin, uint64_t{0});
  ForDoublingSteps(2 * nHalf + 1, [&](int nStep, int nCovered) {
    const size_t nRows = static_cast<size_t>(m_nHeight + 2 * nHalf + 1 - nCovered);
    const uint64_t* pBelow = pWords + static_cast<size_t>(nStep) * m_nWords;
    for (size_t n = 0; n < nRows * m_nWords; ++n) pWords[n] |= pBelow[n];
  });
  for (int y = 0; y < m_nHeight; ++y) {
    uint64_t* pRow = Row(y);
    uint64_t nBefore = 0;
    for (unsigned int w = 0; w < m_nWords; ++w) {
      const uint64_t nHere = pRow[w];
      pRow[w] = DilatedWord(nBefore, nHere, w + 1 < m_nWords ? pRow[w + 1] : 0, nHalf);
      nBefore = nHere;
    }
    pRow[m_nWords - 1] &= LastMask();
  }
}

void ClBitPlane::TakeWithout(const ClBitPlane& oFirst, const ClBitPlane& oSecond) {
  SetSize(oFirst.m_nWidth, oFirst.m_nHeight, 0);
  for (unsigned int n = 0; n < AllWords(); ++n) m_aWords[n] = oFirst.m_aWords[n] & ~oSecond.m_aWords[n];
}

void ClBitPlane::Invert() {
  for (int y = 0; y < m_nHeight; ++y) {
    uint64_t* pRow = Row(y);
    for (unsigned int w = 0; w < m_nWords; ++w) pRow[w] = ~pRow[w];
    pRow[m_nWords - 1] &= LastMask();
  }
}

void ClBitPlane::Keep(const ClBitPlane& oPlane) {
  for (unsigned int n = 0; n < AllWords(); ++n) m_aWords[n] &= oPlane.m_aWords[n];
}

uint64_t ClBitPlane::CountShared(const ClBitPlane& oPlane) const {
  uint64_t nCount = 0;
  for (unsigned int n = 0; n < AllWords(); ++n) {
    const uint64_t nShared = m_aWords[n] & oPlane.m_aWords[n];
    if (nShared != 0) nCount += static_cast<unsigned int>(__builtin_popcountll(nShared));
  }
  return nCount;
}

ClBitPlane::StBox ClBitPlane::BoxAround(int nMargin) const {
  StBox oBox = {m_nWidth, 0, 0, 0};
  for (int y = 0; y < m_nHeight; ++y) {
    const uint64_t* pRow = Row(y);
    unsigned int nFirst = 0, nEnd = m_nWords;
    while (nFirst < nEnd && pRow[nFirst] == 0) ++nFirst;
    if (nFirst == nEnd) continue;
    while (pRow[nEnd - 1] == 0) --nEnd;
    if (oBox.m_nBottom == 0) oBox.m_nTop = y;
    oBox.m_nBottom = y + 1;
    oBox.m_nLeft = std::min(oBox.m_nLeft, static_cast<int>(64 * nFirst) + __builtin_ctzll(pRow[nFirst]));
    oBox.m_nRight = std::max(oBox.m_nRight, static_cast<int>(64 * nEnd) - __builtin_clzll(pRow[nEnd - 1]));
  }
  if (oBox.m_nBottom == 0) return {};
  return {std::max(oBox.m_nLeft - nMargin, 0) / 64 * 64, std::max(oBox.m_nTop - nMargin, 0),
          std::min(oBox.m_nRight + nMargin, m_nWidth), std::min(oBox.m_nBottom + nMargin, m_nHeight)};
}
