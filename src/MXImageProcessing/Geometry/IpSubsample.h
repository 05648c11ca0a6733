// Reduces an image by whole numbers.
#pragma once

#include "MXTools/FpImage.h"
#include "MXTools/ProcessorBase.h"

/// Each output pixel is the mean of a cell of rate by rate pixels, or its first pixel. Cells at the right and
/// lower end may be smaller. The mean is taken along the rows first, then along the columns, truncating both
/// times.
///
/// Domain     8-bit and 16-bit integer types; input and output are two images. Several planes are taken one
///            by one.
/// Ownership  the output is allocated on the image handed in.
/// Threads    thread-bound.
/// Errors     ClException -44 a rate below 1 or the same image twice; -701 an image is missing; -103 other
///            types.
class ClIpSubsample : public ClProcessorBase {
 public:
  ClIpSubsample() { ClIpSubsample::SetParametersToDefault(); }

  long ApplyParam(ClImage& oIn, int nRate, ClImage& oOut, bool bMean);
  long ApplyParam(ClImage& oIn, int nRateX, int nRateY, ClImage& oOut, bool bMean);

  ClProcessorBase* Create() const override;
  const char* Name() const override { return "ClIpSubsample"; }
  bool CanApply() override;
  void SetParametersToDefault() override;
  void DeclareParameters(ClParameterRows& oRows) override;
  void ParameterString(char* szText, unsigned int nSize) const override;

 protected:
  long Process() override;

 private:
  long ProcessPlane();
  template <typename T, typename U>
  void ProcessMid();
  template <typename T>
  void ProcessFast();
  void AllocateOutImage();

  ClImage* m_pInImage = nullptr;
  ClImage* m_pOutImage = nullptr;
  int m_nRate;
  int m_nRateX;
  int m_nRateY;
  bool m_bMid;
  ClImage m_oNarrow;
};
