// Runs of set bits in the rows of an image, and which of them hang together.
#pragma once

#include <cstdint>

#include "MXTools/TpArrayDynamic.h"

/// Takes the rows of an image from the top down; runs of neighbouring rows that share a column belong to one
/// set.
///
/// Domain     rows as MXKernels::BelowBitsRow writes them: bits from the width on are 0.
/// Ownership  keeps nothing of a row; the lists are kept for the next image.
/// Threads    thread-bound.
/// Errors     ClExBadAlloc -102.
/// Cost       a step for each word and for each run, whatever the sets look like.
class ClRunSets {
 public:
  /// Begins an image.
  void Begin(int nWidth, int nHeight);
  /// Adds the next of its rows.
  void AddRow(const uint64_t* pBits);
  /// After the last row: numbers the sets from 1, in the order of their first pixels, and returns how many
  /// there are.
  int32_t NumberSets();

  /// Calls fnRun(set, begin, end) for each run [begin, end) of a row, from the left.
  template <typename TRun>
  void ForEachRun(int y, const TRun& fnRun) const {
    for (uint32_t n = m_aRowBegins[static_cast<unsigned int>(y)];
         n < m_aRowBegins[static_cast<unsigned int>(y) + 1]; ++n) {
      fnRun(static_cast<int32_t>(m_aLeaders[n]), m_aRuns[n].m_nBegin, m_aRuns[n].m_nEnd);
    }
  }

 private:
  /// A run [m_nBegin, m_nEnd) of set bits.
  struct ClLinePart {
    int32_t m_nBegin;
    int32_t m_nEnd;
  };
  /// Two runs of neighbouring rows that touch.
  struct ClPair {
    uint32_t m_nUpper;
    uint32_t m_nLower;
  };

  void FindRuns(const uint64_t* pBits);
  void JoinRows(uint32_t nAbove, uint32_t nBelow);
  uint32_t LeaderOf(uint32_t nRun);
  void Join(uint32_t nRunA, uint32_t nRunB);

  int m_nWidth = 0;
  /// The runs of all rows; for each row where its own begin, and where those of the next row will.
  TpArrayDynamic<ClLinePart, 100> m_aRuns;
  TpArrayDynamic<uint32_t, 100> m_aRowBegins;
  /// Each run leads to an earlier one of its set, the first to itself; in the end each has its set's number.
  TpArrayDynamic<uint32_t, 1> m_aLeaders;
  TpArrayDynamic<ClPair, 1> m_aPairs;
};
