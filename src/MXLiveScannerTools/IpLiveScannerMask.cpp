// What all masks let their user set.
#include "MXLiveScannerTools/IpLiveScannerMask.h"

#include "MXTools/ParameterRows.h"

ClIpLiveScannerMask::ClIpLiveScannerMask() {
  EnableDataType(ClImage::eUint8);
  ClIpLiveScannerMask::SetParametersToDefault();
}

long ClIpLiveScannerMask::ApplyParam(ClImage& oIn, ClImage& oOut, int nDpi, double dScale) {
  m_nInDPI = nDpi;
  m_dInScaleSegmentation = dScale;
  return ApplyParam(oIn, oOut);
}

void ClIpLiveScannerMask::SetParametersToDefault() {
  m_dInScaleSegmentation = 1.0;
  m_nInDPI = 500;
}

void ClIpLiveScannerMask::DeclareParameters(ClParameterRows& oRows) {
  NewIpBase::ClIp1to1Base::DeclareParameters(oRows);
  oRows.Number("dInScaleSegmentation", &m_dInScaleSegmentation);
  oRows.Number("nInDPI", &m_nInDPI);
}

void ClIpLiveScannerMask::CheckInOutImageTypes() {
  NewIpBase::ClIp1to1Base::CheckInOutImageTypes();
}
