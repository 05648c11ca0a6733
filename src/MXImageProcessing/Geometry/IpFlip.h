// Mirrors an image.
#pragma once

#include "MXImageProcessing/Ip1to1Base.h"

/// XFlip reverses each row, whole pixels with their planes in order; YFlip reverses the order of the rows.
///
/// Domain   any of the eight element types on either side; samples are converted as ClIpConvertDataType does.
/// Threads  thread-bound.
/// Errors   ClException -44 neither flag is set; the base's.
/// Cost     without XFlip and type change one copy a row.
class ClIpFlip : public ClIp1to1Base {
 public:
  ClIpFlip() : ClIp1to1Base(false) { ClIpFlip::SetParametersToDefault(); }

  using ClIp1to1Base::ApplyParam;
  long ApplyParam(ClImage& oIn, ClImage& oOut, bool bFlipX, bool bFlipY);

  ClProcessorBase* Create() const override;
  const char* Name() const override { return "ClIpFlip"; }
  bool CanApply() override;
  void SetParametersToDefault() override;
  void DeclareParameters(ClParameterRows& oRows) override;

 protected:
  long DoProcess(ClImage& oIn, ClImage& oOut) override;

 private:
  template <typename T>
  long DispatchDest(const ClImage& oIn, ClImage& oOut) const;
  template <typename T, typename U>
  void FlipXY(const ClImage& oIn, ClImage& oOut) const;

  bool m_bXFlip;
  bool m_bYFlip;
};
