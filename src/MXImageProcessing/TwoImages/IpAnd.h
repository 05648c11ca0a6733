// The bits that two images share.
#pragma once

#include "MXImageProcessing/Ip2to1Base.h"

/// out = first AND second, bit by bit.
///
/// Domain  both inputs and the output share one integer type of any width. Equal numbers of planes, or a
///         second image of one plane, which then goes with each of the first one's three or four; beside two
///         planes, and in any other mix, the overlap is 0.
/// Threads thread-bound.
/// Errors  returned: as the base; -37 too for types that differ or are floating and for planes that do not
///         fit; -101 for an output type that is not the inputs'.
/// Cost    one pass by the vector kernel, on bytes whatever the type.
class ClIpAnd : public ClIp2to1Base {
 public:
  ClProcessorBase* Create() const override;
  const char* Name() const override { return "ClIpAnd"; }
  bool CanApply() override;

 protected:
  /// The older list does not have this parameter, which leaves no choice.
  void DeclareOutImageType(ClParameterRows& oRows) override;
  long DoProcess(ClImage& oIn1, ClImage& oIn2, ClImage& oOut, long nWidth, long nHeight, long nPlanes1,
                 long nPlanes2, long nOffset1, long nRowStep1, long nOffset2, long nRowStep2, long nOffsetOut,
                 long nRowStepOut) override;
};
