// Means over a part of an image, for the steps of a roll.
#pragma once

#include <cstdint>

#include "MXImageProcessing/BitPlane.h"
#include "MXImageProcessing/ColumnSums.h"
#include "MXTools/FpImage.h"

/// Square windows round each pixel of a box, clipped to the box. Where the box ends inside of the image, the
/// results of its outermost nHalf pixels are of no use.
///
/// Domain     eUint8 images of one plane, of one size; nHalf up to 7. Input and output are two images.
/// Ownership  the outputs are written inside of the box only; their shape is the caller's matter.
/// Threads    thread-bound.
class ClRollMeans {
 public:
  /// Half the side of a window: an image that is smaller than the whole window is left as it is.
  static int HalfOf(int nSide, int nWidth, int nHeight) {
    return nWidth < nSide || nHeight < nSide ? 0 : nSide / 2;
  }

  /// The truncated means.
  void Mean(const ClImage& oIn, const ClBitPlane::StBox& oBox, int nHalf, ClImage& oOut);
  /// 255 where a sample is below the truncated mean of its window, else 0.
  void BelowMean(const ClImage& oIn, const ClBitPlane::StBox& oBox, int nHalf, ClImage& oOut);

 private:
  void Reserve(int nWidth);

  TpColumnSums<uint16_t> m_oSums;
};
