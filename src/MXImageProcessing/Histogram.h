// Counts of the grey values of an 8-bit image and what is read from them.
#pragma once

#include <cstdint>

class ClImage;

/// 256 bins; a signed image fills bin v + 128 for its sample v, and its grey values are given without that
/// shift where the operation says so.
///
/// Domain  one-plane images of 8-bit samples.
/// Threads thread-bound.
/// Errors  ClException -101 several planes, or an empty rectangle; -33 samples wider than 8 bits.
class ClHistogram {
 public:
  ClHistogram() { Reset(); }
  virtual ~ClHistogram() = default;

  void Reset();
  /// The whole image.
  void Create(const ClImage& oImage);
  /// The rectangle [nX0, nX1) by [nY0, nY1), clamped to the image.
  void Create(const ClImage& oImage, int nX0, int nY0, int nX1, int nY1);

  /// First and last bin that isn't empty, less the shift; 255 and 0 when all are.
  int FirstValue() const;
  int LastValue() const;
  int MaxCount() const;
  int MinCount() const;
  /// Number of bins that aren't empty.
  int GetColorCount() const;
  /// Sum over the bins of (count / total)^2; 0 for an empty histogram.
  double GetUniformity() const;
  /// Mean distance of the samples from their mean; 0 for an empty histogram.
  double GetAverageDeviation() const;
  /// Mean grey value over the bins nPos1 to nPos2, less the shift. Empty bins or nPos1 > nPos2: the middle of
  /// the range, truncated, with the shift.
  double GetGreyMid(unsigned char nPos1, unsigned char nPos2) const;
  /// Standard deviation over those bins from their GetGreyMid, the sum divided by one less than the samples,
  /// less the shift. At most one sample: 0, less the shift.
  double GetStdDeviation(unsigned char nPos1, unsigned char nPos2) const;
  /// Mean of the samples whose rank lies between dLow and dHigh, shares of the total in 0 to 1; with the
  /// shift. An empty share gives its bin.
  double GetAverage(double dLow, double dHigh) const;
  /// Mean of the nCount brightest or darkest samples, with the shift. Errors: -44 for more than there are.
  double GetBrightestAvrg(unsigned int nCount) const;
  double GetDarkestAvrg(unsigned int nCount) const;

  int Count(unsigned char nBin) const { return m_aCounts[nBin]; }
  int Offset() const { return m_nOffset; }

 private:
  int64_t Total() const;
  double ExtremeAverage(unsigned int nCount, int nFirstBin, int nStep) const;

  int32_t m_aCounts[256];
  int m_nOffset;
};
