// Sums of the columns over a band of rows that moves down an image.
#pragma once

#include <algorithm>
#include <cstdint>

#include "MXKernels/DifferenceRows.h"
#include "MXTools/FpImage.h"
#include "MXTools/TpArrayDynamic.h"

/// Calls fnRow(y, nRows) for each row, with aSums holding the sum of each column over those of the rows
/// y - nHalf to y + nHalf that exist, of which there are nRows.
///
/// Domain  one plane; the sum of a column fits 32 bits.
/// Cost    one addition and one subtraction a pixel.
template <typename T, typename TRow>
void ForColumnSums(const ClImage& oImage, long nHalf, TpArrayDynamic<uint32_t, 1>& aSums, const TRow& fnRow) {
  const long nHeight = oImage.Height();
  const auto nCount = static_cast<unsigned int>(oImage.Width());
  aSums.SetEntries(nCount);
  uint32_t* pSums = aSums.Data();
  std::fill_n(pSums, nCount, 0U);
  const auto Row = [&oImage](long y) { return oImage.Row<T>(static_cast<int>(y)); };
  long nRows = std::min(nHalf, nHeight);
  for (long y = 0; y < nRows; ++y) MXKernels::AddToSumsRow(Row(y), pSums, nCount);
  for (long y = 0; y < nHeight; ++y) {
    const bool bEnters = y + nHalf < nHeight;
    const bool bLeaves = y - nHalf - 1 >= 0;
    if (bEnters && bLeaves) {
      MXKernels::MoveSumsRow(Row(y + nHalf), Row(y - nHalf - 1), pSums, nCount);
    } else if (bEnters) {
      MXKernels::AddToSumsRow(Row(y + nHalf), pSums, nCount);
      ++nRows;
    } else if (bLeaves) {
      MXKernels::TakeFromSumsRow(Row(y - nHalf - 1), pSums, nCount);
      --nRows;
    }
    fnRow(static_cast<int>(y), static_cast<uint32_t>(nRows));
  }
}
