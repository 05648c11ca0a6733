// Sums of the columns over a band of rows that moves down an image.
#pragma once

#include <algorithm>
#include <cstdint>

#include "MXKernels/BoxRows.h"
#include "MXTools/FpImage.h"
#include "MXTools/TpArrayDynamic.h"

template <typename T>
struct TpBoxKernels;

template <>
struct TpBoxKernels<uint8_t> {
  static constexpr auto Add = MXKernels::AddToColumnSumsU8;
  static constexpr auto Take = MXKernels::TakeFromColumnSumsU8;
  static constexpr auto Move = MXKernels::MoveColumnSumsU8;
  static constexpr auto Mean = MXKernels::SlidingMeanRowU8;
};

template <>
struct TpBoxKernels<uint16_t> {
  static constexpr auto Add = MXKernels::AddToColumnSumsU16;
  static constexpr auto Take = MXKernels::TakeFromColumnSumsU16;
  static constexpr auto Move = MXKernels::MoveColumnSumsU16;
  static constexpr auto Mean = MXKernels::SlidingMeanRowU16;
};

/// Calls fnRow(y, nRows) for each row, with aSums holding the sum of each column over those of the rows
/// y - nHalf to y + nHalf that exist, of which there are nRows.
///
/// Domain  one plane; the sum of a column fits 32 bits.
/// Cost    one addition and one subtraction a pixel.
template <typename T, typename TRow>
void ForColumnSums(const ClImage& oImage, long nHalf, TpArrayDynamic<uint32_t, 1>& aSums, const TRow& fnRow) {
  using Kernels = TpBoxKernels<T>;
  const long nHeight = oImage.Height();
  const auto nCount = static_cast<unsigned int>(oImage.Width());
  aSums.SetEntries(nCount);
  uint32_t* pSums = aSums.Data();
  std::fill_n(pSums, nCount, 0U);
  const auto Row = [&oImage](long y) { return oImage.Row<T>(static_cast<int>(y)); };
  long nRows = std::min(nHalf, nHeight);
  for (long y = 0; y < nRows; ++y) Kernels::Add(Row(y), pSums, nCount);
  for (long y = 0; y < nHeight; ++y) {
    const bool bEnters = y + nHalf < nHeight;
    const bool bLeaves = y - nHalf - 1 >= 0;
    if (bEnters && bLeaves) {
      Kernels::Move(Row(y + nHalf), Row(y - nHalf - 1), pSums, nCount);
    } else if (bEnters) {
      Kernels::Add(Row(y + nHalf), pSums, nCount);
      ++nRows;
    } else if (bLeaves) {
      Kernels::Take(Row(y - nHalf - 1), pSums, nCount);
      --nRows;
    }
    fnRow(static_cast<int>(y), static_cast<uint32_t>(nRows));
  }
}
