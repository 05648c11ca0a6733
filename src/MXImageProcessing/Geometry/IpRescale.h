// Brings an image to another size or resolution.
#pragma once

#include "MXImageProcessing/RescalePlane.h"
#include "MXTools/FpImage.h"
#include "MXTools/ProcessorBase.h"

/// Set a pair of pels per metre or a pair of sizes; the pels come first when both are set. Without a change
/// of size it copies.
///
/// Domain     eUint8 and eInt8, any type for a copy; several planes are resized one by one. Input and output
///            may be one object.
/// Range      ModeBiLinear takes area means along an axis that shrinks, and blends four pixels when no axis
///            shrinks; ModeWholeNumbered repeats pixels or takes means by the nearest whole factor;
///            ModeBiCubic with a parameter up to 0 weights by the distance in the plane, which does not keep
///            the grey of flat areas; with a parameter above 0, which it negates, by the distances on the
///            axes, which does.
/// Units      pels per metre.
/// Ownership  the output is allocated on the image handed in; scratch is kept from run to run.
/// Threads    thread-bound.
/// Errors     returned: -10 an image is missing; -13 a new resolution for an input without one; -35 an empty
///            input or an impossible size; -101 nothing is set, or an input without pixels. ClException -101
///            "Image Type is not the assigned type" for larger elements.
class ClIpRescale : public ClProcessorBase {
 public:
  enum eProcessingMode : int {
    ModeWholeNumbered = 0,
    ModeNearestNeighbour = 1,
    ModeBiLinear = 2,
    ModeBiCubic = 3,
    ModeBiLinearFantMar = 4
  };

  ClIpRescale() { ClIpRescale::SetParametersToDefault(); }

  /// Brings the input to the size or resolution that the parameters give.
  long ApplyParam(ClImage& oIn, ClImage& oOut, eProcessingMode eMode);
  /// Errors: -101 for ModeWholeNumbered.
  long ApplyParamSize(ClImage& oIn, ClImage& oOut, int nWidth, int nHeight, eProcessingMode eMode);
  long ApplyParamPels(ClImage& oIn, ClImage& oOut, int nPelsX, int nPelsY, eProcessingMode eMode);

  ClProcessorBase* Create() const override;
  const char* Name() const override { return "ClIpRescale"; }
  bool CanApply() override;
  void SetParametersToDefault() override;
  void DeclareParameters(ClParameterRows& oRows) override;
  void ParameterString(char* szText, unsigned int nSize) const override;

 protected:
  long Initialize() override;
  long Process() override;

 private:
  struct ClAxis;

  ClAxis AxisX(const ClImage& oIn) const;
  ClAxis AxisY(const ClImage& oIn) const;
  long ProcessPlanes(ClImage& oOut);
  template <typename T>
  void ProcessPlane(const ClImage& oIn, ClImage& oOut);
  template <typename T>
  void ProcessWholeNumbered(const ClImage& oIn, ClImage& oOut);
  template <typename T>
  void ProcessModeBiLinear(const ClImage& oIn, ClImage& oOut);
  template <typename T>
  void ProcessFantMar(const ClImage& oIn, ClImage& oOut);
  template <typename T, typename TRow>
  void ResampleX(const ClImage& oIn, ClImage& oOut, TRow&& fnRow) const;
  template <typename T, typename TRow>
  void ResampleY(const ClImage& oIn, ClImage& oOut, TRow&& fnRow);
  void AllocateOutImage(const ClImage& oIn, ClImage& oOut) const;

  ClImage* m_pInImage = nullptr;
  ClImage* m_pOutImage = nullptr;
  int m_nNewWidth;
  int m_nNewHeight;
  int m_nNewPelsX;
  int m_nNewPelsY;
  eProcessingMode m_eMode;
  double m_dConvParameter1;
  bool m_bFastCubic = false;
  int m_nEffectiveWidth = 0;
  int m_nEffectiveHeight = 0;
  int m_nEffectivePelsX = 0;
  int m_nEffectivePelsY = 0;
  ClImage m_oInPlace;
  ClImage m_oResampled;
  ClImage m_oTurned;
  ClImage m_oTurnedResampled;
  RescalePlane::ClTables m_oTables;
};
