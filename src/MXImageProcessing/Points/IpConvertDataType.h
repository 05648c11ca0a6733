// Changes the element type of an image.
#pragma once

#include "MXImageProcessing/Ip1to1Base.h"

/// Integer to integer keeps the low bits, integer to floating is the value, floating to integer goes toward
/// zero and is limited to the type's range. The output gets the black and white of its type; without a change
/// of type it is a copy.
///
/// Domain   any of the eight element types on either side.
/// Threads  thread-bound.
/// Errors   the base's.
class ClIpConvertDataType : public ClIp1to1Base {
 public:
  ClIpConvertDataType() : ClIp1to1Base(false) {}

  using ClIp1to1Base::ApplyParam;
  long ApplyParam(ClImage& oImage, unsigned char nType) { return ApplyParam(oImage, oImage, nType); }

  ClProcessorBase* Create() const override;
  const char* Name() const override { return "ClIpConvertDataType"; }

 protected:
  long DoProcess(ClImage& oIn, ClImage& oOut) override;

 private:
  template <typename T>
  long Dispatch(const ClImage& oIn, ClImage& oOut) const;
};
