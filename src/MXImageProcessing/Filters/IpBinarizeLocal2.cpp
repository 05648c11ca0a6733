// The threshold that follows the brightness round each pixel.
#include "MXImageProcessing/IpBinarizeLocal2.h"

#include <algorithm>

#include "ColumnSums.h"
#include "MXImageProcessing/MakeProcessor.h"
#include "MXImageProcessing/SampleLoop.h"
#include "MXKernels/BoxRows.h"
#include "MXTools/Exception.h"
#include "MXTools/ParameterRows.h"

ClIpBinarizeLocal2::ClIpBinarizeLocal2() : ClIp1to1Base(false) {
  ClIpBinarizeLocal2::SetParametersToDefault();
}

long ClIpBinarizeLocal2::ApplyParam(ClImage& oIn, ClImage& oOut, long nWidthX, long nWidthY, long nOffset) {
  nFilterWidthX = nWidthX;
  nFilterWidthY = nWidthY;
  nGrayOffset = nOffset;
  return ApplyParam(oIn, oOut, ClImage::cnTypeDefault);
}

ClProcessorBase* ClIpBinarizeLocal2::Create() const {
  return MakeProcessor<ClIpBinarizeLocal2>();
}

void ClIpBinarizeLocal2::SetParametersToDefault() {
  ClIp1to1Base::SetParametersToDefault();
  m_nBlack = 0;
  m_nWhite = 255;
  nFilterWidthX = nFilterWidthY = 11;
  nGrayOffset = 0;
}

void ClIpBinarizeLocal2::DeclareParameters(ClParameterRows& oRows) {
  ClIp1to1Base::DeclareParameters(oRows);
  oRows.Number("Black", "Black", "In: Pixelvalue of Black", &m_nBlack, 0, 255);
  oRows.Number("White", "White", "In: Pixelvalue of White", &m_nWhite, 0, 255);
  oRows.Number("nFilterWidthX", "nFilterWidthX", "In: Width of the window", &nFilterWidthX);
  oRows.Number("nFilterWidthY", "nFilterWidthY", "In: Height of the window", &nFilterWidthY);
  oRows.Number("nGrayOffset", "nGrayOffset", "In: Added to each pixel", &nGrayOffset, -255, 255);
}

/// Moves signed samples, and thereby their mean, up by 128.
const ClImage& ClIpBinarizeLocal2::Unsigned(const ClImage& oIn) {
  if (!oIn.IsSigned()) return oIn;
  m_oShifted.New(oIn);
  MapSamples<uint8_t, uint8_t>(oIn, m_oShifted, [](uint8_t n) { return static_cast<uint8_t>(n ^ 0x80); });
  return m_oShifted;
}

long ClIpBinarizeLocal2::DoProcess(ClImage& oIn, ClImage& oOut) {
  if (oIn.ElementSize() != 1 || oIn.Planes() > 1) return -101;
  if (nFilterWidthX < 1 || nFilterWidthY < 1) {
    KLV_RAISE(ClException, "Filter width has to be positive.", -44);
  }
  if (oIn.Width() < nFilterWidthX || oIn.Height() < nFilterWidthY) {
    oOut = oIn;
    return 0;
  }
  oOut.New(oIn);
  // An offset of +-256 already lifts every sample above every mean, or puts it below: a larger one is the
  // same.
  const long nOffset = std::clamp(nGrayOffset, -256L, 256L);
  const uint64_t nArea = static_cast<uint64_t>(nFilterWidthX) * static_cast<uint64_t>(nFilterWidthY | 1);
  if (nOffset >= 0 && nArea <= 65535 / static_cast<uint64_t>(255 + nOffset)) {
    BinarizeBy(m_oNarrowSums, Unsigned(oIn), nOffset, oOut);
  } else {
    BinarizeBy(m_oWideSums, Unsigned(oIn), nOffset, oOut);
  }
  return 0;
}

template <typename TSum>
void ClIpBinarizeLocal2::BinarizeBy(TpColumnSums<TSum>& oSums, const ClImage& oGrey, long nOffset,
                                    ClImage& oOut) const {
  const auto nCount = static_cast<unsigned int>(oGrey.Width());
  oSums.m_aPrefix.SetEntries(nCount + 1);
  MXKernels::WindowThreshold oWindow = {};
  oWindow.m_nRight = static_cast<size_t>(nFilterWidthX / 2);
  oWindow.m_nLeft = static_cast<size_t>(nFilterWidthX) - 1 - oWindow.m_nRight;
  oWindow.m_nOffset = static_cast<int32_t>(nOffset);
  oWindow.m_nAbove = m_nWhite;
  oWindow.m_nBelow = m_nBlack;
  ForColumnSums<uint8_t>(oGrey, nFilterWidthY / 2, oSums.m_aSums, [&](int y, uint32_t nRows) {
    oWindow.m_nRows = nRows;
    MXKernels::AboveMeanRow(oGrey.Row<uint8_t>(y), oSums.m_aSums.Data(), nCount, oWindow,
                            oSums.m_aPrefix.Data(), oOut.Row<uint8_t>(y));
  });
}
