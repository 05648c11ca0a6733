// The threshold that follows the brightness round each pixel.
#include "MXImageProcessing/IpBinarizeLocal2.h"

#include <algorithm>

#include "ColumnSums.h"
#include "MXImageProcessing/MakeProcessor.h"
#include "MXImageProcessing/SampleLoop.h"
#include "MXKernels/BoxRows.h"
#include "MXTools/Exception.h"
#include "MXTools/ParameterContainer.h"
#include "MXTools/ParameterInterface.h"

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

void ClIpBinarizeLocal2::QueryParameters(ClParameterInterface& oInterface) {
  ClIp1to1Base::QueryParameters(oInterface);
  constexpr auto eIn = ClParameterInterface::eIn;
  oInterface.AddParameter(&m_nBlack, "Black", "In: Pixelvalue of Black", eIn, 0, 255);
  oInterface.AddParameter(&m_nWhite, "White", "In: Pixelvalue of White", eIn, 0, 255);
  oInterface.AddParameter(&nFilterWidthX, "nFilterWidthX", "In: Width of the window", eIn, 1.0, -1.0);
  oInterface.AddParameter(&nFilterWidthY, "nFilterWidthY", "In: Height of the window", eIn, 1.0, -1.0);
  oInterface.AddParameter(&nGrayOffset, "nGrayOffset", "In: Added to each pixel", eIn, -255, 255);
}

void ClIpBinarizeLocal2::PublishParameters(ClParameterContainer& oContainer) {
  ClIp1to1Base::PublishParameters(oContainer);
  oContainer.AddNumeric("Black", &m_nBlack);
  oContainer.AddNumeric("White", &m_nWhite);
  oContainer.AddNumeric("nFilterWidthX", &nFilterWidthX);
  oContainer.AddNumeric("nFilterWidthY", &nFilterWidthY);
  oContainer.AddNumeric("nGrayOffset", &nGrayOffset);
}

/// Moves signed samples up by 128, and their mean with them.
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
  const ClImage& oGrey = Unsigned(oIn);
  const auto nCount = static_cast<unsigned int>(oIn.Width());
  m_aPrefix.SetEntries(nCount + 1);
  MXKernels::WindowThreshold oWindow = {};
  oWindow.m_nRight = static_cast<size_t>(nFilterWidthX / 2);
  oWindow.m_nLeft = static_cast<size_t>(nFilterWidthX) - 1 - oWindow.m_nRight;
  // A larger offset lifts every sample above every mean, or puts it below, as this one does.
  oWindow.m_nOffset = static_cast<int32_t>(std::clamp(nGrayOffset, -256L, 256L));
  oWindow.m_nAbove = m_nWhite;
  oWindow.m_nBelow = m_nBlack;
  ForColumnSums<uint8_t>(oGrey, nFilterWidthY / 2, m_aSums, [&](int y, uint32_t nRows) {
    oWindow.m_nRows = nRows;
    MXKernels::AboveMeanRow(oGrey.Row<uint8_t>(y), m_aSums.Data(), nCount, oWindow, m_aPrefix.Data(),
                            oOut.Row<uint8_t>(y));
  });
  return 0;
}
