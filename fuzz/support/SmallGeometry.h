// Geometric data of a few pixels, so that maps are made in no time.
#pragma once

#include "MXCalibrate/CalibrateGeometricData.h"

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
