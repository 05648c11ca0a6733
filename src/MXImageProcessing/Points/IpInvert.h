// Exchanges dark and bright.
#pragma once

#include "MXImageProcessing/NewIp1to1Base.h"

/// Reverses the input's black-to-white range and maps it onto the output's.
///
/// Domain   all eight element types; works in place.
/// Threads  thread-bound.
/// Cost     eUint8 by a table of 256 values.
class ClIpInvert : public NewIpBase::ClIp1to1Base {
 public:
  ClIpInvert();

  ClProcessorBase* Create() const override;
  const char* Name() const override { return "ClIpInvert"; }

 protected:
  long DoProcess(ClImage& oIn, ClImage& oOut) override;
  double GetValue(ClImage& oIn, ClImage& oOut, double dValue) override;
};
