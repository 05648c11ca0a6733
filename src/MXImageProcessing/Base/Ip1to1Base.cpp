// The run of a one-image processor whose output type is free.
#include "MXImageProcessing/Ip1to1Base.h"

#include "MXImageProcessing/SampleLoop.h"
#include "MXTools/ImageTypeDispatch.h"
#include "MXTools/ParameterRows.h"

long ClIp1to1Base::ApplyParam(ClImage& oIn, ClImage& oOut, unsigned char nType) {
  m_pInImage = &oIn;
  m_pOutImage = &oOut;
  m_nOutImageType = nType;
  return Apply();
}

bool ClIp1to1Base::CanApply() {
  return m_pInImage != nullptr && m_pOutImage != nullptr && m_pInImage->Data() != nullptr;
}

void ClIp1to1Base::SetParametersToDefault() {
  m_nOutImageType = ClImage::cnTypeDefault;
}

void ClIp1to1Base::DeclareParameters(ClParameterRows& oRows) {
  oRows.InOutImages(&m_pInImage, &m_pOutImage);
  oRows.OutImageType(&m_nOutImageType);
}

double ClIp1to1Base::GetValue(ClImage&, ClImage&, double) {
  return 0.0;
}

long ClIp1to1Base::Process() {
  if (m_pInImage == nullptr || m_pOutImage == nullptr || m_pInImage->Data() == nullptr) return -10;
  ClImage& oTarget = m_pOutImage == m_pInImage ? m_oScratch : *m_pOutImage;
  oTarget.NewWithType(*m_pInImage,
                      m_nOutImageType == ClImage::cnTypeDefault ? m_pInImage->DataType() : m_nOutImageType);
  const long nResult = DoProcess(*m_pInImage, oTarget);
  oTarget.HandOver(*m_pOutImage);
  return nResult;
}

long ClIp1to1Base::DoProcess(ClImage& oIn, ClImage& oOut) {
  if (oIn.DataType() == ClImage::eUint8 && m_bLookUpTable) return DispatchLUT<uint8_t>(oIn, oOut);
  return DispatchElementType(oIn.DataType(), -101, [&](auto oElement) {
    return DispatchDefault<typename decltype(oElement)::Type>(oIn, oOut);
  });
}

template <typename T>
long ClIp1to1Base::DispatchDefault(ClImage& oIn, ClImage& oOut) {
  return DispatchElementType(oOut.DataType(), -101, [&](auto oElement) {
    using U = typename decltype(oElement)::Type;
    MapSamples<T, U>(oIn, oOut, [&](T nValue) {
      return ElementFromDouble<U>(GetValue(oIn, oOut, static_cast<double>(nValue)));
    });
    return 0L;
  });
}

template <typename T>
long ClIp1to1Base::DispatchLUT(ClImage& oIn, ClImage& oOut) {
  return DispatchElementType(oOut.DataType(), -101, [&](auto oElement) {
    using U = typename decltype(oElement)::Type;
    MapSamplesByTable<U>(oIn, oOut, [&](T nValue) {
      return ElementFromDouble<U>(GetValue(oIn, oOut, static_cast<double>(nValue)));
    });
    return 0L;
  });
}
