// The checks of the rectangle and the copy of its rows.
#include "MXImageProcessing/IpCut.h"

#include <cstring>

#include "MXImageProcessing/MakeProcessor.h"
#include "MXTools/Exception.h"
#include "MXTools/ParameterRows.h"

ClIpCut::ClIpCut() {
  EnableDataType(m_caAllTypes);
  ClIpCut::SetParametersToDefault();
}

long ClIpCut::ApplyParam(ClImage& oIn, long nBorder, ClImage& oOut) {
  return ApplyParam(oIn, nBorder, nBorder, oIn.Width() - 2 * nBorder, oIn.Height() - 2 * nBorder, oOut);
}

long ClIpCut::ApplyParam(ClImage& oIn, long nX, long nY, long nWidth, long nHeight, ClImage& oOut) {
  m_nX0 = nX;
  m_nY0 = nY;
  m_nDestWidth = nWidth;
  m_nDestHeight = nHeight;
  return ApplyParam(oIn, oOut);
}

ClProcessorBase* ClIpCut::Create() const {
  return MakeProcessor<ClIpCut>();
}

void ClIpCut::SetParametersToDefault() {
  m_nX0 = m_nY0 = m_nDestWidth = m_nDestHeight = 0;
}

void ClIpCut::DeclareParameters(ClParameterRows& oRows) {
  const auto fnImages = [&] {
    oRows.Input("pInImage", "InImage", "In: Original Image", &m_pInImage);
    oRows.Output("pOutImage", "OutImage", "Out: Clipping", &m_pOutImage);
  };
  // The older list has the images last.
  if (!oRows.IsOlder()) fnImages();
  oRows.Number("nX0", "X0", "In: Start X", &m_nX0);
  oRows.Number("nY0", "Y0", "In: Start Y", &m_nY0);
  oRows.Number("nDestWidth", "DestWidth", "In: Cut Width", &m_nDestWidth);
  oRows.Number("nDestHeight", "DestHeight", "In: Cut Height", &m_nDestHeight);
  if (oRows.IsOlder()) fnImages();
}

void ClIpCut::CheckRectangle(const ClImage& oIn) const {
  const auto Require = [](bool bHolds, const char* szText) {
    if (!bHolds) KLV_RAISE(ClException, szText, -35);
  };
  Require(m_nX0 >= 0, "ClIpCut::Process. m_nX0 < 0");
  Require(m_nY0 >= 0, "ClIpCut::Process. m_nY0 < 0");
  Require(m_nX0 < oIn.Width(), "ClIpCut::Process. m_nX0>=m_pInImage->Width()");
  Require(m_nY0 < oIn.Height(), "ClIpCut::Process. m_nY0>=m_pInImage->Height()");
  Require(m_nDestWidth > 0, "ClIpCut::Process. m_nDestWidth <= 0");
  Require(m_nDestHeight > 0, "ClIpCut::Process. m_nDestHeight <= 0");
  // The sum could overflow a long; the difference cannot.
  Require(m_nDestWidth <= oIn.Width() - m_nX0, "ClIpCut::Process. m_nX0+m_nDestWidth > m_pInImage->Width()");
  Require(m_nDestHeight <= oIn.Height() - m_nY0,
          "ClIpCut::Process. m_nY0+m_nDestHeight > m_pInImage->Height()");
}

long ClIpCut::DoProcess(ClImage& oIn, ClImage& oOut) {
  CheckRectangle(oIn);
  oOut.NewWithType(oIn.DataType(), static_cast<int>(m_nDestWidth), static_cast<int>(m_nDestHeight),
                   oIn.Planes(), oIn.PelsX(), oIn.PelsY(), true);
  const auto nPixelBytes = static_cast<size_t>(oIn.Planes()) * static_cast<size_t>(oIn.ElementSize());
  for (int y = 0; y < oOut.Height(); ++y) {
    std::memcpy(oOut.Row<uint8_t>(y),
                oIn.Row<uint8_t>(y + static_cast<int>(m_nY0)) + static_cast<size_t>(m_nX0) * nPixelBytes,
                static_cast<size_t>(m_nDestWidth) * nPixelBytes);
  }
  return 0;
}
