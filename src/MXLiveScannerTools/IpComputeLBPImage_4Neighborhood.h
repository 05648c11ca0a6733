// Classifies each pixel by which of its four neighbours are brighter.
#pragma once

#include "MXImageProcessing/NewIpProcessorBase.h"
#include "MXTools/FpImage.h"
#include "MXTools/TpArrayStatic.h"

/// The class of a pixel is the number of its neighbours that are brighter, or 5 where just two opposite ones
/// are.
///
/// Domain     one plane of eUint8.
/// Range      the output holds the class of each inner pixel; the class images hold 255 at the pixels of
///            their class. The first and last row and column are 0 in all seven.
/// Ownership  the output is allocated on the image handed in; the class images are this object's.
/// Threads    thread-bound.
/// Errors     ClException -701 an image is missing; -44 another element type.
class ClIpComputeLBPImage_4Neighborhood : public NewIpBase::ClIpProcessorBase {
 public:
  static constexpr unsigned int cnClasses = 6;

  /// The class of each pattern of brighter neighbours, as MXKernels::TextureClassRow takes it.
  static const unsigned char m_anMapping[16];

  ClIpComputeLBPImage_4Neighborhood();

  ClProcessorBase* Create() const override;
  const char* Name() const override { return "ClIpComputeLBPImage_4Neighborhood"; }
  void SetParametersToDefault() override {}
  void DeclareParameters(ClParameterRows& oRows) override;

  ClImage* m_poInImage = nullptr;
  ClImage* m_poOutImage = nullptr;
  /// One image for each class, filled by Apply.
  TpArrayStatic<ClImage> m_aoClassImages;

 protected:
  void CheckInOutImageTypes() override {}
  long Process() override;

 private:
  static void ClearBorder(ClImage& oImage);
};
