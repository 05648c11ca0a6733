// Takes small islands and holes out of a mask.
#pragma once

#include <cstdint>

#include "MXImageProcessing/RunSets.h"
#include "MXTools/FpImage.h"
#include "MXTools/TpArrayDynamic.h"

/// Judges the connected regions of a mask by their number of pixels.
///
/// Domain     masks are eUint8 images of one plane that hold 0 and 255; regions are connected four ways.
/// Ownership  the mask is changed in place; its runs are kept from call to call.
/// Threads    thread-bound.
/// Errors     ClExBadAlloc -102.
/// Cost       the mask is read once a call, and written where regions go.
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
  void FindRegions(const ClImage& oMask, unsigned char nOf);
  void InvertBits(int nWidth);
  void Replace(ClImage& oMask, int nLargest, unsigned char nValue);
  int32_t& CountOf(int32_t nRegion) { return m_aCounts[static_cast<unsigned int>(nRegion)]; }

  ClRunSets m_oRuns;
  TpArrayDynamic<uint64_t, 1> m_aBits;
  /// Pixels of each region; they are numbered from 1.
  TpArrayDynamic<int32_t, 1> m_aCounts;
};
