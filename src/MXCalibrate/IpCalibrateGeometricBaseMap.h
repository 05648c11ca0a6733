// The map of a warp, half the size of its entries.
#pragma once

#include <cstdint>
#include <memory>

#include "MXKernels/WarpRow.h"

class ClImage;

/// Rows of entries, which are set and used row by row.
///
/// Neighbouring windows lie near each other in the source: a group of four samples has one offset, to which
/// its windows are relative, and takes 16 bytes. A row where this is not so, or with entries that are not
/// like those of a map that was built here, is kept as it was set.
///
/// Domain   a source of less than 2^31 bytes.
/// Threads  a map that has been set is reentrant.
/// Errors   ClExBadAlloc -102.
class ClIpCalibrateGeometricBaseMap {
 public:
  using Entry = MXKernels::WarpMapEntry;
  using Weights = const int16_t (*)[4][4];

  ClIpCalibrateGeometricBaseMap(uint32_t nRows, size_t nRowEntries, uint32_t nSourceHeight,
                                size_t nSourceRowBytes);

  size_t RowEntries() const { return m_nRowEntries; }
  void SetRow(uint32_t nRow, const Entry* pEntries);
  /// Gives the RowEntries() entries that were set.
  void GetRow(uint32_t nRow, Entry* pEntries) const;

  /// How many rows of the source, from its first, the samples of a row are made of.
  int SourceRows(uint32_t nRow) const { return m_pSourceRows[nRow]; }
  /// Makes the samples [nFirst, nFirst + nCount) of a row.
  void WarpRow(uint32_t nRow, size_t nFirst, size_t nCount, const ClImage& oSource, Weights pWeights,
               uint8_t nBackground, uint8_t* pOut) const;

 private:
  using Group = MXKernels::WarpGroup;
  using WholeRow = std::unique_ptr<Entry[]>;

  bool SetGroup(const Entry* pEntries, size_t nCount, Group& oGroup) const;
  bool SetLooseGroup(const Entry* pEntries, size_t nCount, Group& oGroup) const;
  Group* GroupsOf(uint32_t nRow) const { return m_pGroups.get() + nRow * m_nRowGroups; }

  const size_t m_nRowEntries;
  const size_t m_nRowGroups;
  const uint64_t m_nSourceBytes;
  const size_t m_nSourceRowBytes;
  std::unique_ptr<Group[]> m_pGroups;
  std::unique_ptr<WholeRow[]> m_pWholeRows;
  std::unique_ptr<int32_t[]> m_pSourceRows;
};
