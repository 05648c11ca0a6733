// The finger mask of the ten-finger platen.
#pragma once

#include <cstdint>

#include "MXLiveScannerTools/IpLiveScannerMask.h"
#include "MXLiveScannerTools/MaskFirst.h"
#include "MXLiveScannerTools/MaskRegions.h"
#include "MXLiveScannerTools/MaskSmooth.h"
#include "MXLiveScannerTools/MaskSoft.h"

/// Turns a rectified frame into its ridges, inverted and with even contrast, on a pure white background.
///
/// Domain     one plane of eUint8; input and output may be one object. Inputs that have the full-resolution
///            width, or at least 19601 pels per metre, are segmented at half resolution and need even sizes.
/// Range      255 where no finger is; soft transitions at the fingers' edges.
/// Units      the limits of small islands and holes are pixels of the resolution that is segmented.
/// Ownership  the output is allocated on the image handed in; scratch images are kept from run to run, so
///            that a frame of the last one's size allocates nothing.
/// Threads    thread-bound.
/// Errors     ClException -701 an image is missing or empty; -44 several planes, or odd sizes where half
///            resolution is used; -33 another element type; ClExBadAlloc -102.
class ClIpVT40R4Mask : public ClIpLiveScannerMask {
 public:
  ClIpVT40R4Mask();

  ClProcessorBase* Create() const override;
  const char* Name() const override { return "ClIpVT40R4Mask"; }
  void SetParametersToDefault() override;
  void DeclareParameters(ClParameterRows& oRows) override;

  /// Mean, largest and smallest sample of each 2 by 2 cell.
  void ScaleDown(ClImage& oIn, ClImage& oMean, ClImage& oMax, ClImage& oMin) const;
  /// Doubles each sample to a 2 by 2 cell.
  void ScaleUp(ClImage& oIn, ClImage& oOut) const;

 protected:
  long Process() override;

 private:
  bool TakesHalfResolution(const ClImage& oIn) const;
  void StartSmoothing(int nWidth, int nHeight);
  void EstimateAtInputResolution();
  void EstimateAtHalfResolution();
  void FadeBorders();
  void MakeFirstMask();
  void ComposeInputResolution();
  void ComposeFullResolution();

  int m_nInWidth500dpi;
  unsigned char m_nInSignalBack;
  unsigned char m_nInSignalFront;
  double m_dInLBPThresh;
  double m_dInFogThresh;
  unsigned short m_nInMaskThresh;
  int m_nInLeftFade;
  int m_nInRightFade;
  int m_nInTopFade;
  int m_nInBottomFade;

  ClMaskSmooth m_oDarkest;
  ClMaskSmooth m_oBrightest;
  MaskWindows::TpRows<uint8_t> m_oRows;
  MaskWindows::TpRows<uint8_t> m_oLowerRows;
  ClFirstMask m_oFirstMask;
  ClMaskRegions m_oRegions;
  ClSoftMask m_oSoftMask;

  // These have the resolution that is segmented.
  ClImage m_oSignal;
  ClImage m_oBackground;
  ClImage m_oEnvelope;
  ClImage m_oMask;
  /// The output where it is also the input, at full resolution.
  ClImage m_oScratch;
};
