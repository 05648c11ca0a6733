// Black and white by the mean of a window round each pixel.
#pragma once

#include <cstdint>

#include "MXImageProcessing/ColumnSums.h"
#include "MXImageProcessing/Ip1to1Base.h"

/// A pixel that is above the mean of its window, less nGrayOffset, becomes white, any other black. The window
/// is clipped to the image. An even nFilterWidthX has one column more on the right; nFilterWidthY counts as
/// the next odd one.
///
/// Domain   one plane of eUint8 or eInt8; an image that is smaller than the window in either direction is
///          copied.
/// Range    the output has the input's type.
/// Threads  thread-bound.
/// Errors   ClException -44 a width below 1. Returned: -10 an image is missing, -101 other types or more
///          planes.
/// Cost     a fixed number of additions a pixel, whatever the window.
class ClIpBinarizeLocal2 : public ClIp1to1Base {
 public:
  ClIpBinarizeLocal2();

  using ClIp1to1Base::ApplyParam;
  long ApplyParam(ClImage& oIn, ClImage& oOut, long nWidthX, long nWidthY, long nOffset);

  ClProcessorBase* Create() const override;
  const char* Name() const override { return "ClIpBinarizeLocal2"; }
  void SetParametersToDefault() override;
  void DeclareParameters(ClParameterRows& oRows) override;

  unsigned char m_nBlack;
  unsigned char m_nWhite;
  long nFilterWidthX;
  long nFilterWidthY;
  long nGrayOffset;

 protected:
  long DoProcess(ClImage& oIn, ClImage& oOut) override;

 private:
  const ClImage& Unsigned(const ClImage& oIn);
  template <typename TSum>
  void BinarizeBy(TpColumnSums<TSum>& oSums, const ClImage& oGrey, long nOffset, ClImage& oOut) const;

  ClImage m_oShifted;
  TpColumnSums<uint16_t> m_oNarrowSums;
  TpColumnSums<uint32_t> m_oWideSums;
};
