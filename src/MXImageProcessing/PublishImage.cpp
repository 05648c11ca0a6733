// How the images and output types that processors have in common become parameters.
#include "MXImageProcessing/PublishImage.h"

#include "MXTools/ParameterContainer.h"
#include "MXTools/TpParameterEnumPointer.h"

void PublishInputImage(ClParameterContainer& oContainer, const char* szName, ClImage** ppImage) {
  oContainer.AddPointer(szName, ppImage)->SetFlags(5);
}

void PublishOutputImage(ClParameterContainer& oContainer, const char* szName, ClImage** ppImage) {
  oContainer.AddPointer(szName, ppImage)->SetFlags(6);
}

void PublishOutImageType(ClParameterContainer& oContainer, unsigned char* pnType) {
  auto* pType = oContainer.AddParam<TpParameterEnumPointer<unsigned char, ClParameter>>("OutImageType");
  pType->BindVariable(pnType);
  pType->AddValue(ClImage::eUint8, "unsigned char");
  pType->AddValue(ClImage::eInt8, "signed char");
  pType->AddValue(ClImage::eUint16, "unsigned short");
  pType->AddValue(ClImage::eInt16, "signed short");
  pType->AddValue(ClImage::eUint32, "unsigned int");
  pType->AddValue(ClImage::eInt32, "signed int");
  pType->AddValue(ClImage::eFloat32, "float");
  pType->AddValue(ClImage::eDouble64, "double");
  pType->AddValue(ClImage::cnTypeDefault, "default");
}
