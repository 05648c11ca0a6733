// Evens out the four phases of a colour filter mosaic.
#pragma once

#include "MXImageProcessing/IpFilterMid.h"
#include "MXImageProcessing/NewIp1to1Base.h"
#include "MXLiveScannerTools/IpLocalWhiteBalanceRows.h"

/// Scales each phase of the 2 by 2 cell so that its local mean becomes that of all four; a uniform grey stays
/// as it is.
///
/// Domain     one plane of eUint8, eInt8, eUint16 or eInt16 with even width and height; the output may be the
///            input.
/// Range      all samples and means are shifted by 1 - black, so that no divisor is 0 or negative; then
///            each sample of phase k becomes sample * target / mean[k], target being a quarter of the sum of
///            the means. Divisions truncate; the result is limited to the range of the type.
/// Ownership  the output is allocated on the image handed in; the images of the phases are kept from run to
///            run.
/// Threads    thread-bound.
/// Errors     ClException -701 an image is missing; -44 odd sizes, several planes, a filter width below 1;
///            -14 an empty image; -33 other types.
/// Cost       eUint8 with windows of up to 90 cells takes one pass over the picture; else four mean filters
///            at half size and one pass with a division a sample.
class ClIpLocalWhiteBalance : public NewIpBase::ClIp1to1Base {
 public:
  static constexpr int cnFilterWidth = 51;

  ClIpLocalWhiteBalance();

  ClProcessorBase* Create() const override;
  const char* Name() const override { return "ClIpLocalWhiteBalance"; }
  void SetParametersToDefault() override { m_nInFilterWidth = cnFilterWidth; }
  void DeclareParameters(ClParameterRows& oRows) override;

 protected:
  long Process() override;

 private:
  void CheckImages() const;
  bool BalanceByRows(ClImage& oTarget);
  template <typename T>
  void SplitPhases();
  template <typename T>
  void Balance(ClImage& oTarget);

  int m_nInFilterWidth;
  ClIpLocalWhiteBalanceRows m_oByRows;
  ClIpFilterMid m_oMean;
  ClImage m_aPhases[4];
  ClImage m_aMeans[4];
  ClImage m_oScratch;
};
