// Down-casts, path names and text copies of parameter nodes.
#include "MXTools/ParameterBase.h"

#include <cstring>
#include <new>
#include <vector>

#include "MXTools/Exception.h"
#include "MXTools/Parameter.h"
#include "MXTools/ParameterBlobInterface.h"
#include "MXTools/ParameterContainer.h"
#include "MXTools/ParameterEnumInterface.h"
#include "MXTools/ParameterNumericInterface.h"

void KlvRaiseBadCast() {
  KLV_RAISE(ClException, "pCast is not set", -701);
}

ClParameterContainer* ClParameterBase::GetContainerInterface() {
  return dynamic_cast<ClParameterContainer*>(this);
}

ClParameter* ClParameterBase::GetParameterInterface() {
  return dynamic_cast<ClParameter*>(this);
}

ClParameterNumericInterface* ClParameterBase::GetNumericInterface() {
  return dynamic_cast<ClParameterNumericInterface*>(this);
}

ClParameterEnumInterface* ClParameterBase::GetEnumInterface() {
  return dynamic_cast<ClParameterEnumInterface*>(this);
}

ClParameterBlobInterface* ClParameterBase::GetBlobnterface() {
  return dynamic_cast<ClParameterBlobInterface*>(this);
}

ClParameterContainer* ClParameterBase::GetRoot() {
  ClParameterBase* pNode = this;
  while (pNode->m_pContainer != nullptr) pNode = pNode->m_pContainer;
  return pNode->GetContainerInterface();
}

bool ClParameterBase::GetPathName(char* psz, unsigned int& rnSize) const {
  size_t nNeeded = 0;
  std::vector<const char*> aNames;
  bool bEnded = false;
  for (const ClParameterBase* pNode = this; pNode != nullptr; pNode = pNode->m_pContainer) {
    const char* szName = pNode->GetName();
    if (szName == nullptr && pNode == this) szName = "";
    bEnded = bEnded || szName == nullptr;
    if (szName == nullptr) continue;
    nNeeded += std::strlen(szName) + 1;
    if (!bEnded) aNames.push_back(szName);
  }
  const bool bRoom = rnSize >= nNeeded;
  rnSize = static_cast<unsigned int>(nNeeded);
  if (!bRoom || psz == nullptr) return bRoom;
  for (size_t n = aNames.size(); n-- > 0;) {
    const size_t nLength = std::strlen(aNames[n]);
    std::memcpy(psz, aNames[n], nLength);
    psz += nLength;
    *psz++ = n > 0 ? '.' : '\0';
  }
  return true;
}

std::string ClParameterBase::GetPathName() const {
  std::string szPath(256, '\0');
  unsigned int nSize = static_cast<unsigned int>(szPath.size());
  if (!GetPathName(szPath.data(), nSize)) {
    szPath.resize(nSize);
    GetPathName(szPath.data(), nSize);
  }
  return szPath.c_str();
}

void ClParameterBase::SetString(char** ppsz, const char* psz) {
  char* szCopy = nullptr;
  if (psz != nullptr) {
    const size_t nSize = std::strlen(psz) + 1;
    szCopy = new (std::nothrow) char[nSize];
    if (szCopy == nullptr) KlvRaiseBadAlloc();
    std::memcpy(szCopy, psz, nSize);
  }
  delete[] * ppsz;
  *ppsz = szCopy;
}
