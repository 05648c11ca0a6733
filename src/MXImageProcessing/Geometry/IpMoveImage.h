// Shifts an image within its frame.
#pragma once

#include "MXImageProcessing/NewIp1to1Base.h"

/// out(x, y) = in(x - nOffsetX, y - nOffsetY), and dFillValue where that lies outside the input.
///
/// Domain   all eight element types; pixels move with all their planes; any offset.
/// Range    the fill value is limited to the element type and truncated.
/// Threads  thread-bound.
/// Cost     one copy or fill a row.
class ClIpMoveImage : public NewIpBase::ClIp1to1Base {
 public:
  ClIpMoveImage();

  using NewIpBase::ClIp1to1Base::ApplyParam;
  long ApplyParam(ClImage& oIn, ClImage& oOut, int nOffsetX, int nOffsetY, double dFillValue);

  ClProcessorBase* Create() const override;
  const char* Name() const override { return "ClIpMoveImage"; }
  void SetParametersToDefault() override;
  void DeclareParameters(ClParameterRows& oRows) override;

 protected:
  long DoProcess(ClImage& oIn, ClImage& oOut) override;

 private:
  template <typename T>
  void Move(const ClImage& oIn, ClImage& oOut) const;

  int m_nOffsetX;
  int m_nOffsetY;
  double m_dFillValue;
};
