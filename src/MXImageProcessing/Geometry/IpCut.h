// Cuts a rectangle out of an image.
#pragma once

#include "MXImageProcessing/NewIp1to1Base.h"

/// Domain   all eight element types.
/// Threads  thread-bound.
/// Errors   ClException -35 the rectangle is empty or not inside the image; the output is then as it was.
/// Cost     one copy a row.
class ClIpCut : public NewIpBase::ClIp1to1Base {
 public:
  ClIpCut();

  using NewIpBase::ClIp1to1Base::ApplyParam;
  /// The image without nBorder pixels on each side.
  long ApplyParam(ClImage& oIn, long nBorder, ClImage& oOut);
  long ApplyParam(ClImage& oIn, long nX, long nY, long nWidth, long nHeight, ClImage& oOut);

  ClProcessorBase* Create() const override;
  const char* Name() const override { return "ClIpCut"; }
  void SetParametersToDefault() override;
  void DeclareParameters(ClParameterRows& oRows) override;

 protected:
  /// Does nothing: DoProcess makes the output, so that a refused rectangle leaves it as it was.
  void AllocateOutImage(ClImage&) override {}
  long DoProcess(ClImage& oIn, ClImage& oOut) override;

 private:
  void CheckRectangle(const ClImage& oIn) const;

  long m_nX0;
  long m_nY0;
  long m_nDestWidth;
  long m_nDestHeight;
};
