// Counts of the grey values of an 8-bit image and what is read from them.
#pragma once

#include <cstdint>

class ClImage;

/// 256 bins; a signed image fills bin v + 128 for its sample v, and its grey values are given without that
/// shift where the operation says so.
///
/// Domain  one-plane images of 8-bit samples.
/// Threads thread-bound.
/// Errors  ClException -101 several planes, or an empty rectangle; -33 samples wider than 8 bits; -35 a range
///         of bins that ends before it begins, where the operation is one of GetMid to GetCentreOfMass or
///         stands on GetMid.
class ClHistogram {
 public:
  ClHistogram() { Reset(); }
  virtual ~ClHistogram() = default;

  void Reset();
  /// The whole image.
  void Create(const ClImage& oImage);
  /// The rectangle [nX0, nX1) by [nY0, nY1), clamped to the image.
  void Create(const ClImage& oImage, int nX0, int nY0, int nX1, int nY1);

  /// The first and the last bin that isn't empty, less the shift; 255 and 0, less the shift, when all are
  /// empty.
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
  /// Mean grey value over the bins nPos1 to nPos2, less the shift. For empty bins and for nPos1 > nPos2 it is
  /// the middle of the range, truncated, with the shift.
  double GetGreyMid(unsigned char nPos1, unsigned char nPos2) const;
  /// Standard deviation of those bins from their GetGreyMid, less the shift. The sum of squares is divided by
  /// one less than the number of samples; for one sample or none the deviation is 0.
  double GetStdDeviation(unsigned char nPos1, unsigned char nPos2) const;
  /// Mean, with the shift, of the samples whose rank lies between the shares dLow and dHigh, 0 to 1, of all
  /// samples. When no sample lies between them, it is the bin where they fall.
  double GetAverage(double dLow, double dHigh) const;
  /// Mean of the nCount brightest or darkest samples, with the shift. Errors: -44 for more samples than there
  /// are.
  double GetBrightestAvrg(unsigned int nCount) const;
  double GetDarkestAvrg(unsigned int nCount) const;

  /// The bins that are left without the darkest samples, a share of dLow, and the brightest, a share of
  /// dHigh; a share of 1 is all samples. Without samples they are 255 to 0.
  void GetNoiseFreeRange(double dLow, double dHigh, unsigned char& rnFirst, unsigned char& rnLast) const;
  /// The same for an image: the histogram becomes that of the image.
  void GetRange(ClImage& oImage, double dLow, double dHigh, unsigned char& rnFirst, unsigned char& rnLast);

  /// Mean count of the bins nPos1 to nPos2, truncated.
  int GetMid(unsigned char nPos1, unsigned char nPos2) const;
  /// The first of the smallest or largest bins of the range, less the shift.
  int GetLocalMin(unsigned char nPos1, unsigned char nPos2) const;
  int GetLocalMax(unsigned char nPos1, unsigned char nPos2) const;
  /// Mean bin of the range, weighted by the counts, truncated, less the shift. For empty bins it is the
  /// middle of the range, with the shift.
  int GetCentreOfMass(unsigned char nPos1, unsigned char nPos2) const;

  /// Each bin becomes the truncated mean of itself and of the nWidth / 2 bins on either side that exist. The
  /// form without a width runs twice, with a width of 3.
  void LowPass();
  void LowPass(int nWidth);
  /// pOut[i], for i from nWidth to 255 - nWidth, is the mean over k from 1 to nWidth of the slopes between
  /// the bins i - k and i + k; the rest of its 256 elements stays as it is.
  void CalcFirstDerivation(int nWidth, double* pOut) const;

  /// Where a walk from nPos ends, less the shift, that goes uphill (downhill) as long as the mean of the next
  /// nStep bins is above (below) that of the last nStep bins. Descend starts at least nStep bins from the
  /// ends.
  int Climb(unsigned char nPos, unsigned char nStep) const;
  int Descend(unsigned char nPos, unsigned char nStep) const;
  /// Whether the counts, once they have begun to fall, rise no more below bin 240. The argument has no
  /// meaning.
  bool IsUnimodal(unsigned char nUnused) const;

  /// The threshold between two clusters of grey values, less the shift: by the middle of their means, or
  /// where the normal distribution of the upper one begins to outweigh that of the lower one.
  int TwoMeansClustering(bool bGaussian) const;
  /// One round of either: the clusters of the bins up to nThreshold and above it, and the next threshold, all
  /// with the shift. The mean of an empty cluster is its middle.
  unsigned int TwoMeansClustering(double& rdMean1, double& rdMean2, unsigned int nThreshold) const;
  unsigned int TwoMeansClustering(double& rdMean1, double& rdDeviation1, double& rdMean2,
                                  double& rdDeviation2, unsigned int nThreshold) const;

  int Count(unsigned char nBin) const { return m_aCounts[nBin]; }
  int Offset() const { return m_nOffset; }

 private:
  static void CheckRange(const char* szOperation, unsigned char nPos1, unsigned char nPos2);
  int64_t Total() const;
  bool SumBins(int nFirst, int nLast, int64_t& rnSum, int64_t& rnWeighted) const;
  double MeanBin(int nFirst, int nLast) const;
  double DeviationFrom(double dMean, int nFirst, int nLast) const;
  unsigned char NoiseEnd(double dShare, int64_t nTotal, int nFirstBin, int nStep) const;
  int Slope(int nPos, int nStep) const;
  int Walk(int nPos, int nStep, int nSense) const;
  double ExtremeAverage(unsigned int nCount, int nFirstBin, int nStep) const;

  int32_t m_aCounts[256];
  int m_nOffset;
};
