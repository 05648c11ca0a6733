// Base of the processors that make one image from one image of the same element type.
#pragma once

#include "MXImageProcessing/NewIpProcessorBase.h"

namespace NewIpBase {

/// Domain     input and output may be one object. A processor that declares itself in-place then works in the
///            block; any other one reads the old block while it writes another, and the results are
///            exchanged.
/// Ownership  the output is allocated on the image handed in.
/// Threads    thread-bound.
/// Errors     -701 an image or its block is missing; -33 element type not taken; -101 unknown type in the
///            generic loop (returned).
class ClIp1to1Base : public ClIpProcessorBase {
 public:
  long ApplyParam(ClImage& oImage) { return ApplyParam(oImage, oImage); }
  long ApplyParam(ClImage& oIn, ClImage& oOut);

  void DeclareParameters(ClParameterRows& oRows) override;

 protected:
  explicit ClIp1to1Base(bool bInPlace = false, bool bLookUpTable = true)
      : m_bInPlace(bInPlace), m_bLookUpTable(bLookUpTable) {}

  long Process() override;
  /// The generic loop: each sample through GetValue, eUint8 through a table of its 256 results.
  virtual long DoProcess(ClImage& oIn, ClImage& oOut);
  /// Gives the output its shape: by default the input's with all metadata.
  virtual void AllocateOutImage(ClImage& oOut);
  virtual double GetValue(ClImage& oIn, ClImage& oOut, double dValue);
  void CheckInOutImageTypes() override;

  ClImage* m_pInImage = nullptr;
  ClImage* m_pOutImage = nullptr;

 private:
  bool m_bInPlace;
  bool m_bLookUpTable;
  ClImage m_oScratch;
};

}  // namespace NewIpBase
