// The soft edges of a mask: means over its surroundings, also at twice its resolution.
#pragma once

#include <cstdint>

#include "MXLiveScannerTools/MaskWindows.h"
#include "MXTools/FpImage.h"

/// Means of a mask in windows of 7 by 7 pixels, or of the mask with each pixel doubled in windows of 15 by
/// 15; windows are clipped at the borders, and a mask that is smaller than its window is left as it is.
///
/// Domain     the mask is an eUint8 image of one plane that holds 0 and 255. It must live as long as rows are
///            asked for.
/// Ownership  keeps some rows, no image.
/// Threads    thread-bound.
/// Errors     ClExBadAlloc -102.
class ClSoftMask {
 public:
  /// To be called before the first row of a mask.
  void Start(const ClImage& oMask, bool bDoubled);
  /// Row y of the means; rows are asked for in order, from 0 on. It stays until the next one is.
  const uint8_t* Row(int y);

 private:
  void CountZeros(int y);
  const uint8_t* DoubledRow(int y);

  const ClImage* m_poMask = nullptr;
  bool m_bDoubled = false;
  bool m_bFits = false;
  MaskWindows::TpRows<uint8_t> m_oAllSet;
  MaskWindows::TpRows<uint8_t> m_oZeros;
  MaskWindows::TpRows<uint8_t> m_oDoubledZeros;
  MaskWindows::TpRows<uint8_t> m_oSoft;
  MaskWindows::TpOfArea<uint8_t> m_oAreas;
  MaskWindows::TpOfArea<uint16_t> m_oFactors;
};
