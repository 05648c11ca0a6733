// Base of the processors that separate the fingers from the platen.
#pragma once

#include "MXImageProcessing/NewIp1to1Base.h"

/// Domain   one plane of eUint8; input and output may be one object.
/// Threads  thread-bound.
/// Errors   the base's.
class ClIpLiveScannerMask : public NewIpBase::ClIp1to1Base {
 public:
  using NewIpBase::ClIp1to1Base::ApplyParam;
  long ApplyParam(ClImage& oIn, ClImage& oOut, int nDpi, double dScale);

  void SetParametersToDefault() override;
  void DeclareParameters(ClParameterRows& oRows) override;

 protected:
  ClIpLiveScannerMask();

  void CheckInOutImageTypes() override;

  /// Scale of the segmentation.
  double m_dInScaleSegmentation;
  /// Resolution of the input in dots per inch.
  int m_nInDPI;
};
