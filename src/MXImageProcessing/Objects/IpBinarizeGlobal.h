// Black and white by one threshold for the whole image.
#pragma once

#include "MXImageProcessing/NewIp1to1Base.h"

/// A sample at or above the threshold becomes white, any other black.
///
/// Domain   all eight element types; works in place. Parameters that are NaN are not set: black and white are
///          then the output image's, the threshold the middle between them.
/// Threads  thread-bound.
/// Errors   returned: -35 a set threshold lies outside the input's black to white, or a set black or white
///          outside the element type.
class ClIpBinarizeGlobal : public NewIpBase::ClIp1to1Base {
 public:
  ClIpBinarizeGlobal();

  using NewIpBase::ClIp1to1Base::ApplyParam;
  long ApplyParam(ClImage& oIn, ClImage& oOut, double dThreshold);

  ClProcessorBase* Create() const override;
  const char* Name() const override { return "ClIpBinarizeGlobal"; }
  void SetParametersToDefault() override;
  void DeclareParameters(ClParameterRows& oRows) override;
  void ParameterString(char* szText, unsigned int nSize) const override;

 protected:
  long DoProcess(ClImage& oIn, ClImage& oOut) override;
  /// The rule for one sample.
  double GetValue(ClImage& oIn, ClImage& oOut, double dValue) override;

 private:
  bool CheckThreshold(const ClImage& oIn) const;
  bool CheckBlackWhite(const ClImage& oOut) const;
  double EffectiveBlack(const ClImage& oOut) const;
  double EffectiveWhite(const ClImage& oOut) const;
  double EffectiveThreshold(const ClImage& oOut) const;
  template <typename T>
  void Binarize(const ClImage& oIn, ClImage& oOut) const;

  double m_dBlack;
  double m_dWhite;
  double m_dThreshold;
};
