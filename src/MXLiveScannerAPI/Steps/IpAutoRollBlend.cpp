// How a frame is blended into the merged print, and how it is compared with what is there.
#include <cmath>

#include "MXKernels/PointRows.h"
#include "MXKernels/RollRows.h"
#include "MXLiveScannerAPI/IpAutoRoll.h"

namespace {

constexpr double cdMiddleGrey = 128.0;
/// The number of pixels that a frame must share with the merged print.
constexpr size_t cnMinShared = 500;

/// Takes two images of one size and type.
void ApplyAnd(ClIpAnd& oAnd, ClImage& oFirst, ClImage& oSecond, ClImage& oOut) {
  oAnd.ApplyParam(oFirst, oSecond, oOut, ClImage::cnTypeDefault);
}

size_t SamplesOf(const ClImage& oImage) {
  return static_cast<size_t>(oImage.Width());
}

/// Inverts an image of 0 and 255.
void InvertBinary(ClImage& oImage) {
  for (int y = 0; y < oImage.Height(); ++y) {
    uint8_t* pRow = oImage.Row<uint8_t>(y);
    MXKernels::ThresholdRow(pRow, pRow, SamplesOf(oImage), 128, 255, 0);
  }
}

}  // namespace

void ClIpAutoRoll::AddCurrentImage() {
  ++m_nImageCount;
  m_oBinarize.ApplyParam(m_oMerged, m_oMergedFinger, cdMiddleGrey);
  m_oBinarize.ApplyParam(m_oCurrent, m_oFrameFinger, cdMiddleGrey);
  MeasureRidges();
  if (m_nImageCount > 2) {
    CheckForSkippedImage(m_oMergedFinger, m_oFrameFinger);
    CheckSlippageBetweenImages();
  }
  m_oArea.Swap(m_oLastArea);
  m_oRidges.Swap(m_oLastRidges);

  MakeWeights();
  for (int y = 0; y < m_oMerged.Height(); ++y) {
    MXKernels::WeightedBlendRow(m_oCurrent.Row<uint8_t>(y), m_oStrip.Row<uint8_t>(y),
                                m_oMerged.Row<uint8_t>(y), SamplesOf(m_oMerged));
  }
}

void ClIpAutoRoll::MakeWeights() {
  ApplyAnd(m_oAnd, m_oMergedFinger, m_oFrameFinger, m_oShared);
  m_oMean.ApplyParam(m_oFrameFinger, m_oSoftFrame, 11);
  m_oMean.ApplyParam(m_oShared, m_oSoftShared, 11);
  // The strip is where the frame differs from what it shares with the merged print, and a margin around it.
  m_oDelta.ApplyParam(m_oSoftShared, m_oSoftFrame, m_oDifference, ClImage::cnTypeDefault);
  m_oBinarize.ApplyParam(m_oDifference, m_oShared, 2.0);
  InvertBinary(m_oShared);
  m_oMean.ApplyParam(m_oShared, m_oStrip, 11);
  m_oBinarize.ApplyParam(m_oStrip, m_oShared, 2.0);
  // The strip is limited to the area that the finger covers in the frame.
  m_oBinarize.ApplyParam(m_oSoftFrame, m_oFrameArea, 253.0);
  InvertBinary(m_oFrameArea);
  ApplyAnd(m_oAnd, m_oFrameArea, m_oShared, m_oStrip);
  // The edges are softened, so that they leave no seams.
  m_oMean.ApplyParam(m_oStrip, m_oShared, 5);
  m_oMean.ApplyParam(m_oShared, m_oStrip, 7);
}

void ClIpAutoRoll::CheckForSkippedImage(const ClImage& oFirst, const ClImage& oSecond) {
  size_t nShared = 0;
  for (int y = 0; y < oFirst.Height(); ++y) {
    nShared +=
        MXKernels::CountBothBelowWhite(oFirst.Row<uint8_t>(y), oSecond.Row<uint8_t>(y), SamplesOf(oFirst));
  }
  if (nShared < cnMinShared) m_nReturnCode = -802;
}

void ClIpAutoRoll::MeasureRidges() {
  m_oMean.ApplyParam(m_oCurrent, m_oSoft, 21);
  m_oBinarize.ApplyParam(m_oSoft, m_oArea, cdWhite);
  InvertBinary(m_oArea);
  BinarizeImage(m_oCurrent, m_oSoftFrame);
  m_bBlurred = false;
  m_oMean.ApplyParam(m_oSoftFrame, m_oRidges, 5);
}

void ClIpAutoRoll::BinarizeImage(ClImage& oIn, ClImage& oOut) {
  oOut.NewWithType(ClImage::eUint8, oIn.Width(), oIn.Height(), 1, 19685, 19685, true);
  if (!m_bBlurred) m_oMean.ApplyParam(oIn, m_oBlurred, cnBlobWidth);
  for (int y = 0; y < oIn.Height(); ++y) {
    MXKernels::BelowRow(oIn.Row<uint8_t>(y), m_oBlurred.Row<uint8_t>(y), oOut.Row<uint8_t>(y),
                        SamplesOf(oIn));
  }
}

void ClIpAutoRoll::CheckSlippageBetweenImages() {
  MXKernels::MaskedDifference oTotal;
  for (int y = 0; y < m_oArea.Height(); ++y) {
    MXKernels::SquaredDifferenceWhere(m_oRidges.Row<uint8_t>(y), m_oLastRidges.Row<uint8_t>(y),
                                      m_oArea.Row<uint8_t>(y), m_oLastArea.Row<uint8_t>(y),
                                      SamplesOf(m_oArea), oTotal);
  }
  // Without a pixel in common the root is NaN, which is above no threshold.
  const double dDifference =
      std::sqrt(static_cast<double>(oTotal.m_nSum) / static_cast<double>(oTotal.m_nCount));
  if (dDifference > m_dSlipThreshold) {
    ++m_nSlipRun;
    m_nMaxSlipRun = std::max(m_nMaxSlipRun, m_nSlipRun);
  } else {
    m_nSlipRun = 0;
  }
}
