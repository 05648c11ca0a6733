// The warp that evaluates its spline on a coarse grid.
#pragma once

#include "MXCalibrate/IpCalibrateGeometricBase.h"
#include "MXImageProcessing/MakeProcessor.h"

/// Builds the map of ClIpCalibrateGeometricBase from spline evaluations at every 8th target row and column,
/// with positions between them interpolated linearly.
class ClIpCalibrateGeometricCoarse : public ClIpCalibrateGeometricBase {
 public:
  /// oOut becomes ((width - 1) * nFactor + 1) by ((height - 1) * nFactor + 1) samples of oIn's type,
  /// eDouble64, which interpolate those of oIn. The last row and column are not set, since they belong to no
  /// cell.
  static void UpscaleImage(const ClImage& oIn, ClImage& oOut, unsigned char nFactor);
  /// The same for one plane.
  static void UpscaleImageMono(const ClImage& oIn, ClImage& oOut, unsigned char nFactor);

 protected:
  void InitiateParams(const Points& aTarget, const Points* pActual, uint32_t nPlanes) override;

  unsigned char m_nBlock = 8;
};

/// I is the table of weights.
template <typename I>
class TpIpCalibrateGeometricSubsample : public ClIpCalibrateGeometricCoarse {
 public:
  ClProcessorBase* Create() const override { return MakeProcessor<TpIpCalibrateGeometricSubsample>(); }
  const char* Name() const override { return "TpIpCalibrateGeometricSubsample"; }

 protected:
  ClIpCalibrateGeometricBase::Weights Table() const override { return m_oInterpolation.Data(); }

 private:
  I m_oInterpolation;
};
