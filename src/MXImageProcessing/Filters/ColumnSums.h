// Sums of the columns over a band of rows that moves down an image.
#pragma once

#include <algorithm>
#include <cstdint>

#include "MXKernels/DifferenceRows.h"
#include "MXTools/FpImage.h"
#include "MXTools/TpArrayDynamic.h"

/// Kept from run to run: the sums of the columns, and room for the kernels to add them up along a row.
template <typename TSum>
struct TpColumnSums {
  TpArrayDynamic<TSum, 1> m_aSums;
  TpArrayDynamic<TSum, 1> m_aPrefix;
};

/// Calls fnRow(y, nRows) for each row, with aSums holding the sum of each column over those of the rows
/// y - nHalf to y + nHalf that exist, of which there are nRows. fnSamples(y) gives the samples of a row.
///
/// Domain  the sum of a column fits TSum.
/// Cost    one addition and one subtraction a pixel.
template <typename TSum, typename TSamples, typename TRow>
void ForColumnSums(const TSamples& fnSamples, long nWidth, long nHeight, long nHalf,
                   TpArrayDynamic<TSum, 1>& aSums, const TRow& fnRow) {
  const auto nCount = static_cast<unsigned int>(nWidth);
  aSums.SetEntries(nCount);
  TSum* pSums = aSums.Data();
  std::fill_n(pSums, nCount, TSum{0});
  long nRows = std::min(nHalf, nHeight);
  for (long y = 0; y < nRows; ++y) MXKernels::AddToSumsRow(fnSamples(y), pSums, nCount);
  for (long y = 0; y < nHeight; ++y) {
    const bool bEnters = y + nHalf < nHeight;
    const bool bLeaves = y - nHalf - 1 >= 0;
    if (bEnters && bLeaves) {
      MXKernels::MoveSumsRow(fnSamples(y + nHalf), fnSamples(y - nHalf - 1), pSums, nCount);
    } else if (bEnters) {
      MXKernels::AddToSumsRow(fnSamples(y + nHalf), pSums, nCount);
      ++nRows;
    } else if (bLeaves) {
      MXKernels::TakeFromSumsRow(fnSamples(y - nHalf - 1), pSums, nCount);
      --nRows;
    }
    fnRow(static_cast<int>(y), static_cast<uint32_t>(nRows));
  }
}

/// The same for the rows of an image of one plane.
template <typename T, typename TSum, typename TRow>
void ForColumnSums(const ClImage& oImage, long nHalf, TpArrayDynamic<TSum, 1>& aSums, const TRow& fnRow) {
  const auto Samples = [&oImage](long y) { return oImage.Row<T>(static_cast<int>(y)); };
  ForColumnSums(Samples, oImage.Width(), oImage.Height(), nHalf, aSums, fnRow);
}
