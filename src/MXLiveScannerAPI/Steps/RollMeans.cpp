// Column sums that move down the box.
#include "MXLiveScannerAPI/RollMeans.h"

#include "MXKernels/BoxRows.h"

namespace {

/// Calls fnRow(y, nRows) for the rows of the box, numbered as those of the image, with the sums of its
/// columns.
template <typename TSums, typename TRow>
void ForSumsInBox(const ClImage& oIn, const ClBitPlane::StBox& oBox, int nHalf, TSums& aSums,
                  const TRow& fnRow) {
  const auto Samples = [&](long y) {
    return oIn.Row<uint8_t>(oBox.m_nTop + static_cast<int>(y)) + oBox.m_nLeft;
  };
  ForColumnSums(Samples, oBox.Width(), oBox.Height(), nHalf, aSums,
                [&](int y, uint32_t nRows) { fnRow(oBox.m_nTop + y, nRows); });
}

}  // namespace

/// A later box may be wider.
void ClRollMeans::Reserve(int nWidth) {
  m_oSums.m_aSums.SetEntries(static_cast<unsigned int>(nWidth));
  m_oSums.m_aPrefix.SetEntries(static_cast<unsigned int>(nWidth) + 1);
}

void ClRollMeans::Mean(const ClImage& oIn, const ClBitPlane::StBox& oBox, int nHalf, ClImage& oOut) {
  const auto nCount = static_cast<unsigned int>(oBox.Width());
  Reserve(oIn.Width());
  ForSumsInBox(oIn, oBox, nHalf, m_oSums.m_aSums, [&](int y, uint32_t nRows) {
    MXKernels::SlidingMeanRow(m_oSums.m_aSums.Data(), nCount, static_cast<size_t>(nHalf), nRows,
                              m_oSums.m_aPrefix.Data(), oOut.Row<uint8_t>(y) + oBox.m_nLeft);
  });
}

void ClRollMeans::BelowMean(const ClImage& oIn, const ClBitPlane::StBox& oBox, int nHalf, ClImage& oOut) {
  const auto nCount = static_cast<unsigned int>(oBox.Width());
  Reserve(oIn.Width());
  // In whole numbers a sample is below the truncated mean when one more than it is not above the mean.
  MXKernels::WindowThreshold oWindow = {};
  oWindow.m_nLeft = oWindow.m_nRight = static_cast<size_t>(nHalf);
  oWindow.m_nOffset = 1;
  oWindow.m_nAbove = 0;
  oWindow.m_nBelow = 255;
  ForSumsInBox(oIn, oBox, nHalf, m_oSums.m_aSums, [&](int y, uint32_t nRows) {
    oWindow.m_nRows = nRows;
    MXKernels::AboveMeanRow(oIn.Row<uint8_t>(y) + oBox.m_nLeft, m_oSums.m_aSums.Data(), nCount, oWindow,
                            m_oSums.m_aPrefix.Data(), oOut.Row<uint8_t>(y) + oBox.m_nLeft);
  });
}
