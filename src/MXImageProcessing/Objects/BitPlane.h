// One bit for each pixel of an image: thresholds and what is done with them.
#pragma once

#include <cstddef>
#include <cstdint>

#include "MXTools/FpImage.h"
#include "MXTools/TpArrayDynamic.h"

/// Rows of 64-bit words; pixel x is bit x % 64 of word x / 64. Bits from the width on are 0.
///
/// Ownership  owns its words and keeps them for the next size.
/// Threads    thread-bound.
/// Errors     ClExBadAlloc -102.
/// Cost       a few operations for each word.
class ClBitPlane {
 public:
  /// The largest half width that Dilate takes.
  static constexpr int cnMostHalf = 31;

  /// A rectangle of pixels, [m_nLeft, m_nRight) by [m_nTop, m_nBottom).
  struct StBox {
    int m_nLeft = 0;
    int m_nTop = 0;
    int m_nRight = 0;
    int m_nBottom = 0;

    int Width() const { return m_nRight - m_nLeft; }
    int Height() const { return m_nBottom - m_nTop; }
  };

  int Width() const { return m_nWidth; }
  int Height() const { return m_nHeight; }
  /// Words of a row.
  unsigned int Words() const { return m_nWords; }
  uint64_t* Row(int y) { return m_aWords.Data() + static_cast<size_t>(y) * m_nWords; }
  const uint64_t* Row(int y) const { return m_aWords.Data() + static_cast<size_t>(y) * m_nWords; }

  /// Sets the size and clears all bits.
  void Clear(int nWidth, int nHeight);
  /// Sets the bits of the samples below nLimit. Domain: one plane of eUint8.
  void TakeBelow(const ClImage& oImage, uint8_t nLimit);
  /// Sets the bits that lie at most nHalf columns and rows from a set bit of oPlane, which is another plane.
  /// Domain: nHalf up to cnMostHalf.
  void Dilate(const ClBitPlane& oPlane, int nHalf);
  /// Sets the bits that are set in oFirst and clear in oSecond, which is of the same size.
  void TakeWithout(const ClBitPlane& oFirst, const ClBitPlane& oSecond);
  /// Inverts each bit.
  void Invert();
  /// Keeps the bits that are set in oPlane too, which is of the same size.
  void Keep(const ClBitPlane& oPlane);
  /// Number of the bits that are set here and in oPlane, which is of the same size.
  uint64_t CountShared(const ClBitPlane& oPlane) const;
  /// A box that holds all set bits and nMargin pixels round them, where they exist, and begins at a word; all
  /// 0 without any.
  StBox BoxAround(int nMargin) const;

 private:
  void SetSize(int nWidth, int nHeight, int nMoreRows);
  uint64_t LastMask() const { return ~uint64_t{0} >> (63 - (static_cast<unsigned int>(m_nWidth) + 63) % 64); }
  size_t AllWords() const { return static_cast<size_t>(m_nWords) * static_cast<size_t>(m_nHeight); }

  int m_nWidth = 0;
  int m_nHeight = 0;
  unsigned int m_nWords = 0;
  TpArrayDynamic<uint64_t, 1> m_aWords;
};
