// Thresholds of means are windows of bits: a truncated mean is white when each of its pixels is.
#include "MXLiveScannerAPI/RollFrame.h"

#include <algorithm>

#include "MXKernels/RollRows.h"

namespace {

constexpr uint8_t cnWhite = 255;
constexpr uint8_t cnMiddleGrey = 128;
/// The sides of the windows: over the first the ridges become one piece, over the second each is darker than
/// the mean, over the third they are softened.
constexpr int cnAreaSide = 21;
constexpr int cnRidgeSide = 15;
constexpr int cnSoftSide = 5;
/// The area reaches 10 pixels beyond what is covered, the windows of its softened ridges 2 more.
constexpr int cnMargin = 16;

}  // namespace

void ClRollFrame::Clear(int nWidth, int nHeight) {
  for (ClBitPlane* pPlane : {&m_oCovered, &m_oDark, &m_oArea}) pPlane->Clear(nWidth, nHeight);
  m_oBox = {};
}

void ClRollFrame::Take(const ClImage& oFrame) {
  m_oCovered.TakeBelow(oFrame, cnWhite);
  m_oDark.TakeBelow(oFrame, cnMiddleGrey);
}

void ClRollFrame::MeasureRidges(const ClImage& oFrame, ClRollMeans& oMeans, ClImage& oScratch) {
  const int nWidth = oFrame.Width(), nHeight = oFrame.Height();
  m_oArea.Dilate(m_oCovered, ClRollMeans::HalfOf(cnAreaSide, nWidth, nHeight));
  m_oBox = m_oCovered.BoxAround(cnMargin);
  for (ClImage* pImage : {&m_oRidges, &oScratch}) pImage->New(oFrame);
  oMeans.BelowMean(oFrame, m_oBox, ClRollMeans::HalfOf(cnRidgeSide, nWidth, nHeight), oScratch);
  oMeans.Mean(oScratch, m_oBox, ClRollMeans::HalfOf(cnSoftSide, nWidth, nHeight), m_oRidges);
}

ClRollFrame::StDifference ClRollFrame::DifferenceFrom(const ClRollFrame& oOther) const {
  StDifference oDifference;
  oDifference.nCount = m_oArea.CountShared(oOther.m_oArea);
  // Boxes begin at a word, and each holds the area of its frame.
  const int nLeft = std::max(m_oBox.m_nLeft, oOther.m_oBox.m_nLeft);
  const int nRight = std::min(m_oBox.m_nRight, oOther.m_oBox.m_nRight);
  const int nBottom = std::min(m_oBox.m_nBottom, oOther.m_oBox.m_nBottom);
  if (nLeft >= nRight) return oDifference;
  for (int y = std::max(m_oBox.m_nTop, oOther.m_oBox.m_nTop); y < nBottom; ++y) {
    oDifference.nSum += MXKernels::SquaredDifferenceWhere(
        m_oRidges.Row<uint8_t>(y) + nLeft, oOther.m_oRidges.Row<uint8_t>(y) + nLeft,
        m_oArea.Row(y) + nLeft / 64, oOther.m_oArea.Row(y) + nLeft / 64, static_cast<size_t>(nRight - nLeft));
  }
  return oDifference;
}
