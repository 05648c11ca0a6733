// Rows of images, choices and what processors have in common.
#include "MXTools/ParameterRows.h"

#include "MXTools/FpImage.h"

void ClParameterRows::Describe(ClParameter* pParameter, const char* szDescription) const {
  if (m_bDescribeBoth) pParameter->SetDescription(szDescription);
}

void ClParameterRows::Image(const char* szName, const char* szOlderName, const char* szDescription,
                            ClImage** ppImage, bool bOutput) {
  using Older = ClParameterInterface;
  if (m_pPublished != nullptr) {
    ClParameter* pParameter = m_pPublished->AddPointer(szName, ppImage);
    pParameter->SetFlags(ClParameter::cnConnector |
                         (bOutput ? ClParameter::cnReadable : ClParameter::cnWritable));
  } else if (szOlderName != nullptr) {
    m_pOlder->AddParameter(ppImage, szOlderName, szDescription, bOutput ? Older::eOut : Older::eIn, 0, 0);
  }
}

void ClParameterRows::Input(const char* szName, const char* szOlderName, const char* szDescription,
                            ClImage** ppImage) {
  Image(szName, szOlderName, szDescription, ppImage, false);
}

void ClParameterRows::Output(const char* szName, const char* szOlderName, const char* szDescription,
                             ClImage** ppImage) {
  Image(szName, szOlderName, szDescription, ppImage, true);
}

void ClParameterRows::InOutImages(ClImage** ppIn, ClImage** ppOut) {
  Input("pInImage", "InImage", "In: Original Image", ppIn);
  Output("pOutImage", "OutImage", "Out: Output Image", ppOut);
}

void ClParameterRows::SetNames(ClParameterInterface::ClParameter& oEntry, const StChoice* pChoices,
                               size_t nCount) {
  std::string szNames;
  std::vector<long> aValues;
  for (size_t n = 0; n < nCount; ++n) {
    szNames.append(pChoices[n].szName).push_back('\0');
    aValues.push_back(pChoices[n].nValue);
  }
  oEntry.SetEnumList(szNames.c_str(), aValues.data());
}

void ClParameterRows::Flag(const char* szName, const char* szOlderName, const char* szDescription,
                           bool* pbMember) {
  constexpr StChoice aChoices[] = {{false, "False"}, {true, "True"}};
  Choice(szName, szOlderName, szDescription, pbMember, aChoices);
}

void ClParameterRows::OutImageType(unsigned char* pnType) {
  constexpr StChoice aChoices[] = {
      {ClImage::eUint8, "unsigned char"},   {ClImage::eInt8, "signed char"},
      {ClImage::eUint16, "unsigned short"}, {ClImage::eInt16, "signed short"},
      {ClImage::eUint32, "unsigned int"},   {ClImage::eInt32, "signed int"},
      {ClImage::eFloat32, "float"},         {ClImage::eDouble64, "double"},
      {ClImage::cnTypeDefault, "default"},
  };
  Choice("OutImageType", "OutImageType", "In: OutImage Datatype", pnType, aChoices, 0, 255);
}
