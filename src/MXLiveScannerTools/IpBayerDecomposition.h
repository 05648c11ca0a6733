// Takes a colour filter mosaic apart.
#pragma once

#include "MXImageProcessing/NewIpProcessorBase.h"
#include "MXTools/FpImage.h"

/// Makes three images of half size from a mosaic: red, blue and the mean of both greens of each 2 by 2 cell.
///
/// Domain     one plane of eUint8, eInt8, eUint16, eInt16, eFloat32 or eDouble64 with even width and height.
/// Range      outputs have the input's type and no resolution. The mean of whole numbers is truncated.
/// Ownership  outputs are allocated on the images handed in, which are four different ones.
/// Threads    thread-bound.
/// Errors     ClException -44 an image is missing, sizes are odd, several planes, a position outside the
///            cell; -14 an empty image; -33 other types; -701 an image has two roles.
/// Cost       one pass.
class ClIpBayerDecomposition : public NewIpBase::ClIpProcessorBase {
 public:
  /// Where a sample lies in its cell; both are 0 or 1.
  struct ClPosition {
    int m_nX;
    int m_nY;
  };

  ClIpBayerDecomposition();

  ClProcessorBase* Create() const override;
  const char* Name() const override { return "ClIpBayerDecomposition"; }
  void SetParametersToDefault() override;
  void DeclareParameters(ClParameterRows& oRows) override;

  ClImage* m_pInImage = nullptr;
  ClImage* m_pOutImageRed = nullptr;
  ClImage* m_pOutImageGreen = nullptr;
  ClImage* m_pOutImageBlue = nullptr;
  ClPosition m_oRed;
  ClPosition m_oGreen1;
  ClPosition m_oGreen2;
  ClPosition m_oBlue;

 protected:
  void CheckInOutImageTypes() override;
  long Process() override;

 private:
  void CheckInput();
  template <typename T>
  void Decompose();
};
