// The mean filter.
#pragma once

#include <cstdint>

#include "MXImageProcessing/IpFilterBase.h"
#include "MXTools/TpArrayDynamic.h"

/// Each pixel becomes the mean of its window, over the pixels of it that exist.
///
/// Domain  all eight element types, finite where floating; modes X, Y and XY. An even width counts as the
///         next odd one. An image that is smaller than the window in either direction is copied in mode XY;
///         in modes X and Y the window of that run shrinks to the largest odd width below the extent.
/// Range   divisions truncate toward zero. Only eUint8 in mode XY and width 3 rounds.
/// Threads thread-bound.
/// Errors  as the base; ClExKelvarin -35 unknown type. Returned: -101 modes X and Y on an extent of 1; -33
///         the directed modes.
/// Cost    a fixed number of additions and one division a pixel, whatever the width.
class ClIpFilterMid : public ClIpFilterBase {
 public:
  using ClIpFilterBase::ApplyParam;
  long ApplyParam(ClImage& oIn, ClImage& oOut, long nWidth);

  ClProcessorBase* Create() const override;
  const char* Name() const override { return "ClIpFilterMid"; }

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

 private:
  template <typename T, typename S>
  long ProcessT();
  template <typename T, typename S>
  long ProcessT_X();
  template <typename T, typename S>
  long ProcessT_Y();
  template <typename T, typename S>
  long ProcessT_XY();
  long Process3x3();

  template <typename T, typename S>
  void MeanOfWindows(long nHalfX, long nHalfY);
  template <typename T, typename S>
  void MeanOfWindowsPlain(long nHalfX, long nHalfY);
  template <typename T>
  void MeanOfWindowsByKernels(long nHalfX, long nHalfY);
  long WidthOnAxis(long nExtent) const;
  template <typename S>
  TpArrayDynamic<S, 1>& Sums();

  TpArrayDynamic<uint32_t, 1> m_aSums;
  TpArrayDynamic<uint32_t, 1> m_aPrefix;
  TpArrayDynamic<int64_t, 1> m_aLongSums;
  TpArrayDynamic<double, 1> m_aRealSums;
};
