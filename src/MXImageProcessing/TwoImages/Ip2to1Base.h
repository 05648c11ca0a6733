// Base of the processors that make one image from two.
#pragma once

#include "MXTools/FpImage.h"
#include "MXTools/ProcessorBase.h"
#include "MXTools/TpArrayStatic.h"

struct ClOverlap;

/// Places two images on a common canvas and applies a rule to the samples of their overlap.
///
/// Domain     any of the eight element types for each of the three images. Equal numbers of planes, or three
///            planes and one: the one then goes with each of the three. In other mixes the overlap is 0.
/// Range      the canvas has the first image's planes and resolution and the output type, 255 meaning the
///            first image's type. Outside the overlap it keeps the first image, the second or the fill
///            colour.
/// Ownership  the output is allocated on the image handed in, which may be one of the inputs.
/// Threads    thread-bound.
/// Errors     returned: -37 an image is missing or an input is empty; -44 sizes differ or an offset is set
///            while SizeMustBeEqual; -101 unknown element type. ClExBadAlloc -102.
class ClIp2to1Base : public ClProcessorBase {
 public:
  long ApplyParam(ClImage& oIn1, ClImage& oIn2, ClImage& oOut, unsigned char nType);

  bool CanApply() override;
  void SetParametersToDefault() override;
  void DeclareParameters(ClParameterRows& oRows) override;

  ClImage* pInImage1 = nullptr;
  ClImage* pInImage2 = nullptr;
  ClImage* pOutImage = nullptr;
  unsigned char OutImageType = ClImage::cnTypeDefault;
  bool SizeMustBeEqual = true;
  double FillColor = 0.0;
  double m_aPlaneFillColors[4] = {0.0, 0.0, 0.0, 0.0};
  long OffsetX = 0;
  long OffsetY = 0;

 protected:
  explicit ClIp2to1Base(bool bLookUpTable = false) : m_bLookUpTable(bLookUpTable) {}

  long Initialize() override;
  long Process() override;

  /// Applies the rule to the overlap. Offsets and row steps count elements.
  /// This class calls GetValue for each sample, or, with the table flag and two 8-bit inputs of which
  /// the second is eUint8, a table of its 65536 results.
  virtual long DoProcess(ClImage& oIn1, ClImage& oIn2, ClImage& oOut, long nWidth, long nHeight,
                         long nPlanes1, long nPlanes2, long nOffset1, long nRowStep1, long nOffset2,
                         long nRowStep2, long nOffsetOut, long nRowStepOut);
  virtual double GetValue(ClImage& oIn1, ClImage& oIn2, ClImage& oOut, double dA, double dB);

  /// Repeats each sample of a one-plane second image, within the overlap, for each of the first image's
  /// planes. The overlap then lies in the image that is returned, which this object keeps.
  const ClImage& SpreadOverlap(const ClImage& oIn2, ClOverlap& rOverlap);

  virtual void DeclareOutImageType(ClParameterRows& oRows);

 private:
  /// Makes the canvas with what lies outside the overlap on it.
  void PrepareOverlay(ClImage& oTarget);
  void MakeCanvas(ClImage& oTarget) const;
  void SetOverlap(const ClImage& oTarget);
  bool IsOverlaid() const;
  /// The rule for every pair of 8-bit samples between black and white, the first sample's byte times 256
  /// first.
  void FillTable(TpArrayStatic<double>& aTable, ClImage& oIn1, ClImage& oIn2, ClImage& oOut);

  long m_nOverlapWidth = 0;
  long m_nOverlapHeight = 0;
  long m_nOverlapStartOut = 0;
  long m_nOverlapStart1 = 0;
  long m_nOverlapStart2 = 0;
  bool m_bLookUpTable;
  ClImage m_oScratch;
  ClImage m_oSpread;
};
