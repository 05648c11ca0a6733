// Property calls: finding the parameter, the checks in their order, and the call that does it.
#include "MXTools/HandleProperties.h"

#include <string>

#include "MXTools/Exception.h"
#include "MXTools/ParameterBlobInterface.h"
#include "MXTools/ParameterEnumInterface.h"
#include "MXTools/ParameterNumericInterface.h"
#include "MXTools/SDKHelper.h"

namespace {

constexpr char cszNotInitialized[] = "The Enumeration is not initialized.";

void CheckWritable(const ClParameter& oParameter) {
  if (!oParameter.IsWritable()) KLV_RAISE_NUMBER(-47);
}

/// The end of an enumeration: an empty name.
void HandOutEnd(char* szName, unsigned int* pnSize) {
  if (pnSize == nullptr) KLV_RAISE_NUMBER(-24);
  if (szName != nullptr && *pnSize != 0) szName[0] = '\0';
  *pnSize = 0;
}

void HandOutText(const std::string& oText, char* szText, unsigned int* pnSize) {
  SDKHelper::GetData(reinterpret_cast<unsigned char*>(szText), pnSize, oText.c_str(),
                     static_cast<unsigned int>(oText.size()) + 1);
}

}  // namespace

ClParameterContainer& ClHandleProperties::QueryPropertys() {
  boost::unique_lock<boost::mutex> oLock(m_oTreeMutex);
  if (m_pParameters != nullptr) return *m_pParameters;
  auto pParameters = std::make_unique<ClParameterContainer>();
  using VersionParameter = TpParameterString<char*, ClParameter, 0>;
  auto* pVersion = pParameters->AddParam<VersionParameter>("Version");
  // The parameter's buffer has size 0, so that the text is never written to.
  m_szVersionText = const_cast<char*>(VersionText());
  pVersion->BindVariable(&m_szVersionText);
  pVersion->SetAccess(ClParameter::cnReadable);
  OnQueryPropertys(*pParameters);
  m_pParameters = std::move(pParameters);
  return *m_pParameters;
}

void ClHandleProperties::OnQueryPropertys(ClParameterContainer&) {}

void ClHandleProperties::ResetProperties() {
  boost::unique_lock<boost::mutex> oLock(m_oTreeMutex);
  m_pParameters.reset();
  m_pEnumParameter = nullptr;
  m_pEnumValues = nullptr;
}

ClParameter& ClHandleProperties::FindProperty(const char* szName) {
  ClParameterContainer& oTree = QueryPropertys();
  if (szName == nullptr) KLV_RAISE_NUMBER(-44);
  ClParameter* pParameter = oTree.Find(szName);
  if (pParameter == nullptr) KLV_RAISE_NUMBER(-206);
  return *pParameter;
}

void ClHandleProperties::GetProperty(const char* szName, char* szValue, unsigned int* pnSize) {
  QueryPropertys();
  if (szValue != nullptr && pnSize != nullptr && *pnSize >= 2) szValue[0] = '\0';
  ClParameter& oParameter = FindProperty(szName);
  if (pnSize == nullptr) KLV_RAISE_NUMBER(-24);
  if (!oParameter.GetValue(szValue, *pnSize)) KLV_RAISE_NUMBER(-21);
}

void ClHandleProperties::SetProperty(const char* szName, const char* szValue) {
  ClParameter& oParameter = FindProperty(szName);
  CheckWritable(oParameter);
  oParameter.SetValue(szValue);
}

void ClHandleProperties::GetPropertyLong(const char* szName, long* pnValue) {
  ClParameter& oParameter = FindProperty(szName);
  long nValue = 0;
  if (ClParameterNumericInterface* pNumeric = oParameter.GetNumericInterface()) {
    if (!pNumeric->IsInteger()) KLV_RAISE_NUMBER(-44);
    nValue = pNumeric->GetNumberLong();
  } else if (ClParameterEnumInterface* pEnum = oParameter.GetEnumInterface()) {
    nValue = pEnum->GetValue();
  } else {
    KLV_RAISE_NUMBER(-44);
  }
  if (pnValue == nullptr) KLV_RAISE_NUMBER(-23);
  *pnValue = nValue;
}

void ClHandleProperties::SetPropertyLong(const char* szName, long nValue) {
  ClParameter& oParameter = FindProperty(szName);
  ClParameterNumericInterface* pNumeric = oParameter.GetNumericInterface();
  ClParameterEnumInterface* pEnum = oParameter.GetEnumInterface();
  if (pNumeric != nullptr ? !pNumeric->IsInteger() : pEnum == nullptr) KLV_RAISE_NUMBER(-44);
  CheckWritable(oParameter);
  if (pNumeric != nullptr) {
    pNumeric->SetNumberLong(nValue);
  } else {
    pEnum->SetValue(nValue);
  }
}

void ClHandleProperties::GetPropertyDouble(const char* szName, double* pdValue) {
  ClParameterNumericInterface* pNumeric = FindProperty(szName).GetNumericInterface();
  if (pNumeric == nullptr || !pNumeric->IsFloat()) KLV_RAISE_NUMBER(-44);
  const double dValue = pNumeric->GetNumber();
  if (pdValue == nullptr) KLV_RAISE_NUMBER(-23);
  *pdValue = dValue;
}

void ClHandleProperties::SetPropertyDouble(const char* szName, double dValue) {
  ClParameter& oParameter = FindProperty(szName);
  ClParameterNumericInterface* pNumeric = oParameter.GetNumericInterface();
  if (pNumeric == nullptr || !pNumeric->IsFloat()) KLV_RAISE_NUMBER(-44);
  CheckWritable(oParameter);
  pNumeric->SetNumber(dValue);
}

void ClHandleProperties::GetPropertyBlob(const char* szName, unsigned char* pData, unsigned int* pnSize) {
  ClParameter& oParameter = FindProperty(szName);
  if (pnSize == nullptr) KLV_RAISE_NUMBER(-24);
  ClParameterBlobInterface* pBlob = oParameter.GetBlobnterface();
  if (pBlob == nullptr) KLV_RAISE_NUMBER(-44);
  if (!pBlob->GetBlob(pData, *pnSize)) KLV_RAISE_NUMBER(-21);
}

void ClHandleProperties::SetPropertyBlob(const char* szName, const unsigned char* pData, unsigned int nSize) {
  ClParameterBlobInterface* pBlob = FindProperty(szName).GetBlobnterface();
  if (pBlob == nullptr) KLV_RAISE_NUMBER(-44);
  pBlob->SetBlob(pData, nSize);
}

void ClHandleProperties::HandOutName(ClParameter* pParameter, char* szName, unsigned int* pnSize) {
  if (pParameter == nullptr) {
    HandOutEnd(szName, pnSize);
    return;
  }
  HandOutText(pParameter->GetPathName(), szName, pnSize);
  // Only a name that was really handed out moves the enumeration on.
  m_pEnumParameter = pParameter;
}

void ClHandleProperties::PropertyEnumerateFirst(char* szName, unsigned int* pnSize) {
  ResetProperties();
  HandOutName(QueryPropertys().GetFirstParameter(), szName, pnSize);
}

void ClHandleProperties::PropertyEnumerateNext(char* szName, unsigned int* pnSize) {
  if (m_pParameters == nullptr) KLV_RAISE(ClException, cszNotInitialized, -50);
  HandOutName(m_pParameters->GetNextParameter(m_pEnumParameter), szName, pnSize);
}

void ClHandleProperties::GetPropertyType(const char* szName, enumType_t* peType) {
  const ClParameterNumericInterface* pNumeric = FindProperty(szName).GetNumericInterface();
  if (peType == nullptr) KLV_RAISE_NUMBER(-23);
  *peType = pNumeric == nullptr ? eTypeText : pNumeric->IsInteger() ? eTypeLong : eTypeDouble;
}

void ClHandleProperties::GetPropertyAccess(const char* szName, enumAccess_t* peAccess) {
  const ClParameter& oParameter = FindProperty(szName);
  if (peAccess == nullptr) KLV_RAISE_NUMBER(-23);
  *peAccess = static_cast<enumAccess_t>(oParameter.GetAccess());
}

ClParameterNumericInterface& ClHandleProperties::FindRange(const char* szName) {
  ClParameterNumericInterface* pNumeric = FindProperty(szName).GetNumericInterface();
  if (pNumeric == nullptr || !pNumeric->HasRange()) KLV_RAISE_NUMBER(-103);
  return *pNumeric;
}

void ClHandleProperties::GetPropertyRangeLong(const char* szName, long* pnLow, long* pnHigh) {
  const ClParameterNumericInterface& oNumeric = FindRange(szName);
  if (!oNumeric.IsInteger()) KLV_RAISE_NUMBER(-44);
  if (pnLow == nullptr && pnHigh == nullptr) KLV_RAISE_NUMBER(-23);
  if (pnLow != nullptr) *pnLow = static_cast<long>(oNumeric.GetLowerBoundary());
  if (pnHigh != nullptr) *pnHigh = static_cast<long>(oNumeric.GetUpperBoundary());
}

void ClHandleProperties::GetPropertyRangeDouble(const char* szName, double* pdLow, double* pdHigh) {
  const ClParameterNumericInterface& oNumeric = FindRange(szName);
  if (!oNumeric.IsFloat()) KLV_RAISE_NUMBER(-44);
  if (pdLow == nullptr && pdHigh == nullptr) KLV_RAISE_NUMBER(-23);
  if (pdLow != nullptr) *pdLow = oNumeric.GetLowerBoundary();
  if (pdHigh != nullptr) *pdHigh = oNumeric.GetUpperBoundary();
}

void ClHandleProperties::GetPropertyValueEnumerateFirst(const char* szName, char* szValue,
                                                        unsigned int* pnSize) {
  ClParameterEnumInterface* pEnum = FindProperty(szName).GetEnumInterface();
  if (pEnum == nullptr || pEnum->GetValueNameCount() == 0) KLV_RAISE_NUMBER(-103);
  m_pEnumValues = pEnum;
  m_nEnumValue = 0;
  GetPropertyValueEnumerateNext(szValue, pnSize);
}

void ClHandleProperties::GetPropertyValueEnumerateNext(char* szValue, unsigned int* pnSize) {
  if (m_pEnumValues == nullptr) KLV_RAISE(ClException, cszNotInitialized, -50);
  if (m_nEnumValue >= m_pEnumValues->GetValueNameCount()) {
    HandOutEnd(szValue, pnSize);
    return;
  }
  std::string oName(m_pEnumValues->GetValueName(m_nEnumValue, nullptr, 0) + 1, '\0');
  m_pEnumValues->GetValueName(m_nEnumValue, oName.data(), static_cast<unsigned int>(oName.size()));
  oName.pop_back();
  HandOutText(oName, szValue, pnSize);
  ++m_nEnumValue;
}

void ClHandleProperties::GetAt(unsigned int) {
  KLV_RAISE_NUMBER(-209);
}
void ClHandleProperties::SetAt(unsigned int) {
  KLV_RAISE_NUMBER(-209);
}
void ClHandleProperties::Clear() {
  KLV_RAISE_NUMBER(-209);
}
void ClHandleProperties::Insert(unsigned int) {
  KLV_RAISE_NUMBER(-209);
}
void ClHandleProperties::Remove(unsigned int) {
  KLV_RAISE_NUMBER(-209);
}
