// Resizing of grey images by a separable windowed filter.
#pragma once

#include <cstdint>
#include <vector>

#include "MXImageProcessing/MakeProcessor.h"
#include "MXImageProcessing/NewIp1to1Base.h"
#include "MXKernels/ResampleRow.h"

/// The Lanczos filter of order 2.
class ClFilterLanczos2 {
 public:
  /// sinc(x) * sinc(x / 2), 0 from |dX| = dLimit on.
  static double Weight(double dX, double dLimit);
};

/// All of ClIpSubsampleFilter that does not know its filter.
class ClIpSubsampleFilterBase : public NewIpBase::ClIp1to1Base {
 public:
  static constexpr int cnMaxTaps = 125;

  using NewIpBase::ClIp1to1Base::ApplyParam;
  long ApplyParam(ClImage& oIn, ClImage& oOut, int nWidth, int nHeight);

  const char* Name() const override { return "ClIpSubsampleFilter"; }
  void SetParametersToDefault() override { nNewWidth = nNewHeight = 0; }
  void DeclareParameters(ClParameterRows& oRows) override;

 protected:
  /// Resizes along the rows only. Errors: -44 unless the new width is below the input's.
  virtual long ProcessX();
  /// Down columns only.
  virtual long ProcessY();
  virtual double Weight(double dX, double dLimit) const = 0;

  void CheckInOutImageTypes() override;
  long Process() override;

  int nNewWidth = 0;
  int nNewHeight = 0;

 private:
  /// The windows of one axis, kept for the next image of the same sizes.
  struct StAxis {
    int nIn = 0;
    int nOut = 0;
    std::vector<MXKernels::ResampleWindow> aWindows;
    std::vector<int32_t> aWeights;
  };

  long ProcessBoth();
  void PrepareAxis(StAxis& oAxis, int nIn, int nOut);
  /// The window of output index nAt of nOut, from an axis of nIn samples.
  void MakeWindow(int nAt, int nIn, int nOut);
  ClImage& NewOutput();
  void FilterColumn(int nRow, uint8_t* pOut);

  int m_nFirst = 0;
  int m_nLast = 0;
  double m_dSum = 0;
  int32_t m_nSum = 0;
  double m_aWeight[cnMaxTaps];
  int32_t m_aIntWeight[cnMaxTaps];
  StAxis m_oAcross;
  StAxis m_oDown;
  std::vector<int32_t> m_aSums;
  std::vector<uint8_t> m_aLine;
  ClImage m_oResult;
};

/// Makes an image of another size; each output sample is a weighted mean of a window of input samples.
///
/// Domain     eUint8, one plane, not empty. Input and output may be one object. An axis that grows takes the
///            nearest sample, and may only do so together with a changed height. At most 125 taps: shrinking
///            to a thirtieth.
/// Range      weights are truncated to 10 fractional bits; each sample is divided by the sum of its own
///            weights, truncated and saturated to 8 bits, first down the columns, then along the rows.
/// Units      the output's resolution changes with its size.
/// Ownership  the output is allocated on the image handed in; windows are kept from run to run, so that an
///            image of the last one's sizes allocates nothing.
/// Threads    thread-bound.
/// Errors     ClException -44 "invalid parameter".
/// Cost       windows once for each size; then one multiplication a tap and one division a sample and axis.
template <typename TFilter>
class ClIpSubsampleFilter : public ClIpSubsampleFilterBase {
 public:
  ClProcessorBase* Create() const override { return MakeProcessor<ClIpSubsampleFilter>(); }

 protected:
  double Weight(double dX, double dLimit) const override { return TFilter::Weight(dX, dLimit); }
};
