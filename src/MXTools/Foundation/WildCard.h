// Patterns of file names.
#pragma once

#include <string>

namespace FileSystem {

/// '*' stands for any run of characters, '?' for any one but '.'.
///
/// Threads  reentrant.
class ClWildCard {
 public:
  explicit ClWildCard(const char* szPattern) : m_szPattern(szPattern != nullptr ? szPattern : "") {}

  bool Match(const char* szName) const;
  bool Match(const char* pBegin, const char* pEnd) const { return Match(std::string(pBegin, pEnd).c_str()); }

 private:
  std::string m_szPattern;
};

}  // namespace FileSystem
