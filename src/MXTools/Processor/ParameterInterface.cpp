// The list of parameter entries.
#include "MXTools/ParameterInterface.h"

#include <strings.h>

#include <algorithm>

#include "MXTools/Exception.h"
#include "MXTools/Stream.h"

namespace {

constexpr char cszBoolNames[] = "False\0True\0";

}  // namespace

void ClParameterInterface::Clear() {
  // Entries are deleted one by one: destructors that delete the next entry would nest as deep as the list is
  // long.
  while (m_pFirst != nullptr) m_pFirst = std::move(m_pFirst->m_pNext);
  m_pLast = nullptr;
  m_pActEntry = nullptr;
  m_nCount = 0;
}

ClParameterInterface::ClParameter* ClParameterInterface::Append(void* pMember, size_t nValueSize,
                                                                const char* szName, const char* szDescription,
                                                                EDirection eDirection, EType eType) {
  auto pEntry = std::make_unique<ClParameter>();
  pEntry->m_pValue = pMember;
  pEntry->m_nValueSize = static_cast<unsigned int>(nValueSize);
  pEntry->m_eDirection = eDirection;
  pEntry->m_eType = eType;
  pEntry->SetName(szName);
  pEntry->SetDescription(szDescription);
  std::unique_ptr<ClParameter>& rEnd = m_pLast != nullptr ? m_pLast->m_pNext : m_pFirst;
  rEnd = std::move(pEntry);
  m_pLast = rEnd.get();
  ++m_nCount;
  return m_pLast;
}

void ClParameterInterface::ProcessRanges(double dValue, double& rdMinimum, double& rdMaximum) {
  if (rdMinimum != 1.0 || rdMaximum != -1.0) return;
  const double dTwoThirds = 2 * dValue / 3;
  const double dFourThirds = 4 * dValue / 3;
  rdMinimum = std::min(dTwoThirds, dFourThirds);
  rdMaximum = std::max(dTwoThirds, dFourThirds);
}

void ClParameterInterface::SetNumericRange(ClParameter* pEntry, double dMinimum, double dMaximum,
                                           double dLowest, double dHighest) {
  pEntry->m_dDefault = pEntry->GetValue();
  ProcessRanges(pEntry->m_dDefault, dMinimum, dMaximum);
  pEntry->SetRange(std::clamp(dMinimum, dLowest, dHighest), std::clamp(dMaximum, dLowest, dHighest));
}

ClParameterInterface::ClParameter* ClParameterInterface::AddParameter(void** pMember, const char* szName,
                                                                      const char* szDescription,
                                                                      EDirection eDirection, EType eType,
                                                                      bool bFixedRange) {
  const size_t nSize = eType == eBool ? sizeof(bool) : eType == eLong ? sizeof(long) : sizeof(int);
  ClParameter* pEntry = Append(pMember, nSize, szName, szDescription, eDirection, eType);
  pEntry->m_bFixedRange = bFixedRange;
  return pEntry;
}

ClParameterInterface::ClParameter* ClParameterInterface::AddParameter(ClImage** pMember, const char* szName,
                                                                      const char* szDescription,
                                                                      EDirection eDirection, double dMinimum,
                                                                      double dMaximum) {
  ClParameter* pEntry = Append(pMember, sizeof(void*), szName, szDescription, eDirection, eImage);
  pEntry->SetRange(dMinimum, dMaximum);
  return pEntry;
}

ClParameterInterface::ClParameter* ClParameterInterface::AddParameter(ClGraph** pMember, const char* szName,
                                                                      const char* szDescription,
                                                                      EDirection eDirection, double dMinimum,
                                                                      double dMaximum) {
  ClParameter* pEntry = Append(pMember, sizeof(void*), szName, szDescription, eDirection, eGraph);
  pEntry->SetRange(dMinimum, dMaximum);
  return pEntry;
}

ClParameterInterface::ClParameter* ClParameterInterface::AddParameterString(char* szBuffer, long nSize,
                                                                            const char* szName,
                                                                            const char* szDescription,
                                                                            EDirection eDirection) {
  ClParameter* pEntry =
      Append(szBuffer, static_cast<size_t>(std::max(nSize, 0L)), szName, szDescription, eDirection, eString);
  pEntry->SetRange(0, static_cast<double>(nSize));
  return pEntry;
}

ClParameterInterface::ClParameter* ClParameterInterface::AddBool(bool* pMember, const char* szName,
                                                                 const char* szDescription,
                                                                 EDirection eDirection) {
  ClParameter* pEntry = Append(pMember, sizeof(bool), szName, szDescription, eDirection, eBool);
  pEntry->SetEnumList(cszBoolNames, nullptr);
  pEntry->m_dDefault = pEntry->GetValue();
  return pEntry;
}

ClParameterInterface::ClParameter* ClParameterInterface::AddEnum(void* pMember, const char* szName,
                                                                 const char* szDescription,
                                                                 const char* szEnumList,
                                                                 EDirection eDirection) {
  ClParameter* pEntry = Append(pMember, sizeof(int), szName, szDescription, eDirection, eEnum);
  pEntry->SetEnumList(szEnumList, nullptr);
  pEntry->m_dDefault = pEntry->GetValue();
  return pEntry;
}

ClParameterInterface::ClParameter* ClParameterInterface::AddComment(const char* szText) {
  return Append(nullptr, 0, szText, nullptr, eOut, eComment);
}

ClParameterInterface::ClParameter* ClParameterInterface::FirstParam() {
  m_pActEntry = m_pFirst.get();
  return m_pActEntry;
}

ClParameterInterface::ClParameter* ClParameterInterface::NextParam() {
  if (m_pActEntry == nullptr) KLV_RAISE(ClException, "m_pActEntry is not set", -50);
  m_pActEntry = m_pActEntry->m_pNext.get();
  return m_pActEntry;
}

ClParameterInterface::ClParameter* ClParameterInterface::GetParam(long nIndex) const {
  if (nIndex < 0) return nullptr;
  ClParameter* pEntry = m_pFirst.get();
  for (; pEntry != nullptr && nIndex > 0; --nIndex) pEntry = pEntry->m_pNext.get();
  return pEntry;
}

ClParameterInterface::ClParameter* ClParameterInterface::GetParam(const char* szName) const {
  ClParameter* pEntry = m_pFirst.get();
  while (pEntry != nullptr && strcasecmp(pEntry->GetName(), szName) != 0) pEntry = pEntry->m_pNext.get();
  return pEntry;
}

void ClParameterInterface::WriteToStream(ClStream& oStream) const {
  for (const ClParameter* pEntry = m_pFirst.get(); pEntry != nullptr; pEntry = pEntry->m_pNext.get())
    pEntry->WriteToStream(oStream);
}

void ClParameterInterface::ReadFromStream(ClStream& oStream) {
  for (ClParameter* pEntry = m_pFirst.get(); pEntry != nullptr; pEntry = pEntry->m_pNext.get()) {
    const long nResult = pEntry->ReadFromStream(oStream);
    if (nResult != 0) KLV_RAISE_NUMBER(nResult);
  }
}
