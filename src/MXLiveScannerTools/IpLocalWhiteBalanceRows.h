// The local white balance of eUint8, two rows at a time.
#pragma once

#include <cstdint>
#include <vector>

class ClImage;

/// Makes the rows of ClIpLocalWhiteBalance from the top, so that whoever takes them finds them in the caches.
///
/// The windows of a row are worked out from the sums along 2 * half + 1 rows of cells, which are kept in a
/// ring: the next row of windows takes one row of sums in and gives one away.
///
/// Ownership  keeps its numbers from run to run; the picture is the caller's and stays until its last row.
/// Threads    thread-bound.
/// Cost       with the sizes of the last run it allocates nothing.
class ClIpLocalWhiteBalanceRows {
 public:
  /// Whether windows of that many cells lie in the picture and are small enough for the arithmetic.
  static bool Fits(const ClImage& oIn, int nFilterWidth);

  /// Starts on a picture that fits.
  void Begin(const ClImage& oIn, int nFilterWidth);
  /// Makes the next two rows, which must not overlap the picture.
  void Next(uint8_t* pUpper, uint8_t* pLower);

 private:
  using Sums = std::vector<uint16_t>;

  Sums& SumsOf(int nCellRow, int nRow);
  void AddRow(int nCellRow);
  void SetAreas(int nRows);

  const ClImage* m_pIn = nullptr;
  int m_nHalf = 0;
  int m_nCellRow = 0;          // the next one to be made
  int m_nWindowRows = 0;       // the rows that m_aPerArea is for
  std::vector<Sums> m_aaRing;  // of each row of cells its upper and its lower row
  Sums m_aNone;                // stands in for rows outside the picture
  Sums m_aWork;
  std::vector<uint32_t> m_aWindows[2];
  std::vector<float> m_aPerArea;
};
