// Geometric data of a few pixels, so that maps are made in no time, and warps of an even image.
#pragma once

#include "MXCalibrate/CalibrateGeometricData.h"
#include "MXCalibrate/TpIpCalibrateGeometric.h"
#include "MXTools/FpImage.h"
#include "StreamBytes.h"

inline void FillSmallGeometry(ClCalibrateGeometricData& rData) {
  rData.m_nSourceWidth = rData.m_nSourceHeight = 16;
  rData.m_nTargetWidth = rData.m_nTargetHeight = 6;
  rData.m_nTargetPelsX = rData.m_nTargetPelsY = 19685;
  rData.m_nPlanes = 1;
  for (int n = 0; n < 4; ++n) {
    rData.m_aTarget.Add(ClVector(5 * (n % 2), 5 * (n / 2)));
    rData.m_aActual[0].Add(ClVector(1 + 11 * (n % 2), 2 + 9 * (n / 2)));
  }
}

inline void WarpEvenImage(ClIpCalibrateGeometricBase& rWarp, uint32_t nWidth, uint32_t nHeight) {
  ClImage oIn, oOut;
  oIn.NewWithType(ClImage::eUint8, static_cast<int>(nWidth), static_cast<int>(nHeight), 1, 0, 0, true);
  oIn = static_cast<unsigned char>(77);
  rWarp.m_pInImage = &oIn;
  rWarp.m_pOutImage = &oOut;
  Refused([&] { rWarp.Apply(); });
}
