// The first mask of a frame: where there is skin, as its texture and its brightness show.
#pragma once

#include <cstdint>

#include "MXLiveScannerTools/MaskTexture.h"
#include "MXLiveScannerTools/MaskWindows.h"
#include "MXTools/FpImage.h"

/// Decides for each pixel by the mean distance of its surroundings from skin, and by whether it is brighter
/// than fog; small specks and gaps are smoothed away.
///
/// Domain     signal and envelope are eUint8 images of one plane and one size.
/// Range      the mask holds 0 and 255.
/// Ownership  the mask is allocated on the image handed in; some rows are kept, no image.
/// Threads    thread-bound.
/// Errors     ClExBadAlloc -102.
class ClFirstMask {
 public:
  struct StLimits {
    MXKernels::BrightnessLimits oBrightness;
    /// Mean distances below it are skin.
    uint16_t nDistance;
    /// Skin is brighter than so many hundredths of its wide surroundings; at most 1 << 20 either way.
    int32_t nFog;
  };

  void Make(const ClImage& oSignal, const ClImage& oEnvelope, const StLimits& oLimits, ClImage& oMask);

 private:
  void Start(const ClImage& oSignal, const StLimits& oLimits);
  const uint8_t* MakeFingerRow(int y);
  void TestFog(int y, bool bAny, uint8_t* pFinger);

  const ClImage* m_poEnvelope = nullptr;
  StLimits m_oLimits{};
  int m_nWidth = 0;
  int m_nHeight = 0;
  // Half the widths of the windows.
  int m_nDistanceHalf = 0;
  int m_nNearHalf = 0;
  int m_nFarHalf = 0;
  int m_nMaskHalf = 0;
  ClMaskTexture m_oTexture;
  MaskWindows::TpRows<uint16_t> m_oDistances;
  MaskWindows::TpRows<uint16_t> m_oNoDistance;
  MaskWindows::TpRows<uint32_t> m_oDistanceSums;
  MaskWindows::TpRows<uint32_t> m_oDistanceWork;
  MaskWindows::TpRows<uint8_t> m_oDark;
  MaskWindows::TpRows<uint16_t> m_oNear;
  MaskWindows::TpRows<uint16_t> m_oFar;
  MaskWindows::TpRows<uint32_t> m_oFarPrefix;
  MaskWindows::TpRows<uint8_t> m_oFingers;
  MaskWindows::TpRows<uint8_t> m_oAllFinger;
  MaskWindows::TpRows<uint8_t> m_oZeros;
  MaskWindows::TpRows<uint8_t> m_oZerosWork;
  MaskWindows::TpOfArea<uint32_t> m_oDistanceLimits;
  MaskWindows::TpOfArea<float> m_oNearFactors;
  MaskWindows::TpOfArea<float> m_oFarFactors;
  MaskWindows::TpOfArea<uint8_t> m_oZerosLimits;
};
