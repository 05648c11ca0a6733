// Base of the filters that weigh the pixels of a window with fixed coefficients.
#pragma once

#include <cstdint>
#include <tuple>

#include "MXImageProcessing/IpFilterBase.h"
#include "MXTools/TpArrayDynamic.h"
#include "MXTools/TpArrayStatic.h"

/// The output is the sum of coefficient times sample over the window, in fixed point; a position outside the
/// image has the sample nearest to it.
///
/// Domain     all eight element types, all modes. The width of modes X, Y and XY shrinks below the image's
///            extents; the width that was set is then lost. On an extent of 1 there is no window, and nothing
///            is done.
/// Range      coefficients are truncated to multiples of 1 / 4095, sums are multiples of 1 / 4096. Modes X
///            and Y truncate sums toward zero, the directed modes downward, and XY downward once at the end.
///            Floating types don't truncate. Filters with negative coefficients are scaled so that the result
///            fits the signed type of the input's size, which the output then has.
/// Threads    thread-bound.
/// Errors     as the base and CheckDirections; ClException -101 a width below 1, -44 coefficients that can't
///            be scaled. Returned: -35 no input.
/// Cost       the image is passed once; as many multiplications a pixel and axis as the width.
class ClIpLinFilterBase : public ClIpFilterBase {
 protected:
  long Initialize() override;
  long Process() override;
  long Finalize(long nResult) override;
  long ProcessX() override { return Filter(true, false); }
  long ProcessY() override { return Filter(false, true); }
  long ProcessXY() override { return Filter(true, true); }
  long ProcessSignedX() override { return Filter(true, false); }
  long ProcessSignedY() override { return Filter(false, true); }
  long ProcessSignedXY() override { return Filter(true, true); }
  long ProcessDirected(bool bOrtho) override;
  long ProcessSignedDirected(bool bOrtho) override { return ProcessDirected(bOrtho); }

  /// Scales the coefficients and makes fixed-point ones of them.
  virtual void TransferArray(TpArrayStatic<double>& oReal, TpArrayStatic<long>& oFixed);
  /// Fills the array, which has nWidth entries; the one at (nWidth - 1) / 2 weighs the pixel itself.
  virtual void CalcFilter(TpArrayStatic<double>& oReal, long nWidth) = 0;

  /// What the coefficients were divided by.
  double m_dNorm = 1.0;
  TpArrayStatic<long> m_aCoefficients;
  /// Whether a coefficient is negative.
  bool bSignedOut = false;

 private:
  template <typename S>
  struct TpLines {
    TpArrayDynamic<S, 1> m_aLine;
    TpArrayDynamic<S, 1> m_aSums;
  };

  long Filter(bool bAlongX, bool bAlongY);
  template <typename T, typename S>
  void FilterRows(bool bAlongX, bool bAlongY);
  template <typename T, typename S>
  void StoreRow(const S* pSums, T* pOut, bool bTwice) const;

  TpArrayStatic<double> m_aReal;
  TpArrayDynamic<int32_t, 1> m_aTaps;
  TpArrayDynamic<size_t, 1> m_aOffsets;
  std::tuple<TpLines<int32_t>, TpLines<int64_t>, TpLines<double>> m_oLines;
};
