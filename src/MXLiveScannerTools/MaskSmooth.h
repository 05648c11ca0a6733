// Smooth lower and upper limits of a frame: its background and the envelope of its ridges.
#pragma once

#include <cstdint>

#include "MXKernels/SmoothRows.h"
#include "MXLiveScannerTools/MaskWindows.h"

/// The smallest sample of windows of 7 by 7 pixels, then the largest of those, or the other way round, and
/// the mean of these. Windows are clipped at the image's borders.
///
/// Domain     rows of bytes, at least one of them, with at least one sample.
/// Ownership  keeps some rows, no image.
/// Threads    thread-bound.
/// Errors     ClExBadAlloc -102.
class ClMaskSmooth {
 public:
  using Rank = decltype(MXKernels::MinOf7RowsRow);

  /// To be called before the first row of an image. Before the mean samples saturate at nMost. The kernels
  /// are not copied.
  void Start(int nWidth, int nHeight, const Rank& oFirst, const Rank& oSecond, uint8_t nMost);

  /// Makes row y of the output; rows are made in order, from 0 on. fnIn(n) gives row n of the input; it is
  /// called once for each row, in order and up to 9 rows ahead, and the last 7 rows must stay as they are.
  template <typename TIn>
  void MakeRow(int y, const TIn& fnIn, uint8_t* pOut) {
    const auto First = [&](int n) { return m_aRanks[0].Row(n, fnIn); };
    const auto Leave = [this](int n) { return m_aRanks[1].Made(n); };
    MaskWindows::MoveRows<uint8_t>(
        y, m_nHalf, m_nHeight, m_oNone.Row(0), [&](int n) { return m_aRanks[1].Row(n, First); }, Leave,
        [this](const uint8_t* pEnter, const uint8_t* pLeave) { Move(pEnter, pLeave); });
    Store(y, pOut);
  }

 private:
  static constexpr int cnRankHalf = 3;

  /// Extremes of the rows that come in.
  class ClRank {
   public:
    void Start(int nWidth, int nHeight, const Rank& oRank);
    template <typename TIn>
    const uint8_t* Row(int n, const TIn& fnIn) {
      for (; m_nTaken <= std::min(n + cnRankHalf, m_nHeight - 1); ++m_nTaken) {
        m_apIn[m_nTaken % cnRows] = fnIn(m_nTaken);
      }
      return Make(n);
    }
    const uint8_t* Made(int n) { return m_oMade.Row(n); }

   private:
    static constexpr int cnRows = 2 * cnRankHalf + 2;

    const uint8_t* Make(int n);

    const Rank* m_poRank = nullptr;
    int m_nWidth = 0;
    int m_nHeight = 0;
    int m_nTaken = 0;
    const uint8_t* m_apIn[cnRows] = {};
    MaskWindows::TpRows<uint8_t> m_oMade;
    MaskWindows::TpRows<uint8_t> m_oWork;
  };

  void Move(const uint8_t* pEnter, const uint8_t* pLeave);
  void Store(int y, uint8_t* pOut);

  int m_nWidth = 0;
  int m_nHeight = 0;
  int m_nHalf = 0;
  uint8_t m_nMost = 0;
  ClRank m_aRanks[2];
  MaskWindows::TpRows<uint8_t> m_oNone;
  MaskWindows::TpRows<uint16_t> m_oSums;
  MaskWindows::TpOfArea<uint16_t> m_oFactors;
};
