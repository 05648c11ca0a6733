// Turns an image about a point.
#pragma once

#include "MXTools/FpImage.h"
#include "MXTools/ProcessorBase.h"
#include "MXTools/Vector.h"

/// Turns by any angle in fixed point with 12 fractional bits, taking the pixel at the position or a blend of
/// four. An angle of 0 copies.
///
/// Domain     eUint8 and eInt8, any type for an angle of 0; several planes are turned one by one. Input and
///            output are two images.
/// Units      the angle is in radians and turns x toward y; centres are in pixels.
/// Range      without ResizeOutImage the output has the input's size; with it, the size that holds all four
///            corners. Pixels that come from outside, or from the input's outermost line where a position
///            falls on it, are background.
/// Ownership  the output is allocated on the image handed in.
/// Threads    thread-bound.
/// Errors     returned: -10 an image is missing or both are one; -35 an angle or centre that is no number.
///            ClException -101 "Image Type is not the assigned type" for larger elements.
/// Cost       one pass without a test a pixel: the range of columns is found by division.
class ClIpRotate : public ClProcessorBase {
 public:
  ClIpRotate() { ClIpRotate::SetParametersToDefault(); }

  /// Leaves the background as it is set.
  long ApplyParam(ClImage& oIn, ClImage& oOut, const ClVector& oCentre, double dAngle, bool bResize,
                  bool bInterpolate);
  void SetBackgroundColor(unsigned char nColor) { m_nBackgroundColor = nColor; }

  /// Input to output co-ordinates of the last run, and back.
  ClVector Transform(const ClVector& oPoint) const;
  ClVector TransformInverse(const ClVector& oPoint) const;

  ClProcessorBase* Create() const override;
  const char* Name() const override { return "ClIpRotate"; }
  bool CanApply() override;
  void SetParametersToDefault() override;
  void DeclareParameters(ClParameterRows& oRows) override;
  void ParameterString(char* szText, unsigned int nSize) const override;

 protected:
  long Process() override;

 private:
  /// How output pixels find their source, 12 fractional bits each.
  struct ClFixedPoint;

  long ProcessPlane();
  ClVector Shift(int& rnWidth, int& rnHeight);
  void Turn(const ClFixedPoint& oFixed);

  ClImage* m_pInImage = nullptr;
  ClImage* m_pOutImage = nullptr;
  ClVector m_oCentre;
  double m_dRotation;
  bool m_bResizeOutImage;
  bool m_bInterpolate;
  unsigned char m_nBackgroundColor;
  ClVector m_oOutCentre;
};
