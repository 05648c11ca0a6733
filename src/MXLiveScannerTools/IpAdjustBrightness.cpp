// The checks of images and region, and the quotient for each element type.
#include "MXLiveScannerTools/IpAdjustBrightness.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "MXImageProcessing/MakeProcessor.h"
#include "MXKernels/BalanceRows.h"
#include "MXTools/Exception.h"
#include "MXTools/ImageTypeDispatch.h"
#include "MXTools/ParameterRows.h"

ClIpAdjustBrightness::ClIpAdjustBrightness() {
  EnableDataType(ClImage::eInt8);
  EnableDataType(ClImage::eUint8);
  EnableDataType(ClImage::eInt16);
  EnableDataType(ClImage::eUint16);
  ClIpAdjustBrightness::SetParametersToDefault();
}

long ClIpAdjustBrightness::ApplyParam(ClImage& oIn, ClImage& oBrightness, ClImage& oOut, double dValue) {
  m_nInAdjustmentMin = 1.0;
  return ApplyParam(oIn, oBrightness, oOut, dValue, 0, 0, oIn.Width(), oIn.Height());
}

long ClIpAdjustBrightness::ApplyParam(ClImage& oIn, ClImage& oBrightness, ClImage& oOut, double dValue,
                                      int nX, int nY, int nWidth, int nHeight) {
  m_pInImageBrightness = &oBrightness;
  m_dInAdjustmentValue = dValue;
  m_nInPosX = nX;
  m_nInPosY = nY;
  m_nInWidth = nWidth;
  m_nInHeight = nHeight;
  return ApplyParam(oIn, oOut);
}

ClProcessorBase* ClIpAdjustBrightness::Create() const {
  return MakeProcessor<ClIpAdjustBrightness>();
}

void ClIpAdjustBrightness::SetParametersToDefault() {
  m_dInAdjustmentValue = 128.0;
  m_nInAdjustmentMin = 1.0;
  m_nInPosX = m_nInPosY = m_nInWidth = m_nInHeight = 0;
}

void ClIpAdjustBrightness::DeclareParameters(ClParameterRows& oRows) {
  NewIpBase::ClIp1to1Base::DeclareParameters(oRows);
  oRows.Input("pInImageBrightness", "InImageBrightness", "In: Reference Brightness Image",
              &m_pInImageBrightness);
  oRows.Number("dInAdjustmentValue", "InAdjustmentValue", "In: Grey Value of the Reference",
               &m_dInAdjustmentValue);
}

void ClIpAdjustBrightness::CheckInOutImageTypes() {
  NewIpBase::ClIp1to1Base::CheckInOutImageTypes();
  const ClImage& oIn = *m_pInImage;
  if (m_pInImageBrightness == nullptr) KLV_RAISE(ClException, "no brightness image provided", -701);
  if (m_pOutImage == nullptr) KLV_RAISE(ClException, "Output image pointer not assigned", -701);
  if (oIn.Planes() != 1) KLV_RAISE(ClException, "only single plane images supported", -44);
  const ClImage& oBrightness = *m_pInImageBrightness;
  if (!oIn.HasSize(oBrightness.Width(), oBrightness.Height())) {
    KLV_RAISE(ClException, "source and brightness image have different dimensions", -44);
  }
  if (oIn.Width() < 1 || oIn.Height() < 1) {
    KLV_RAISE(ClException, "Images must have positive dimensions.", -14);
  }
  if (oIn.DataType() != oBrightness.DataType()) {
    KLV_RAISE(ClException, "Images must share the same data type.", -103);
  }
  if (oBrightness.Planes() != 1) KLV_RAISE(ClException, "only single plane images supported", -44);
}

void ClIpAdjustBrightness::CheckRegion() {
  const auto Require = [](bool bHolds, const char* szText) {
    if (!bHolds) KLV_RAISE(ClException, szText, -44);
  };
  Require(m_nInWidth != 0 || m_nInPosX == 0, "Parameter m_nInWidth not assigned.");
  Require(m_nInHeight != 0 || m_nInPosY == 0, "Parameter m_nInHeight not assigned.");
  Require(m_nInPosX >= 0, "Parameter m_nInPosX is negative.");
  Require(m_nInPosY >= 0, "Parameter m_nInPosY is negative");
  Require(m_nInWidth >= 0, "Parameter m_nInWidth is negative.");
  Require(m_nInHeight >= 0, "Parameter m_nInHeight is negative");
  Require(int64_t{m_nInPosX} + m_nInWidth <= m_pInImage->Width() &&
              int64_t{m_nInPosY} + m_nInHeight <= m_pInImage->Height(),
          "ROI exceeds image dimensions.");
  if (m_nInWidth == 0) m_nInWidth = m_pInImage->Width();
  if (m_nInHeight == 0) m_nInHeight = m_pInImage->Height();
}

long ClIpAdjustBrightness::Process() {
  // A minimum that truncates to 0 would let a division by a reference of 0 happen.
  if (!(m_nInAdjustmentMin >= 1.0)) {
    KLV_RAISE(ClException, "Parameter m_nInAdjustmentMin = 0 may result in division by zero.", -35);
  }
  CheckRegion();
  const ClImage& oIn = *m_pInImage;
  const auto Allocate = [&oIn](ClImage& oImage) {
    oImage.NewWithType(oIn.DataType(), oIn.Width(), oIn.Height(), 1, oIn.PelsX(), oIn.PelsY(), true);
  };
  const bool bOverInput = m_pOutImage == m_pInImage || m_pOutImage == m_pInImageBrightness;
  ClImage& oTarget = bOverInput ? m_oScratch : *m_pOutImage;
  if (bOverInput && !oIn.HasSize(m_nInWidth, m_nInHeight)) m_oScratch = *m_pOutImage;
  Allocate(oTarget);
  DispatchElementType(oIn.DataType(), 0, [&](auto oElement) {
    using T = typename decltype(oElement)::Type;
    if constexpr (std::is_integral_v<T> && sizeof(T) <= 2) Adjust<T>(oTarget);
    return 0L;
  });
  if (bOverInput) {
    // The old block may be shared and must not be written into: the image gets the new one.
    m_oScratch.SetTag(m_pOutImage->Tag());
    m_oScratch.HandOver(*m_pOutImage);
  }
  return 0;
}

template <typename T>
void ClIpAdjustBrightness::Adjust(ClImage& oTarget) const {
  using Limits = std::numeric_limits<T>;
  const T nValue = ElementFromDouble<T>(m_dInAdjustmentValue);
  const T nMinimum = ElementFromDouble<T>(m_nInAdjustmentMin);
  for (int y = m_nInPosY; y < m_nInPosY + m_nInHeight; ++y) {
    const T* pIn = m_pInImage->Row<T>(y) + m_nInPosX;
    const T* pReference = m_pInImageBrightness->Row<T>(y) + m_nInPosX;
    T* pOut = oTarget.Row<T>(y) + m_nInPosX;
    if constexpr (std::is_same_v<T, uint8_t>) {
      MXKernels::AdjustBrightnessRow(pIn, pReference, pOut, static_cast<size_t>(m_nInWidth), nValue,
                                     nMinimum);
    } else {
      for (int x = 0; x < m_nInWidth; ++x) {
        const int64_t nResult = int64_t{pIn[x]} * nValue / std::max(pReference[x], nMinimum);
        pOut[x] =
            static_cast<T>(std::min<int64_t>(std::max<int64_t>(nResult, Limits::lowest()), Limits::max()));
      }
    }
  }
}
