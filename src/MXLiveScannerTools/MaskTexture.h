// How far the texture of a frame is from that of skin, row by row.
#pragma once

#include <cstdint>

#include "MXKernels/TextureRows.h"
#include "MXLiveScannerTools/MaskWindows.h"
#include "MXTools/FpImage.h"

/// Distance of the local shares of texture classes from those that skin has; only pixels of middle brightness
/// are measured.
///
/// Domain     signals are eUint8 images of one plane. They must live as long as rows are asked for.
/// Ownership  keeps some rows, no image.
/// Threads    thread-bound.
/// Errors     ClExBadAlloc -102.
class ClMaskTexture {
 public:
  /// To be called before the first row of a frame.
  void Start(const ClImage& oSignal, const MXKernels::BrightnessLimits& oLimits);
  /// Row y of the distances, as MXKernels::TextureDistanceRow has them. Rows are made in order, from 0 on.
  void MakeRow(int y, uint16_t* pDistance);

 private:
  const uint8_t* MakeClasses(int y);
  void MakeRowOfSmallImage(int y, uint16_t* pDistance);
  void CountInner(int y);

  const ClImage* m_poSignal = nullptr;
  MXKernels::BrightnessLimits m_oLimits{};
  uint32_t m_nInnerRows = 0;
  MaskWindows::TpRows<uint8_t> m_oClasses;
  MaskWindows::TpRows<uint8_t> m_oNone;
  MaskWindows::TpRows<uint8_t> m_oCounts;
  MaskWindows::TpRows<uint8_t> m_oTriples;
  MaskWindows::TpRows<uint8_t> m_oInner;
  MaskWindows::TpOfArea<uint16_t> m_oFactors;
};
