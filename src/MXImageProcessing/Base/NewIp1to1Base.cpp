// The run of a processor that makes one image from one image.
#include "MXImageProcessing/NewIp1to1Base.h"

#include "MXImageProcessing/SampleLoop.h"
#include "MXTools/Exception.h"
#include "MXTools/ParameterRows.h"

namespace NewIpBase {

long ClIp1to1Base::ApplyParam(ClImage& oIn, ClImage& oOut) {
  m_pInImage = &oIn;
  m_pOutImage = &oOut;
  return Apply();
}

void ClIp1to1Base::DeclareParameters(ClParameterRows& oRows) {
  oRows.InOutImages(&m_pInImage, &m_pOutImage);
}

void ClIp1to1Base::CheckInOutImageTypes() {
  if (m_pInImage == nullptr) KLV_RAISE(ClException, "Input image not assigned", -701);
  CheckTypeAllowed(m_pInImage);
}

void ClIp1to1Base::AllocateOutImage(ClImage& oOut) {
  oOut.New(*m_pInImage);
}

double ClIp1to1Base::GetValue(ClImage&, ClImage&, double) {
  return 0.0;
}

long ClIp1to1Base::Process() {
  if (m_pInImage == nullptr) KLV_RAISE(ClException, "m_pInImage is not set", -701);
  if (m_pOutImage == nullptr) KLV_RAISE(ClException, "m_pOutImage is not set", -701);
  if (m_pInImage->Data() == nullptr) KLV_RAISE(ClException, "m_pInImage->Data() is not set", -701);
  if (m_bInPlace) {
    if (m_pOutImage != m_pInImage) AllocateOutImage(*m_pOutImage);
    return DoProcess(*m_pInImage, *m_pOutImage);
  }
  ClImage& oTarget = m_pOutImage == m_pInImage ? m_oScratch : *m_pOutImage;
  AllocateOutImage(oTarget);
  const long nResult = DoProcess(*m_pInImage, oTarget);
  oTarget.HandOver(*m_pOutImage);
  return nResult;
}

long ClIp1to1Base::DoProcess(ClImage& oIn, ClImage& oOut) {
  return MapByRule(oIn, oOut, m_bLookUpTable, [&](double dValue) { return GetValue(oIn, oOut, dValue); });
}

}  // namespace NewIpBase
