// Matching of names: what follows a '*' slides along the name until it fits.
#include "MXTools/WildCard.h"

namespace FileSystem {

bool ClWildCard::Match(const char* szName) const {
  const char* pPattern = m_szPattern.c_str();
  const char* pSliding = nullptr;  // the pattern after the last '*'
  const char* pStart = nullptr;    // where in the name it is being tried
  while (*szName != 0) {
    if (*pPattern == '*') {
      pSliding = ++pPattern;
      pStart = szName;
    } else if (*pPattern == *szName || (*pPattern == '?' && *szName != '.')) {
      ++pPattern;
      ++szName;
    } else if (pSliding != nullptr) {
      pPattern = pSliding;
      szName = ++pStart;
    } else {
      return false;
    }
  }
  while (*pPattern == '*') ++pPattern;
  return *pPattern == 0;
}

}  // namespace FileSystem
