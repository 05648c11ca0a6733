// A grid that frees its dots.
#pragma once

#include "MXCalibrate/IpCalibrateGeometricBuildRefPointsBase.h"

/// Frees the dots of one search or check, whatever ends it.
class ClOwnedGrid {
 public:
  ClOwnedGrid() = default;
  ~ClOwnedGrid() { ClIpCalibrateGeometricBuildRefPointsBase::DeleteDots(m_aDots); }
  ClOwnedGrid(const ClOwnedGrid&) = delete;
  ClOwnedGrid& operator=(const ClOwnedGrid&) = delete;

  ClIpCalibrateGeometricBuildRefPointsBase::Grid m_aDots;
};
