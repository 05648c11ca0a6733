// Searching, walking and copying of parameter trees.
#include "MXTools/ParameterContainer.h"

#include <strings.h>

#include <cstring>

void ClParameterContainer::AddParameter(const char* szName, ClParameter* pParameter) {
  if (FindLocal(szName) != nullptr) KLV_RAISE_NUMBER(-46);
  pParameter->SetName(szName);
  m_aParameters.Add(pParameter);
  pParameter->m_pContainer = this;
}

ClParameterContainer* ClParameterContainer::AddContainer(const char* szName) {
  return Adopt(szName, std::make_unique<ClParameterContainer>());
}

ClParameter* ClParameterContainer::FindLocal(const char* szName) const {
  if (szName == nullptr) return nullptr;
  for (unsigned int n = 0; n < m_aParameters.Entries(); ++n) {
    const char* szChild = m_aParameters[n]->GetName();
    if (szChild != nullptr && strcasecmp(szChild, szName) == 0) return m_aParameters[n];
  }
  return nullptr;
}

ClParameter* ClParameterContainer::Find(const char* szPath) {
  if (szPath == nullptr) return nullptr;
  constexpr unsigned int cnPartSize = 255;
  char szPart[cnPartSize];
  ClParameterContainer* pContainer = this;
  // A loop, since the path is the application's and may be of any length.
  for (;;) {
    if (std::strcmp(szPath, ".") == 0) return pContainer->GetRoot();
    if (*szPath == '.') {
      pContainer = pContainer->GetRoot();
      ++szPath;
      continue;
    }
    const char* szRest = CopyNamePathPart(szPath, szPart, cnPartSize);
    const bool bRoot = pContainer->m_pContainer == nullptr;
    if (bRoot && pContainer->m_szName != nullptr && std::strcmp(pContainer->m_szName, szPart) == 0) {
      szRest = CopyNamePathPart(*szRest == '.' ? szRest + 1 : szRest, szPart, cnPartSize);
    }
    ClParameter* pFound = pContainer->FindLocal(szPart);
    if (*szRest != '.' || pFound == nullptr || !pFound->IsContainer()) return pFound;
    pContainer = pFound->GetContainerInterface();
    szPath = szRest + 1;
  }
}

const char* ClParameterContainer::CopyNamePathPart(const char* szPath, char* szPart, unsigned int nSize) {
  const size_t nLength = std::strcspn(szPath, ".");
  if (nLength >= nSize) KLV_RAISE(ClException, "Parameter path part was to long max len is 255", -101);
  std::memcpy(szPart, szPath, nLength);
  szPart[nLength] = '\0';
  return szPath + nLength;
}

unsigned int ClParameterContainer::IndexOf(const ClParameter* pChild) const {
  unsigned int n = 0;
  while (n < m_aParameters.Entries() && m_aParameters[n] != pChild) ++n;
  return n;
}

ClParameter* ClParameterContainer::GetNextParameter(unsigned int nIndex) {
  for (unsigned int n = nIndex; n < m_aParameters.Entries(); ++n) {
    ClParameter* pChild = m_aParameters[n];
    if (!pChild->IsContainer()) return pChild;
    if (ClParameter* pLeaf = pChild->GetContainerInterface()->GetFirstParameter()) return pLeaf;
  }
  return nullptr;
}

ClParameter* ClParameterContainer::GetNextParameter(ClParameter* pCurrent) {
  if (pCurrent == nullptr) return GetFirstParameter();
  ClParameterContainer* pParent = pCurrent->m_pContainer;
  if (pParent == nullptr) KLV_RAISE(ClException, "pParent is not set", -701);
  if (pParent != this) return pParent->GetNextParameter(pCurrent);
  if (ClParameter* pNext = GetNextParameter(IndexOf(pCurrent) + 1)) return pNext;
  return m_pContainer != nullptr ? m_pContainer->GetNextParameter(this) : nullptr;
}

void ClParameterContainer::Clear() {
  for (unsigned int n = m_aParameters.Entries(); n-- > 0;) delete m_aParameters[n];
  m_aParameters.New(0);
}

void ClParameterContainer::CloneDataTo(ClParameterBase* pDestination) {
  ClParameterContainer* pContainer =
      pDestination != nullptr ? pDestination->GetContainerInterface() : nullptr;
  if (pContainer == nullptr) KlvRaiseBadCast();
  if (pContainer == this) return;
  pContainer->Clear();
  for (unsigned int n = 0; n < m_aParameters.Entries(); ++n) {
    std::unique_ptr<ClParameterBase> pClone(m_aParameters[n]->Clone());
    ClParameter* pParameter = pClone->GetParameterInterface();
    if (pContainer->FindLocal(pParameter->GetName()) != nullptr) KLV_RAISE_NUMBER(-46);
    pContainer->m_aParameters.Add(pParameter);
    pParameter->m_pContainer = pContainer;
    (void)pClone.release();  // the list owns it now
  }
}

ClParameterBase* ClParameterContainer::Clone() {
  auto pClone = std::make_unique<ClParameterContainer>(m_szName);
  CopyTo(pClone.get());
  return pClone.release();
}

void ClParameterContainer::CopyTo(ClParameterBase* pOther) {
  if (pOther == this) return;
  if (pOther != nullptr) pOther->SetName(m_szName);
  CloneDataTo(pOther);
}

template <typename TOperation>
void ClParameterContainer::WithEachOf(ClParameterBase* pOther, TOperation&& oOperation) {
  ClParameterContainer* pContainer = pOther != nullptr ? pOther->GetContainerInterface() : nullptr;
  if (pContainer == nullptr || pContainer->Entries() < Entries()) KlvRaiseBadCast();
  for (unsigned int n = 0; n < Entries(); ++n) oOperation(*m_aParameters[n], pContainer->m_aParameters[n]);
}

void ClParameterContainer::CopyDefaultFrom(ClParameterBase* pOther) {
  WithEachOf(pOther, [](ClParameter& oChild, ClParameter* pTheirs) { oChild.CopyDefaultFrom(pTheirs); });
}

void ClParameterContainer::CopyDefaultFromValue(ClParameterBase* pOther) {
  WithEachOf(pOther, [](ClParameter& oChild, ClParameter* pTheirs) { oChild.CopyDefaultFromValue(pTheirs); });
}

void ClParameterContainer::CopyValuesFrom(ClParameterBase* pOther, bool bForce) {
  WithEachOf(pOther,
             [bForce](ClParameter& oChild, ClParameter* pTheirs) { oChild.CopyValuesFrom(pTheirs, bForce); });
}

void ClParameterContainer::SetToDefault() {
  for (unsigned int n = 0; n < Entries(); ++n) m_aParameters[n]->SetToDefault();
}

void ClParameterContainer::SetToDefaultFrom(ClParameterBase* pOther) {
  WithEachOf(pOther, [](ClParameter& oChild, ClParameter* pTheirs) { oChild.SetToDefaultFrom(pTheirs); });
}

void ClParameterContainer::SwapDefaultAndValue() {
  for (unsigned int n = 0; n < Entries(); ++n) m_aParameters[n]->SwapDefaultAndValue();
}

bool ClParameterContainer::IsDefault() const {
  for (unsigned int n = 0; n < Entries(); ++n) {
    if (!m_aParameters[n]->IsDefault()) return false;
  }
  return true;
}

void ClParameterContainer::SetValue(const char* /*psz*/) {}

bool ClParameterContainer::GetValue(char* psz, unsigned int& rnSize) {
  if (psz != nullptr && rnSize >= 2) psz[0] = '\0';
  rnSize = 1;
  return true;
}
