// Smooth surfaces through scattered values, drawn into images.
#pragma once

#include <cstddef>
#include <limits>
#include <vector>

#include "MXImageProcessing/MakeProcessor.h"
#include "MXImageProcessing/NewIpProcessorBase.h"
#include "MXKernels/SplineRows.h"
#include "MXMath/ThinPlateSplinesBOOST.h"
#include "MXTools/TpArrayDynamic.h"
#include "MXTools/Vector.h"

/// The radial basis d log d of a squared distance d; 0 for d = 0.
class ClRadialBasisSquaredDist {
 public:
  static double Value(double dSquaredDistance) { return SplineBasis<double>(dSquaredDistance); }
  /// pSum[i] += dWeight * Value of the squared distance between oPoint and pX[i], dY, for i in [0, nCount).
  static void AddToRow(const ClVector& oPoint, double dWeight, const double* pX, double dY, size_t nCount,
                       double* pSum) {
    MXKernels::AddSplineBasisRow(pX, nCount, {oPoint.x, (oPoint.y - dY) * (oPoint.y - dY)}, dWeight, pSum);
  }
};

/// The part of ClIpInterpolate2D that does not depend on its basis function.
///
/// Domain     block sizes from 1; reference points that are all different.
/// Range      values are limited to the limits given and to the range of the type; integers are truncated.
///            With a block size above 1 only the corners of blocks are computed, and the samples between are
///            interpolated, in integers for integer types.
/// Ownership  none of values, points and output images.
/// Threads    thread-bound.
/// Errors     -44 with the name of a missing parameter; -44 is returned for an unknown type and for points
///            that allow no surface, because two coincide, or nearly so that the surface misses them.
/// Cost       one basis function for each point and block corner.
class ClIpInterpolate2DBase : public NewIpBase::ClIpProcessorBase {
 public:
  using Points = TpArrayDynamic<ClVector, 10u>;

  const char* Name() const override { return "ClIpInterpolate2D"; }
  bool CanApply() override;
  void DeclareParameters(ClParameterRows& oRows) override;

  /// One value for each reference point, image after image.
  const double* m_pValues = nullptr;
  const Points* m_pPoints = nullptr;
  int nInTargetWidth = 0;
  int nInTargetHeight = 0;
  unsigned int m_nImages = 1;
  unsigned int m_nBlockSize = 1;
  /// A value of ClImage::EDataType.
  unsigned char m_nDataType = 0;
  TpArrayStatic<ClImage*> m_aOutput;
  double m_dLowerLimit = std::numeric_limits<double>::lowest();
  double m_dUpperLimit = std::numeric_limits<double>::max();

 protected:
  ClIpInterpolate2DBase() { EnableDataType(m_caAllTypes); }

  virtual double Basis(double dSquaredDistance) const = 0;
  /// pSum[i] += dWeight * basis between oPoint and the position pX[i], dY, for i in [0, nCount).
  virtual void AddToRow(const ClVector& oPoint, double dWeight, const double* pX, double dY, size_t nCount,
                        double* pSum) const = 0;

  void CheckInOutImageTypes() override {}
  long Process() override;

 private:
  using Vector = TpLinearSystem<double>::Vector;

  void CheckParameters() const;
  template <typename T>
  long ProcessType();
  /// Whether the surface goes through the points.
  bool MeetsValues(const Vector& oWeights, const double* pValues) const;
  template <typename T>
  void DrawCorners(const Vector& oWeights, const std::vector<int>& aX, const std::vector<int>& aY,
                   ClImage& oOut) const;

  double m_dLower = 0;
  double m_dUpper = 0;
};

/// Draws, for each of m_nImages rows of values, the sum of one basis function around each reference point
/// that has those values at the points. There is no affine part. TBasis has the functions of
/// ClRadialBasisSquaredDist.
template <typename TBasis>
class ClIpInterpolate2D : public ClIpInterpolate2DBase {
 public:
  ClProcessorBase* Create() const override { return MakeProcessor<ClIpInterpolate2D>(); }

 protected:
  double Basis(double dSquaredDistance) const override { return TBasis::Value(dSquaredDistance); }
  void AddToRow(const ClVector& oPoint, double dWeight, const double* pX, double dY, size_t nCount,
                double* pSum) const override {
    TBasis::AddToRow(oPoint, dWeight, pX, dY, nCount, pSum);
  }
};
