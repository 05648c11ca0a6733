// The older base of the processors that make one image from one image, with a free output type.
#pragma once

#include "MXTools/FpImage.h"
#include "MXTools/ProcessorBase.h"

/// Domain     any of the eight element types on either side; input and output may be one object.
/// Range      the output has the input's shape and the output type, 255 meaning the input's type.
/// Ownership  the output is allocated on the image handed in.
/// Threads    thread-bound.
/// Errors     returned: -10 an image or its block is missing; -101 unknown element type.
class ClIp1to1Base : public ClProcessorBase {
 public:
  long ApplyParam(ClImage& oImage) { return ApplyParam(oImage, oImage, ClImage::cnTypeDefault); }
  long ApplyParam(ClImage& oIn, ClImage& oOut, unsigned char nType);

  bool CanApply() override;
  void SetParametersToDefault() override;
  void DeclareParameters(ClParameterRows& oRows) override;

 protected:
  explicit ClIp1to1Base(bool bLookUpTable = true) : m_bLookUpTable(bLookUpTable) {}

  long Process() override;
  /// The generic loop: each sample through GetValue, eUint8 input through a table.
  virtual long DoProcess(ClImage& oIn, ClImage& oOut);
  virtual double GetValue(ClImage& oIn, ClImage& oOut, double dValue);

  ClImage* m_pInImage = nullptr;
  ClImage* m_pOutImage = nullptr;
  unsigned char m_nOutImageType = ClImage::cnTypeDefault;

 private:
  template <typename T>
  long DispatchDefault(ClImage& oIn, ClImage& oOut);
  template <typename T>
  long DispatchLUT(ClImage& oIn, ClImage& oOut);

  bool m_bLookUpTable;
  ClImage m_oScratch;
};
