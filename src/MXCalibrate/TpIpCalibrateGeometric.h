// The warp that evaluates its spline at every target pixel.
#pragma once

#include "MXCalibrate/IpCalibrateGeometricBase.h"
#include "MXImageProcessing/MakeProcessor.h"

/// Builds the map of ClIpCalibrateGeometricBase from one spline evaluation for each target pixel and plane.
class ClIpCalibrateGeometricDense : public ClIpCalibrateGeometricBase {
 protected:
  void InitiateParams(const Points& aTarget, const Points* pActual, uint32_t nPlanes) override;
};

/// I is the table of weights.
template <typename I>
class TpIpCalibrateGeometric : public ClIpCalibrateGeometricDense {
 public:
  ClProcessorBase* Create() const override { return MakeProcessor<TpIpCalibrateGeometric>(); }
  const char* Name() const override { return "TpIpCalibrateGeometric"; }

 protected:
  ClIpCalibrateGeometricBase::Weights Table() const override { return m_oInterpolation.Data(); }

 private:
  I m_oInterpolation;
};
