// Windows of rows and columns that move over an image, clipped at its borders.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "MXTools/TpArrayDynamic.h"

namespace MaskWindows {

/// Half the width of a window, or 0 on an image that is smaller than the window: a mean leaves it as it is.
inline int FittingHalf(int nHalf, int nWidth, int nHeight) {
  return std::min(nWidth, nHeight) > 2 * nHalf ? nHalf : 0;
}

/// How many of the positions n - nHalf to n + nHalf are in [0, nExtent).
inline uint32_t Covered(int n, int nHalf, int nExtent) {
  return static_cast<uint32_t>(std::min(n + nHalf, nExtent - 1) - std::max(n - nHalf, 0) + 1);
}

/// Moves a window of 2 * nHalf + 1 rows from row y - 1 to row y, or to the first row from above the image:
/// calls fnMove(row that enters, row that leaves). fnEnter(n) and fnLeave(n) give a row of the image, pNone
/// stands for one outside it.
template <typename T, typename TEnter, typename TLeave, typename TMove>
void MoveRows(int y, int nHalf, int nHeight, const T* pNone, const TEnter& fnEnter, const TLeave& fnLeave,
              const TMove& fnMove) {
  for (int n = y == 0 ? -nHalf : y; n <= y; ++n) {
    const T* pEnter = n + nHalf < nHeight ? fnEnter(n + nHalf) : pNone;
    fnMove(pEnter, n - nHalf - 1 >= 0 ? fnLeave(n - nHalf - 1) : pNone);
  }
}

/// The last rows of an image, with room on both sides. They begin where cache lines do.
template <typename T>
class TpRows {
 public:
  /// Room for the last nRows rows of nCount samples, and for nMargin more before and after each. All of them
  /// are nValue.
  void Start(int nRows, size_t nCount, T nValue, size_t nMargin = 0) {
    m_nRows = static_cast<size_t>(nRows);
    m_nStride = Lines(nMargin) + Lines(nCount + nMargin);
    m_aSamples.SetEntries(static_cast<unsigned int>(m_nRows * m_nStride + cnLine));
    std::fill_n(m_aSamples.Data(), m_aSamples.Entries(), nValue);
    const auto nBeyond = reinterpret_cast<uintptr_t>(m_aSamples.Data()) / sizeof(T) % cnLine;
    m_nFirst = Lines(nMargin) + (cnLine - nBeyond) % cnLine;
  }
  T* Row(int y) { return m_aSamples.Data() + m_nFirst + static_cast<size_t>(y) % m_nRows * m_nStride; }
  /// Samples from one row to the next.
  size_t Stride() const { return m_nStride; }

 private:
  static constexpr size_t cnLine = 64 / sizeof(T);

  static size_t Lines(size_t nSamples) { return (nSamples + cnLine - 1) / cnLine * cnLine; }

  size_t m_nRows = 1;
  size_t m_nStride = 0;
  size_t m_nFirst = 0;
  TpArrayDynamic<T, 1> m_aSamples;
};

/// A number for each window of a row that follows from how many pixels the window holds. It is worked out
/// anew only where another number of rows is covered.
template <typename T>
class TpOfArea {
 public:
  template <typename TNumber>
  const T* Row(int y, int nHalf, int nWidth, int nHeight, const TNumber& fnNumber) {
    const uint32_t nRows = Covered(y, nHalf, nHeight);
    if (y == 0 || nRows != m_nRows) {
      m_nRows = nRows;
      m_aNumbers.SetEntries(static_cast<unsigned int>(nWidth));
      T* pNumbers = m_aNumbers.Data();
      // All windows but those at the ends have as many columns as the one in the middle.
      const int nEdge = std::min(nHalf, nWidth);
      std::fill_n(pNumbers, nWidth, fnNumber(nRows * Covered(nWidth / 2, nHalf, nWidth)));
      for (int x = 0; x < nEdge; ++x) {
        pNumbers[x] = fnNumber(nRows * Covered(x, nHalf, nWidth));
        pNumbers[nWidth - 1 - x] = fnNumber(nRows * Covered(nWidth - 1 - x, nHalf, nWidth));
      }
    }
    return m_aNumbers.Data();
  }

 private:
  uint32_t m_nRows = 0;
  TpArrayDynamic<T, 1> m_aNumbers;
};

}  // namespace MaskWindows
