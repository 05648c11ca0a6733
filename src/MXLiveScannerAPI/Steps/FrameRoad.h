// The way of one kind of frame from the raw planes to the masked picture.
#pragma once

#include <cstdint>
#include <vector>

#include "MXImageProcessing/IpFlip.h"
#include "MXLiveScannerTools/IpLocalWhiteBalance.h"
#include "MXTools/FpImage.h"

class ClVT40SetupCalibrationData;

/// Difference, white balance, warp, flip, brightness, mask. Each step can be taken alone; Rectify takes those
/// from the balance to the brightness, where it can row by row: what a step leaves for the next one stays in
/// the caches.
///
/// Domain     frames of the sizes that RawSize and TargetSize give, eUint8, one plane.
/// Ownership  keeps the raw difference and scratch; the calibration state is the caller's and
///            outlives it.
/// Threads    one thread may mask while another rectifies; the kinds share state as the calibration state
///            says, and the mask processor, which is known by its index.
/// Errors     the calibration state's.
/// Cost       with the sizes of the last frame it allocates nothing.
class ClFrameRoad {
 public:
  enum EKind { ePreview, eFull, eRoll };
  struct StSize {
    int nWidth;
    int nHeight;
  };

  /// nMask 0 or 1: which of the two mask processors is used.
  ClFrameRoad(ClVT40SetupCalibrationData& oSetup, EKind eKind, bool bSmallImages, unsigned int nMask);

  static StSize RawSize(ClVT40SetupCalibrationData& oSetup, EKind eKind, bool bSmallImages);
  static StSize TargetSize(ClVT40SetupCalibrationData& oSetup, EKind eKind, bool bSmallImages);

  /// What the lit plane has beyond the dark one. pSequence holds the two planes, one after the other and
  /// without padding, in either order: the low four bits of its first byte are 0 where the dark one comes
  /// first.
  static void Difference(const void* pSequence, ClImage& oDifference);

  ClImage& Raw() { return m_oRaw; }
  void Balance() { m_oBalance.ApplyParam(m_oRaw, m_oBalanced); }
  void Warp();
  void Flip() { m_oFlip.ApplyParam(m_oWarped, m_oWarped, true, false); }
  void Brightness(ClImage& oOut) { Adjust(m_oWarped, oOut); }
  void Mask(ClImage& oIn, ClImage& oOut);

  /// A frame of a stream, from Raw.
  void Rectify(ClImage& oOut);
  /// A single shot, from Raw.
  void RectifyShot(ClImage& oOut);

 private:
  template <typename TFinish>
  bool RectifyByRows(ClImage& oOut, const TFinish& fnFinish);
  void Adjust(ClImage& oIn, ClImage& oOut);

  ClVT40SetupCalibrationData& m_oSetup;
  const EKind m_eKind;
  const unsigned int m_nMask;
  ClImage m_oRaw;
  ClImage m_oBalanced;
  ClImage m_oWarped;
  ClIpLocalWhiteBalance m_oBalance;
  ClIpLocalWhiteBalanceRows m_oBalanceRows;
  ClIpFlip m_oFlip;
  std::vector<uint8_t> m_aRow;
  std::vector<uint8_t> m_aFinished;
};
