// Row by row mirroring with an optional change of the element type.
#include "MXImageProcessing/IpFlip.h"

#include <cstring>

#include "MXImageProcessing/MakeProcessor.h"
#include "MXImageProcessing/SampleCast.h"
#include "MXKernels/LayoutRows.h"
#include "MXTools/Exception.h"
#include "MXTools/ParameterRows.h"

namespace {

template <typename T, typename U>
void ConvertRow(const T* pIn, U* pOut, long nSamples) {
  for (long n = 0; n < nSamples; ++n) pOut[n] = SampleCast<U>(pIn[n]);
}

template <typename T, typename U>
void ReversePixels(const T* pIn, U* pOut, long nWidth, long nPlanes) {
  const T* pPixel = pIn + (nWidth - 1) * nPlanes;
  for (long x = 0; x < nWidth; ++x, pPixel -= nPlanes, pOut += nPlanes) {
    for (long k = 0; k < nPlanes; ++k) pOut[k] = SampleCast<U>(pPixel[k]);
  }
}

}  // namespace

long ClIpFlip::ApplyParam(ClImage& oIn, ClImage& oOut, bool bFlipX, bool bFlipY) {
  m_bXFlip = bFlipX;
  m_bYFlip = bFlipY;
  return ApplyParam(oIn, oOut, ClImage::cnTypeDefault);
}

ClProcessorBase* ClIpFlip::Create() const {
  return MakeProcessor<ClIpFlip>();
}

bool ClIpFlip::CanApply() {
  return (m_bXFlip || m_bYFlip) && ClIp1to1Base::CanApply();
}

void ClIpFlip::SetParametersToDefault() {
  ClIp1to1Base::SetParametersToDefault();
  m_bXFlip = false;
  m_bYFlip = false;
}

void ClIpFlip::DeclareParameters(ClParameterRows& oRows) {
  ClIp1to1Base::DeclareParameters(oRows);
  oRows.DescribeBoth();
  oRows.Flag("XFlip", "XFlip", "In: Mirror by the X Axis", &m_bXFlip);
  oRows.Flag("YFlip", "YFlip", "In: Mirror by the Y Axis", &m_bYFlip);
}

long ClIpFlip::DoProcess(ClImage& oIn, ClImage& oOut) {
  if (!m_bXFlip && !m_bYFlip) KLV_RAISE(ClException, "m_bXFlip or m_bYFlip must be set", -44);
  return DispatchElementType(oIn.DataType(), -101, [&](auto oElement) {
    return DispatchDest<typename decltype(oElement)::Type>(oIn, oOut);
  });
}

template <typename T>
long ClIpFlip::DispatchDest(const ClImage& oIn, ClImage& oOut) const {
  return DispatchElementType(oOut.DataType(), -101, [&](auto oElement) {
    FlipXY<T, typename decltype(oElement)::Type>(oIn, oOut);
    return 0L;
  });
}

template <typename T, typename U>
void ClIpFlip::FlipXY(const ClImage& oIn, ClImage& oOut) const {
  const long nWidth = oIn.Width(), nPlanes = oIn.Planes(), nSamples = oIn.SamplesPerRow();
  for (int y = 0; y < oIn.Height(); ++y) {
    const T* pIn = oIn.Row<T>(y);
    U* pOut = oOut.Row<U>(m_bYFlip ? oIn.Height() - 1 - y : y);
    if (m_bXFlip && sizeof(T) == 1 && std::is_same_v<T, U> && nPlanes == 1) {
      MXKernels::ReverseRow(reinterpret_cast<const uint8_t*>(pIn), reinterpret_cast<uint8_t*>(pOut),
                            static_cast<size_t>(nWidth));
    } else if (m_bXFlip) {
      ReversePixels(pIn, pOut, nWidth, nPlanes);
    } else if (std::is_same_v<T, U>) {
      std::memcpy(pOut, pIn, static_cast<size_t>(nSamples) * sizeof(T));
    } else {
      ConvertRow(pIn, pOut, nSamples);
    }
  }
}
