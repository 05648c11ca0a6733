// How a frame is blended into the merged print, and how it is compared with what is there.
//
// A mean over at most 121 pixels of 0 and 255, and then a threshold of 2 or 253, is a window of bits: one
// pixel changes the truncated mean by 2 at least. tests/MXLiveScannerAPI/PlainRoll.h has the means.
#include <cmath>

#include "MXKernels/RollRows.h"
#include "MXKernels/RunRows.h"
#include "MXLiveScannerAPI/IpAutoRoll.h"

namespace {

constexpr uint8_t cnMiddleGrey = 128;
/// The number of pixels that a frame must share with the merged print.
constexpr uint64_t cnMinShared = 500;
/// The sides of the windows that widen the strip, and of those that soften its edges, so that they leave no
/// seams.
constexpr int cnStripSide = 11;
constexpr int cnFirstSoftSide = 5;
constexpr int cnSecondSoftSide = 7;
/// The windows reach 5 pixels beyond the strip.
constexpr int cnMargin = 16;

}  // namespace

void ClIpAutoRoll::AddFrame() {
  ++m_nImageCount;
  m_oMergedDark.TakeBelow(m_oMerged, cnMiddleGrey);
  m_pFrame->MeasureRidges(*m_pInImage, m_oMeans, m_oSoft);
  if (m_nImageCount > 2) {
    if (m_oMergedDark.CountShared(m_pFrame->Dark()) < cnMinShared) m_nReturnCode = -802;
    CheckSlippage();
  }
  FindStrip();
  Blend();
  std::swap(m_pFrame, m_pLastFrame);
}

/// The strip is the area that the finger covers in the frame, but for the midst of pixels that are dark in
/// the merged print alone.
void ClIpAutoRoll::FindStrip() {
  const int nHalf = ClRollMeans::HalfOf(cnStripSide, m_oMerged.Width(), m_oMerged.Height());
  m_oStrip.TakeWithout(m_oMergedDark, m_pFrame->Dark());
  m_oLost.Dilate(m_oStrip, nHalf);
  m_oLost.Invert();
  m_oUnchanged.Dilate(m_oLost, nHalf);
  m_oStrip.Dilate(m_pFrame->Dark(), nHalf);
  m_oStrip.Keep(m_oUnchanged);
}

void ClIpAutoRoll::Blend() {
  const int nWidth = m_oMerged.Width(), nHeight = m_oMerged.Height();
  const ClBitPlane::StBox oBox = m_oStrip.BoxAround(cnMargin);
  const auto nCount = static_cast<size_t>(oBox.Width());
  for (ClImage* pImage : {&m_oWeights, &m_oSoft}) pImage->New(m_oMerged);
  for (int y = oBox.m_nTop; y < oBox.m_nBottom; ++y) {
    MXKernels::BytesOfBitsRow(m_oStrip.Row(y) + oBox.m_nLeft / 64, m_oWeights.Row<uint8_t>(y) + oBox.m_nLeft,
                              nCount);
  }
  m_oMeans.Mean(m_oWeights, oBox, ClRollMeans::HalfOf(cnFirstSoftSide, nWidth, nHeight), m_oSoft);
  m_oMeans.Mean(m_oSoft, oBox, ClRollMeans::HalfOf(cnSecondSoftSide, nWidth, nHeight), m_oWeights);
  for (int y = oBox.m_nTop; y < oBox.m_nBottom; ++y) {
    MXKernels::WeightedBlendRow(m_pInImage->Row<uint8_t>(y) + oBox.m_nLeft,
                                m_oWeights.Row<uint8_t>(y) + oBox.m_nLeft,
                                m_oMerged.Row<uint8_t>(y) + oBox.m_nLeft, nCount);
  }
}

void ClIpAutoRoll::CheckSlippage() {
  const ClRollFrame::StDifference oTotal = m_pFrame->DifferenceFrom(*m_pLastFrame);
  // Without a pixel in common the root is NaN, which is above no threshold.
  const double dDifference = std::sqrt(static_cast<double>(oTotal.nSum) / static_cast<double>(oTotal.nCount));
  if (dDifference > m_dSlipThreshold) {
    ++m_nSlipRun;
    m_nMaxSlipRun = std::max(m_nMaxSlipRun, m_nSlipRun);
  } else {
    m_nSlipRun = 0;
  }
}
