// Counting, and the means and deviations over the counts.
#include "MXImageProcessing/Histogram.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <numeric>

#include "MXKernels/PointRows.h"
#include "MXTools/Exception.h"
#include "MXTools/FpImage.h"

void ClHistogram::Reset() {
  std::fill(std::begin(m_aCounts), std::end(m_aCounts), 0);
  m_nOffset = 0;
}

void ClHistogram::Create(const ClImage& oImage) {
  Create(oImage, 0, 0, oImage.Width(), oImage.Height());
}

void ClHistogram::Create(const ClImage& oImage, int nX0, int nY0, int nX1, int nY1) {
  Reset();
  if (oImage.Planes() > 1) {
    KLV_RAISE(ClException, "Color-image not supported in ClHistogram::Create.", -101);
  }
  if (nX0 >= nX1 || nY0 >= nY1) KLV_RAISE(ClException, "invalid Range in ClHistogram::Create.", -101);
  if (oImage.ElementSize() != 1) {
    KLV_RAISE(ClException, "Only images of 8 bits are supported in ClHistogram::Create.", -33);
  }
  nX0 = std::max(nX0, 0);
  nY0 = std::max(nY0, 0);
  nX1 = std::min(nX1, oImage.Width());
  nY1 = std::min(nY1, oImage.Height());
  for (int y = nY0; nX0 < nX1 && y < nY1; ++y) {
    MXKernels::HistogramRow(oImage.Row<uint8_t>(y) + nX0, static_cast<size_t>(nX1 - nX0), m_aCounts);
  }
  if (oImage.IsSigned()) {
    // The bytes of the negative samples stand in the upper half.
    std::rotate(std::begin(m_aCounts), std::begin(m_aCounts) + 128, std::end(m_aCounts));
    m_nOffset = 128;
  }
}

int ClHistogram::FirstValue() const {
  int nBin = 0;
  while (nBin < 255 && m_aCounts[nBin] == 0) ++nBin;
  return nBin - m_nOffset;
}

int ClHistogram::LastValue() const {
  int nBin = 255;
  while (nBin > 0 && m_aCounts[nBin] == 0) --nBin;
  return nBin - m_nOffset;
}

int ClHistogram::MaxCount() const {
  return *std::max_element(std::begin(m_aCounts), std::end(m_aCounts));
}

int ClHistogram::MinCount() const {
  return *std::min_element(std::begin(m_aCounts), std::end(m_aCounts));
}

int ClHistogram::GetColorCount() const {
  return static_cast<int>(256 - std::count(std::begin(m_aCounts), std::end(m_aCounts), 0));
}

int64_t ClHistogram::Total() const {
  return std::accumulate(std::begin(m_aCounts), std::end(m_aCounts), int64_t{0});
}

double ClHistogram::GetUniformity() const {
  const double dTotal = static_cast<double>(Total());
  if (dTotal == 0.0) return 0.0;
  double dSum = 0.0;
  for (const int32_t nCount : m_aCounts) dSum += (nCount / dTotal) * (nCount / dTotal);
  return dSum;
}

double ClHistogram::GetAverageDeviation() const {
  const double dTotal = static_cast<double>(Total());
  if (dTotal == 0.0) return 0.0;
  const double dMean = MeanBin(0, 255);
  double dSum = 0.0;
  for (int i = 0; i < 256; ++i) dSum += std::fabs(i - dMean) * m_aCounts[i];
  return dSum / dTotal;
}

bool ClHistogram::SumBins(int nFirst, int nLast, int64_t& rnSum, int64_t& rnWeighted) const {
  rnSum = rnWeighted = 0;
  for (int i = nFirst; i <= nLast; ++i) {
    rnWeighted += int64_t{i} * m_aCounts[i];
    rnSum += m_aCounts[i];
  }
  return rnSum != 0;
}

/// The mean, with the shift; for empty bins it is the middle of the range, truncated.
double ClHistogram::MeanBin(int nFirst, int nLast) const {
  int64_t nSum, nWeighted;
  const int nMiddle = (nFirst + nLast) / 2;
  return SumBins(nFirst, nLast, nSum, nWeighted) ? static_cast<double>(nWeighted) / static_cast<double>(nSum)
                                                 : nMiddle;
}

double ClHistogram::DeviationFrom(double dMean, int nFirst, int nLast) const {
  double dSquares = 0.0;
  int64_t nSum = 0;
  for (int i = nFirst; i <= nLast; ++i) {
    dSquares += (i - dMean) * (i - dMean) * m_aCounts[i];
    nSum += m_aCounts[i];
  }
  return nSum < 2 ? 0.0 : std::sqrt(dSquares / static_cast<double>(nSum - 1));
}

double ClHistogram::GetGreyMid(unsigned char nPos1, unsigned char nPos2) const {
  int64_t nSum, nWeighted;
  return MeanBin(nPos1, nPos2) - (SumBins(nPos1, nPos2, nSum, nWeighted) ? m_nOffset : 0);
}

double ClHistogram::GetStdDeviation(unsigned char nPos1, unsigned char nPos2) const {
  return DeviationFrom(GetGreyMid(nPos1, nPos2), nPos1, nPos2) - m_nOffset;
}

void ClHistogram::CheckRange(const char* szOperation, unsigned char nPos1, unsigned char nPos2) {
  if (nPos2 >= nPos1) return;
  char szText[128];
  std::snprintf(szText, sizeof(szText), "ClHistogram::%s(BYTE nPos1, BYTE nPos2): nPos2 >= nPos1 must given.",
                szOperation);
  KLV_RAISE(ClException, szText, -35);
}

int ClHistogram::GetMid(unsigned char nPos1, unsigned char nPos2) const {
  CheckRange("GetMid", nPos1, nPos2);
  int64_t nSum, nWeighted;
  SumBins(nPos1, nPos2, nSum, nWeighted);
  return static_cast<int>(nSum / (nPos2 - nPos1 + 1));
}

int ClHistogram::GetLocalMin(unsigned char nPos1, unsigned char nPos2) const {
  CheckRange("GetLocalMin", nPos1, nPos2);
  const auto* pFound = std::min_element(m_aCounts + nPos1, m_aCounts + nPos2 + 1);
  return static_cast<int>(pFound - m_aCounts) - m_nOffset;
}

int ClHistogram::GetLocalMax(unsigned char nPos1, unsigned char nPos2) const {
  CheckRange("GetLocalMax", nPos1, nPos2);
  const auto* pFound = std::max_element(m_aCounts + nPos1, m_aCounts + nPos2 + 1);
  return static_cast<int>(pFound - m_aCounts) - m_nOffset;
}

int ClHistogram::GetCentreOfMass(unsigned char nPos1, unsigned char nPos2) const {
  CheckRange("GetCentreOfMass", nPos1, nPos2);
  int64_t nSum, nWeighted;
  if (!SumBins(nPos1, nPos2, nSum, nWeighted)) return (nPos1 + nPos2) / 2;
  return static_cast<int>(nWeighted / nSum) - m_nOffset;
}

/// Counts from one end: the bin with which the count exceeds the share of all samples.
unsigned char ClHistogram::NoiseEnd(double dShare, int64_t nTotal, int nFirstBin, int nStep) const {
  const int nLastBin = 255 - nFirstBin;
  if (!(dShare < 1.0)) return static_cast<unsigned char>(nLastBin);
  const auto nNoise = static_cast<int64_t>(std::max(dShare, -1.0) * static_cast<double>(nTotal));
  int nBin = nFirstBin;
  for (int64_t nSum = m_aCounts[nBin]; nSum <= nNoise && nBin != nLastBin; nSum += m_aCounts[nBin])
    nBin += nStep;
  return static_cast<unsigned char>(nBin);
}

void ClHistogram::GetNoiseFreeRange(double dLow, double dHigh, unsigned char& rnFirst,
                                    unsigned char& rnLast) const {
  const int64_t nTotal = Total();
  rnFirst = nTotal == 0 ? 255 : NoiseEnd(dLow, nTotal, 0, 1);
  rnLast = nTotal == 0 ? 0 : NoiseEnd(dHigh, nTotal, 255, -1);
}

void ClHistogram::GetRange(ClImage& oImage, double dLow, double dHigh, unsigned char& rnFirst,
                           unsigned char& rnLast) {
  Create(oImage);
  GetNoiseFreeRange(dLow, dHigh, rnFirst, rnLast);
}

double ClHistogram::GetAverage(double dLow, double dHigh) const {
  const double dTotal = static_cast<double>(Total());
  const auto nFrom = static_cast<int64_t>(dLow * dTotal);
  const auto nTo = static_cast<int64_t>(dHigh * dTotal);
  int64_t nBelow = 0;
  int nLower = 0;
  while (nLower < 255 && nBelow + m_aCounts[nLower] <= nFrom) nBelow += m_aCounts[nLower++];
  int64_t nReached = nBelow + m_aCounts[nLower];
  int64_t nWeighted = int64_t{nLower} * m_aCounts[nLower];
  int nUpper = nLower;
  while (nUpper < 255 && nReached <= nTo) {
    ++nUpper;
    nReached += m_aCounts[nUpper];
    nWeighted += int64_t{nUpper} * m_aCounts[nUpper];
  }
  nWeighted -= nLower * (nFrom - nBelow) + nUpper * (nReached - nTo);
  const int64_t nSamples = nReached - nBelow - (nFrom - nBelow) - (nReached - nTo);
  return nSamples > 0 ? static_cast<double>(nWeighted) / static_cast<double>(nSamples) : nLower;
}

double ClHistogram::ExtremeAverage(unsigned int nCount, int nFirstBin, int nStep) const {
  if (Total() < int64_t{nCount}) KLV_RAISE(ClException, "Amount of pixels too high.", -44);
  if (nCount == 0) return 0.0;
  int nBin = nFirstBin;
  int64_t nSum = m_aCounts[nBin];
  int64_t nWeighted = int64_t{nBin} * m_aCounts[nBin];
  while (nSum < int64_t{nCount}) {
    nBin += nStep;
    nSum += m_aCounts[nBin];
    nWeighted += int64_t{nBin} * m_aCounts[nBin];
  }
  nWeighted -= (nSum - int64_t{nCount}) * nBin;
  return static_cast<double>(nWeighted) / nCount;
}

double ClHistogram::GetBrightestAvrg(unsigned int nCount) const {
  return ExtremeAverage(nCount, 255, -1);
}

double ClHistogram::GetDarkestAvrg(unsigned int nCount) const {
  return ExtremeAverage(nCount, 0, 1);
}
