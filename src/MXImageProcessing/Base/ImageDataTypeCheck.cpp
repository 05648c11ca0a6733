// Which element types a processor takes, and what a refused one is called.
#include "MXImageProcessing/ImageDataTypeCheck.h"

#include <cstdio>

#include "MXTools/Exception.h"

namespace {

const char* TypeName(unsigned char nType) {
  switch (nType) {
    case ClImage::eTypeNone:
      return "unknown";
    case ClImage::eUint8:
      return "uint8";
    case ClImage::eInt8:
      return "int8";
    case ClImage::eUint16:
      return "uint16";
    case ClImage::eInt16:
      return "int16";
    case ClImage::eUint32:
      return "uint32";
    case ClImage::eInt32:
      return "int32";
    case ClImage::eFloat32:
      return "float32";
    case ClImage::eDouble64:
      return "double64";
    case ClImage::cnTypeDefault:
      return "default";
    default:
      return "not valid";
  }
}

}  // namespace

namespace NewIpBase {

const ClImage::EDataType ClImageDataTypeCheck::m_caAllTypes[8] = {
    ClImage::eInt8,  ClImage::eUint8,  ClImage::eInt16,   ClImage::eUint16,
    ClImage::eInt32, ClImage::eUint32, ClImage::eFloat32, ClImage::eDouble64};
const ClImage::EDataType ClImageDataTypeCheck::m_caIntegerTypes[6] = {
    ClImage::eInt8, ClImage::eUint8, ClImage::eInt16, ClImage::eUint16, ClImage::eInt32, ClImage::eUint32};
const ClImage::EDataType ClImageDataTypeCheck::m_caFloatTypes[2] = {ClImage::eFloat32, ClImage::eDouble64};

bool ClImageDataTypeCheck::CheckIfTypeAllowed(ClImage::EDataType eType) const {
  for (unsigned int n = 0; n < m_aAllowedTypes.Entries(); ++n) {
    if (m_aAllowedTypes[n] == eType) return true;
  }
  return false;
}

void ClImageDataTypeCheck::EnableDataType(ClImage::EDataType eType) {
  if (!CheckIfTypeAllowed(eType)) m_aAllowedTypes.Add(eType);
}

void ClImageDataTypeCheck::EnableDataType(const ClImage::EDataType* pTypes, unsigned int nCount) {
  for (unsigned int n = 0; n < nCount; ++n) EnableDataType(pTypes[n]);
}

void ClImageDataTypeCheck::CheckTypeAllowed(const ClImage* pImage) const {
  const unsigned char nType = pImage->DataType();
  if (CheckIfTypeAllowed(static_cast<ClImage::EDataType>(nType))) return;
  char szText[80];
  std::snprintf(szText, sizeof(szText), "Input pixel type \"%s\" not supported by processor.",
                TypeName(nType));
  KLV_RAISE(ClException, szText, -33);
}

}  // namespace NewIpBase
