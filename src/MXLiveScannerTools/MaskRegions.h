// Takes small islands and holes out of a mask.
#pragma once

#include <cstdint>

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
  /// Pixels [nBegin, nEnd) of a row. Runs of one region lead to the first of them, which has the count.
  struct StRun {
    int nBegin;
    int nEnd;
    unsigned int nParent;
    int nPixels;
  };

  void FindRegions(const ClImage& oMask, unsigned char nOf);
  void AddRuns(const uint8_t* pRow, int nWidth, unsigned char nOf);
  void JoinRows(unsigned int nAbove, unsigned int nFirst);
  unsigned int RootOf(unsigned int nRun);
  void Replace(ClImage& oMask, int nLargest, unsigned char nValue);

  TpArrayDynamic<uint64_t, 1> m_aBits;
  TpArrayDynamic<StRun, 1> m_aRuns;
  /// The number of runs up to the end of each row.
  TpArrayDynamic<unsigned int, 1> m_aRowEnds;
};
