// Takes small islands and holes out of a mask.
#pragma once

#include <cstdint>

#include "MXImageProcessing/IpInvert.h"
#include "MXImageProcessing/IpLabeling.h"
#include "MXTools/FpImage.h"
#include "MXTools/TpArrayDynamic.h"

/// Judges the connected regions of a mask by their number of pixels.
///
/// Domain     masks are eUint8 images of one plane that hold 0 and 255; regions are connected four ways.
/// Ownership  the mask is changed in place; scratch is kept from call to call.
/// Threads    thread-bound.
/// Errors     ClExBadAlloc -102.
class ClMaskRegions {
 public:
  /// The largest regions that are taken out, whatever the resolution of the mask.
  static constexpr int cnLargestIsland = 2999;
  static constexpr int cnLargestHole = 3999;

  /// Regions of 255 with at most cnLargestIsland pixels become 0.
  void RemoveIslands(ClImage& oMask);
  /// Regions of 0 with at most cnLargestHole pixels become 255, but for those that hold one of the two upper
  /// corner pixels: they are open background.
  void FillHoles(ClImage& oMask);

 private:
  void CountLabels();
  void Replace(ClImage& oMask, int nLargest, unsigned char nValue) const;

  ClIpInvert m_oInvert;
  ClIpLabeling m_oLabeling;
  ClImage m_oInverted;
  ClImage m_oLabels;
  TpArrayDynamic<int32_t, 1> m_aCounts;
};
