// How the images and output types that processors have in common become parameters.
#include "MXImageProcessing/PublishImage.h"

#include <string>
#include <vector>

#include "MXTools/ParameterContainer.h"
#include "MXTools/ParameterInterface.h"
#include "MXTools/TpParameterEnumPointer.h"

namespace {

struct ClTypeName {
  long m_nType;
  const char* m_szName;
};

const ClTypeName g_aTypeNames[] = {
    {ClImage::eUint8, "unsigned char"},   {ClImage::eInt8, "signed char"},
    {ClImage::eUint16, "unsigned short"}, {ClImage::eInt16, "signed short"},
    {ClImage::eUint32, "unsigned int"},   {ClImage::eInt32, "signed int"},
    {ClImage::eFloat32, "float"},         {ClImage::eDouble64, "double"},
    {ClImage::cnTypeDefault, "default"},
};

}  // namespace

void PublishInputImage(ClParameterContainer& oContainer, const char* szName, ClImage** ppImage) {
  oContainer.AddPointer(szName, ppImage)->SetFlags(5);
}

void PublishOutputImage(ClParameterContainer& oContainer, const char* szName, ClImage** ppImage) {
  oContainer.AddPointer(szName, ppImage)->SetFlags(6);
}

void PublishOutImageType(ClParameterContainer& oContainer, unsigned char* pnType) {
  auto* pType = oContainer.AddParam<TpParameterEnumPointer<unsigned char, ClParameter>>("OutImageType");
  pType->BindVariable(pnType);
  for (const ClTypeName& oType : g_aTypeNames) {
    pType->AddValue(static_cast<unsigned char>(oType.m_nType), oType.m_szName);
  }
}

void DescribeInputImage(ClParameterInterface& oInterface, const char* szName, const char* szDescription,
                        ClImage** ppImage) {
  oInterface.AddParameter(ppImage, szName, szDescription, ClParameterInterface::eIn, 0, 0);
}

void DescribeOutputImage(ClParameterInterface& oInterface, const char* szName, const char* szDescription,
                         ClImage** ppImage) {
  oInterface.AddParameter(ppImage, szName, szDescription, ClParameterInterface::eOut, 0, 0);
}

void DescribeOutImageType(ClParameterInterface& oInterface, unsigned char* pnType) {
  std::string szNames;
  std::vector<long> aTypes;
  for (const ClTypeName& oType : g_aTypeNames) {
    szNames.append(oType.m_szName).push_back('\0');
    aTypes.push_back(oType.m_nType);
  }
  // A number of one byte that names are given to: an enumeration proper would have 32 bits.
  oInterface.AddParameter(pnType, "OutImageType", "In: OutImage Datatype", ClParameterInterface::eIn, 0, 255)
      ->SetEnumList(szNames.c_str(), aTypes.data());
}

void DescribeInOutImages(ClParameterInterface& oInterface, ClImage** ppIn, ClImage** ppOut) {
  DescribeInputImage(oInterface, "InImage", "In: Original Image", ppIn);
  DescribeOutputImage(oInterface, "OutImage", "Out: Output Image", ppOut);
}
