// The passes of the minimum and maximum filter, included by the two sources that compile them.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <type_traits>

#include "MXImageProcessing/IpFilterRank.h"
#include "MXTools/Exception.h"
#include "MXTools/ImageTypeDispatch.h"

/// out = the extreme of two rows, sample by sample; out may be one of them.
template <typename TRank, typename T>
void RankRows(const T* pA, const T* pB, T* pOut, size_t nCount) {
  if constexpr (std::is_same_v<T, uint8_t>) {
    TRank::Rows(pA, pB, pOut, nCount);
  } else {
    for (size_t n = 0; n < nCount; ++n) pOut[n] = TRank::Pick(pA[n], pB[n]);
  }
}

/// The extremes of the windows along a row, made of windows of 1, 2, 4, ... samples; pWork has nCount + 2 *
/// nHalf.
template <typename TRank, typename T>
void RankWindowRow(const T* pIn, size_t nCount, size_t nHalf, T* pWork, T* pOut) {
  if constexpr (std::is_same_v<T, uint8_t>) {
    TRank::WindowRow(pIn, nCount, nHalf, pWork, pOut);
  } else {
    // A window that reaches past an end holds the sample at that end, so that copies of it change nothing.
    std::fill_n(pWork, nHalf, pIn[0]);
    std::copy_n(pIn, nCount, pWork + nHalf);
    std::fill_n(pWork + nHalf + nCount, nHalf, pIn[nCount - 1]);
    const size_t nWidth = 2 * nHalf + 1;
    size_t nSize = 1;
    for (size_t nValid = nCount + 2 * nHalf; 2 * nSize <= nWidth; nSize *= 2) {
      nValid -= nSize;
      for (size_t x = 0; x < nValid; ++x) pWork[x] = TRank::Pick(pWork[x], pWork[x + nSize]);
    }
    RankRows<TRank>(pWork, pWork + nWidth - nSize, pOut, nCount);
  }
}

template <typename TRank>
long TpIpFilterRank<TRank>::DoProcess() {
  if (nFilterWidth % 2 == 0) KLV_RAISE(ClException, "Filter width has to be odd.", -44);
  if (m_pInImage == nullptr) KLV_RAISE_NUMBER(-10);
  constexpr long cnUnknown = 1;
  const long nResult = DispatchElementType(m_pInImage->DataType(), cnUnknown, [&](auto oElement) {
    return ProcessT<typename decltype(oElement)::Type>();
  });
  if (nResult == cnUnknown) KLV_RAISE_NUMBER(-35);
  return nResult;
}

// NOLINTBEGIN(bugprone-virtual-near-miss): one letter apart, as ProcessX and ProcessY are
template <typename TRank>
template <typename T>
long TpIpFilterRank<TRank>::ProcessT() {
  switch (nMode) {
    case eModeX:
      return ProcessT_X<T>();
    case eModeY:
      return ProcessT_Y<T>();
    case eModeXY:
      return ProcessT_XY<T>();
    case eModeDirected:
    case eModeDirectedOrtho:
      return -33;
    default:
      KLV_RAISE_NUMBER(-35);
  }
}

// NOLINTEND(bugprone-virtual-near-miss)

/// A window that reaches past both ends need not be wider than the one that just does so.
template <typename TRank>
long TpIpFilterRank<TRank>::HalfWidth(int nExtent) const {
  return std::min<long>(nFilterWidth / 2, nExtent - 1);
}

template <typename TRank>
template <typename T>
long TpIpFilterRank<TRank>::ProcessT_X() {
  const ClImage& oIn = *m_pInImage;
  m_pOutImage->New(oIn);
  if (oIn.Width() == 0 || oIn.Height() == 0) return 0;
  const long nHalf = HalfWidth(oIn.Width());
  const auto nCount = static_cast<size_t>(oIn.Width());
  m_oLine.NewWithType(oIn.DataType(), oIn.Width() + static_cast<int>(2 * nHalf), 1, 1, 0, 0, true);
  for (int y = 0; y < oIn.Height(); ++y) {
    RankWindowRow<TRank>(oIn.Row<T>(y), nCount, static_cast<size_t>(nHalf), m_oLine.Row<T>(0),
                         m_pOutImage->Row<T>(y));
  }
  return 0;
}

/// Takes the rows in blocks of the window's width w. A window that begins in a block consists of a tail of
/// this block and a head of the next: its extreme is that of the two (van Herk 1992, Gil and Werman 1993).
template <typename TRank>
template <typename T>
long TpIpFilterRank<TRank>::ProcessT_Y() {
  const ClImage& oIn = *m_pInImage;
  m_pOutImage->New(oIn);
  if (oIn.Width() == 0 || oIn.Height() == 0) return 0;
  const long nHalf = HalfWidth(oIn.Height());
  const long nWidth = 2 * nHalf + 1;
  const long nHeight = oIn.Height();
  const auto nCount = static_cast<size_t>(oIn.Width());
  // Row i < nWidth holds the extreme of the block's rows from i on, the last row that of the next block's
  // head.
  m_oRows.NewWithType(oIn.DataType(), oIn.Width(), static_cast<int>(nWidth) + 1, 1, 0, 0, true);
  const auto Scratch = [&](long n) { return m_oRows.Row<T>(static_cast<int>(n)); };
  T* pHead = Scratch(nWidth);
  const auto Take = [&](T* pInto, const T* pOther, long nInputRow) {
    const bool bExists = nInputRow >= 0 && nInputRow < nHeight;
    const T* pRow = bExists ? oIn.Row<T>(static_cast<int>(nInputRow)) : nullptr;
    if (pRow != nullptr && pOther != nullptr) {
      RankRows<TRank>(pRow, pOther, pInto, nCount);
    } else if (pRow != nullptr || pOther != nullptr) {
      std::memcpy(pInto, pRow != nullptr ? pRow : pOther, nCount * sizeof(T));
    }
  };
  for (long nBlock = -nHalf; nBlock + nHalf < nHeight; nBlock += nWidth) {
    // Rows above the image come first in the block, those below it last: a tail that lies outside is skipped.
    const long nLast = std::min(nWidth - 1, nHeight - 1 - nBlock);
    for (long i = nLast; i >= 0; --i) Take(Scratch(i), i < nLast ? Scratch(i + 1) : nullptr, nBlock + i);
    bool bHead = false;
    for (long i = 0; i < nWidth; ++i) {
      const long nOutRow = nBlock + i + nHalf;
      if (nOutRow >= nHeight) break;
      const long nHeadRow = nBlock + nWidth + i - 1;
      if (i > 0 && nHeadRow < nHeight) {
        Take(pHead, bHead ? pHead : nullptr, nHeadRow);
        bHead = true;
      }
      T* pOut = m_pOutImage->Row<T>(static_cast<int>(nOutRow));
      const T* pTail = Scratch(i);
      if (bHead) {
        RankRows<TRank>(pTail, pHead, pOut, nCount);
      } else {
        std::memcpy(pOut, pTail, nCount * sizeof(T));
      }
    }
  }
  return 0;
}

template <typename TRank>
template <typename T>
long TpIpFilterRank<TRank>::ProcessT_XY() {
  return ProcessTwice([this] { return ProcessT_X<T>(); }, [this] { return ProcessT_Y<T>(); });
}
