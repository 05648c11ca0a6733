// The loop over the overlap of two images that all two-image processors share.
#pragma once

/// The overlap of two images and their output, in elements.
struct ClOverlap {
  long m_nWidth;
  long m_nHeight;
  long m_nPlanes1;
  long m_nPlanes2;
  long m_nOffset1;
  long m_nRowStep1;
  long m_nOffset2;
  long m_nRowStep2;
  long m_nOffsetOut;
  long m_nRowStepOut;

  bool SamplesPair() const { return m_nPlanes1 == m_nPlanes2; }
  /// One sample of the second image goes with each of a pixel's three.
  bool OneForThree() const { return m_nPlanes1 == 3 && m_nPlanes2 == 1; }
};

/// Calls fnSample(element of the first image, of the second, of the output) for each sample of the overlap.
/// Mixes of planes that fit neither way call nothing.
template <typename TSample>
void ForOverlapElements(const ClOverlap& oOverlap, const TSample& fnSample) {
  for (long y = 0; y < oOverlap.m_nHeight; ++y) {
    const long n1 = oOverlap.m_nOffset1 + y * oOverlap.m_nRowStep1;
    const long n2 = oOverlap.m_nOffset2 + y * oOverlap.m_nRowStep2;
    const long nOut = oOverlap.m_nOffsetOut + y * oOverlap.m_nRowStepOut;
    if (oOverlap.SamplesPair()) {
      const long nSamples = oOverlap.m_nWidth * oOverlap.m_nPlanes1;
      for (long n = 0; n < nSamples; ++n) fnSample(n1 + n, n2 + n, nOut + n);
    } else if (oOverlap.OneForThree()) {
      for (long n = 0; n < 3 * oOverlap.m_nWidth; ++n) fnSample(n1 + n, n2 + n / 3, nOut + n);
    }
  }
}
