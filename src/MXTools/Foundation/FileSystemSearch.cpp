// The search of a file along lists of directories.
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <string>

#include "MXTools/Exception.h"
#include "MXTools/FileSystem.h"

namespace {

// The comparison is unsigned, so that letters beyond ASCII don't count as white space.
bool IsBelow(char cLetter, unsigned char nLimit) {
  return static_cast<unsigned char>(cLetter) < nLimit;
}

template <typename T>
unsigned int Normalize(const T* szIn, size_t nLength, T* szOut, unsigned int nSize) {
  if (nLength >= nSize || szOut == nullptr) return static_cast<unsigned int>(nLength + 1);
  if (szIn != szOut) std::copy(szIn, szIn + nLength + 1, szOut);
  std::replace(szOut, szOut + nLength, static_cast<T>('\\'), static_cast<T>('/'));
  if (nLength >= 2 && szOut[0] == '/' && szOut[1] == '/') std::copy(szOut + 1, szOut + nLength + 1, szOut);
  return 0;
}

std::string Join(const char* szDirectory, const std::string& szName) {
  std::string szFull;
  if (std::strcmp(szDirectory, ".") == 0) {
    char szCurrent[FileSystem::cnMaxPath];
    FileSystem::GetCurrentWorkingDirectory(szCurrent, sizeof(szCurrent));
    szFull = szCurrent;
  } else {
    szFull = szDirectory;
  }
  if (!szFull.empty() && !FileSystem::IsSeparator(szFull.back())) szFull += '/';
  return szFull + szName;
}

unsigned int SearchVariable(const char* szVariable, const char* szName, const char* szExt, unsigned int nSize,
                            char* szOut, char** pszNamePart) {
  const char* szValue = secure_getenv(szVariable);
  if (szValue == nullptr) return 0;
  std::string szPath = szValue;
  std::replace(szPath.begin(), szPath.end(), ':', ';');
  return FileSystem::SearchPath(szPath.c_str(), szName, szExt, nSize, szOut, pszNamePart);
}

}  // namespace

unsigned int GetNextPath(const char** pszCursor, char* szOut, unsigned int nSize) {
  if (pszCursor == nullptr || *pszCursor == nullptr) return 0;
  const char* szBegin = *pszCursor;
  while (*szBegin != 0 && (IsBelow(*szBegin, 33) || *szBegin == ';')) ++szBegin;
  const char* szEnd = szBegin;
  while (!IsBelow(*szEnd, 32) && *szEnd != ';') ++szEnd;
  const unsigned int nLength = static_cast<unsigned int>(szEnd - szBegin);
  if (nLength == 0 || szOut == nullptr || nLength >= nSize) return nLength;
  std::copy(szBegin, szEnd, szOut);
  szOut[nLength] = 0;
  *pszCursor = szEnd;
  return nLength;
}

unsigned int SearchDefaultPath(const char* szName, const char* szExt, unsigned int nSize, char* szOut,
                               char** pszNamePart) {
  unsigned int nLength = FileSystem::SearchPath(".", szName, szExt, nSize, szOut, pszNamePart);
  if (nLength == 0) nLength = SearchVariable("PATH", szName, szExt, nSize, szOut, pszNamePart);
  if (nLength == 0) nLength = SearchVariable("LD_LIBRARY_PATH", szName, szExt, nSize, szOut, pszNamePart);
  return nLength;
}

namespace FileSystem {

void GetCurrentWorkingDirectory(char* szBuffer, unsigned int nSize) {
  if (getcwd(szBuffer, nSize) == nullptr) throw ClExSystem("GetCurrentWorkingDirectory", __FILE__, __LINE__);
}

unsigned int NormalizeFilename(const char* szIn, char* szOut, unsigned int nSize) {
  if (szIn == nullptr) KLV_RAISE_NUMBER(-37);
  return Normalize(szIn, std::strlen(szIn), szOut, nSize);
}

unsigned int NormalizeFilename(const wchar_t* wszIn, wchar_t* wszOut, unsigned int nSize) {
  if (wszIn == nullptr) KLV_RAISE_NUMBER(-37);
  return Normalize(wszIn, std::wcslen(wszIn), wszOut, nSize);
}

bool IsFileExistent(const char* szName) {
  FILE* pFile = szName == nullptr ? nullptr : std::fopen(szName, "rb");
  if (pFile == nullptr) return false;
  std::fclose(pFile);
  return true;
}

unsigned int SearchPath(const char* szPath, const char* szName, const char* szExt, unsigned int nSize,
                        char* szOut, char** pszNamePart) {
  if (szName == nullptr) return 0;
  if (szPath == nullptr) return SearchDefaultPath(szName, szExt, nSize, szOut, pszNamePart);
  std::string szFile = szName;
  if (szExt != nullptr && szFile.find('.') == std::string::npos) {
    if (szExt[0] != '.') return 0;
    szFile += szExt;
  }
  // The buffer is as long as the whole list, so that every entry fits.
  std::string szEntry(std::strlen(szPath) + 1, '\0');
  while (GetNextPath(&szPath, &szEntry[0], static_cast<unsigned int>(szEntry.size())) != 0) {
    const std::string szFull = Join(szEntry.c_str(), szFile);
    if (szFull.size() >= cnMaxPath || !IsFileExistent(szFull.c_str())) continue;
    const unsigned int nLength = static_cast<unsigned int>(szFull.size());
    if (nLength < nSize && szOut != nullptr) {
      std::memcpy(szOut, szFull.c_str(), szFull.size() + 1);
      const size_t nSeparator = szFull.find_last_of("/\\");
      if (pszNamePart != nullptr)
        *pszNamePart = szOut + (nSeparator == std::string::npos ? 0 : nSeparator + 1);
    }
    return nLength;
  }
  return 0;
}

}  // namespace FileSystem
