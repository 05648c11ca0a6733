// The mean filter.
#pragma once

#include <cstdint>

#include "MXImageProcessing/ColumnSums.h"
#include "MXImageProcessing/IpFilterBase.h"
#include "MXTools/TpArrayDynamic.h"

/// Each pixel becomes the mean of its window, over the pixels of it that exist.
///
/// Domain  all eight element types, finite where floating; all modes. An even width counts as the next odd
///         one. An image that is smaller than the window in either direction is copied in mode XY; in modes X
///         and Y the window of that run shrinks to the largest odd width below the extent; in the directed
///         modes a position outside the image has the sample nearest to it.
/// Range   divisions truncate toward zero. Only eUint8 in mode XY with a width of 3 and without a remainder
///         image is rounded.
/// Threads thread-bound.
/// Errors  as the base and CheckDirections; ClExKelvarin -35 unknown type. Returned: -101 modes X and Y on an
///         extent of 1; -10 the remainder image is the input or the output.
/// Cost    a fixed number of additions and one division a pixel, whatever the width; in the directed modes as
///         many additions as the window has samples.
class ClIpFilterMid : public ClIpFilterBase {
 public:
  using ClIpFilterBase::ApplyParam;
  long ApplyParam(ClImage& oIn, ClImage& oOut, long nWidth);

  ClProcessorBase* Create() const override;
  const char* Name() const override { return "ClIpFilterMid"; }

  /// Optional, for eUint8 in mode XY: receives the fractional parts of the means, in 256ths, truncated.
  ClImage* m_pRemainderImage = nullptr;

 protected:
  long Initialize() override;
  long DoProcess() override;
  long ProcessX() override;
  long ProcessY() override;
  long ProcessXY() override;
  long ProcessSignedX() override;
  long ProcessSignedY() override;
  long ProcessSignedXY() override;
  long ProcessDirected(bool bOrtho) override;
  long ProcessSignedDirected(bool bOrtho) override;

 private:
  template <typename T, typename S>
  long ProcessT();
  template <typename T, typename S>
  long ProcessT_X();
  template <typename T, typename S>
  long ProcessT_Y();
  template <typename T, typename S>
  long ProcessT_XY();
  template <typename T, typename S>
  long ProcessT_Directed(bool bOrtho);
  long Process3x3();
  long ProcessXYRemainder();

  template <typename T, typename S>
  void MeanOfWindows(long nHalfX, long nHalfY);
  template <typename T, typename S, typename TRow>
  void ForWindows(long nHalfX, long nHalfY, const TRow& fnRow);
  template <typename T, typename TSum>
  void MeanOfWindowsByKernels(long nHalfX, long nHalfY, TpColumnSums<TSum>& oSums);
  long WidthOnAxis(long nExtent) const;
  template <typename S>
  TpArrayDynamic<S, 1>& Sums();

  TpColumnSums<uint16_t> m_oNarrowSums;
  TpColumnSums<uint32_t> m_oWideSums;
  TpArrayDynamic<int64_t, 1> m_aLongSums;
  TpArrayDynamic<double, 1> m_aRealSums;
};
