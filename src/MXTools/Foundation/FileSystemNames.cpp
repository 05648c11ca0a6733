// File names as text: parts, extensions, absolute and relative paths.
#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>

#include "MXTools/Exception.h"
#include "MXTools/FileSystem.h"

namespace FileSystem {

namespace {

void RequireArgument(const void* pArgument) {
  if (pArgument == nullptr) KLV_RAISE_NUMBER(-23);
}

void Put(const std::string& szText, char* szOut, unsigned int nSize) {
  if (szText.size() >= nSize) KLV_RAISE_NUMBER(-21);
  std::memcpy(szOut, szText.c_str(), szText.size() + 1);
}

void AppendSeparator(std::string& rszPath) {
  if (!rszPath.empty() && !IsSeparator(rszPath.back())) rszPath += '/';
}

bool IsAbsolute(const std::string& szPath) {
  return !szPath.empty() && IsSeparator(szPath[0]);
}

void CheckRoot(const std::string& szRoot) {
  if (!IsAbsolute(szRoot)) KLV_RAISE(ClException, "szRootPath is not a absolute path", -101);
  if (!IsSeparator(szRoot.back())) KLV_RAISE(ClException, "szRootPath is not end with a dir separator", -101);
}

/// Takes the last directory off a path that ends in a separator; the root itself has none.
void DropDirectory(std::string& rszPath) {
  if (rszPath.size() <= 1) return;
  size_t nEnd = rszPath.size() - 1;
  while (nEnd > 0 && !IsSeparator(rszPath[nEnd - 1])) --nEnd;
  rszPath.resize(std::max<size_t>(nEnd, 1));
}

bool SameLetter(char cLeft, char cRight) {
  return cLeft == cRight || (IsSeparator(cLeft) && IsSeparator(cRight));
}

}  // namespace

char* GetFileName(char* szFull) {
  RequireArgument(szFull);
  char* szName = szFull;
  for (char* pLetter = szFull; *pLetter != 0; ++pLetter)
    if (IsSeparator(*pLetter)) szName = pLetter + 1;
  return szName;
}

// The form above does not write to the text.
const char* GetFileName(const char* szFull) {
  return GetFileName(const_cast<char*>(szFull));
}

void GetPathAndName(const char* szFull, char* szPath, unsigned int nPathSize, char* szName,
                    unsigned int nNameSize) {
  const char* szFile = GetFileName(szFull);
  if (szPath != nullptr) Put(std::string(szFull, szFile), szPath, nPathSize);
  if (szName != nullptr) Put(szFile, szName, nNameSize);
}

void GetPath(const char* szFull, char* szPath, unsigned int nSize) {
  GetPathAndName(szFull, szPath, nSize, nullptr, 0);
}

void GetFileName(const char* szFull, char* szName, unsigned int nSize) {
  GetPathAndName(szFull, nullptr, 0, szName, nSize);
}

void GetFileNameWithoutExt(const char* szFull, char* szName, unsigned int nSize) {
  if (szName == nullptr) KLV_RAISE_NUMBER(-21);
  const std::string szFile = GetFileName(szFull);
  Put(szFile.substr(0, szFile.rfind('.')), szName, nSize);
}

void ChangeExtension(const char* szExt, char* szName, unsigned int nSize) {
  RequireArgument(szExt);
  RequireArgument(szName);
  if (szName[0] == 0) KLV_RAISE(ClException, "the szFileName is empty", -101);
  const std::string szFile = GetFileName(szName);
  if (szFile.empty()) KLV_RAISE(ClException, "the szFileName has only path information", -101);
  std::string szFull = szName;
  const size_t nDot = szFile.rfind('.');
  if (nDot != std::string::npos) szFull.resize(szFull.size() - szFile.size() + nDot);
  if (szExt[0] != '.') szFull += '.';
  Put(szFull + szExt, szName, nSize);
}

void AddPath(char* szPath, unsigned int nSize, const char* szAppend) {
  if (szPath == nullptr) KLV_RAISE(ClException, "szPath is NULL.", -23);
  if (szAppend == nullptr) KLV_RAISE(ClException, "szAppend is NULL.", -23);
  std::string szFull = szPath;
  AppendSeparator(szFull);
  szFull += szAppend;
  AppendSeparator(szFull);
  Put(szFull, szPath, nSize);
}

void MakeAbsolutePath(const char* szRoot, const char* szRelative, char* szOut, unsigned int nSize) {
  RequireArgument(szRoot);
  RequireArgument(szRelative);
  RequireArgument(szOut);
  std::string szFull = szRoot;
  CheckRoot(szFull);
  if (IsAbsolute(szRelative)) {
    Put(szRelative, szOut, nSize);
    return;
  }
  for (;;) {
    if (szRelative[0] == '.' && IsSeparator(szRelative[1])) {
      szRelative += 2;
    } else if (szRelative[0] == '.' && szRelative[1] == '.' && IsSeparator(szRelative[2])) {
      szRelative += 3;
      DropDirectory(szFull);
    } else {
      break;
    }
  }
  Put(szFull + szRelative, szOut, nSize);
}

void MakeRelativePath(const char* szRoot, const char* szAbsolute, char* szOut, unsigned int nSize) {
  RequireArgument(szRoot);
  RequireArgument(szAbsolute);
  RequireArgument(szOut);
  CheckRoot(szRoot);
  if (!IsAbsolute(szAbsolute)) {
    Put(szAbsolute, szOut, nSize);
    return;
  }
  // What both begin with counts up to its last separator, so that "/ab/" and "/ac/" share "/" only.
  size_t nCommon = 0;
  for (size_t n = 0; szRoot[n] != 0 && SameLetter(szRoot[n], szAbsolute[n]); ++n)
    if (IsSeparator(szRoot[n])) nCommon = n + 1;
  std::string szRelative;
  for (const char* pLetter = szRoot + nCommon; *pLetter != 0; ++pLetter)
    if (IsSeparator(*pLetter)) szRelative += "../";
  Put(szRelative + (szAbsolute + nCommon), szOut, nSize);
}

void GetTempFileDir(char* szBuffer, unsigned int nSize) {
  const char* szHome = secure_getenv("HOME");
  if (szHome == nullptr) {
    errno = ENOENT;
    throw ClExSystem("GetTempFileDir", __FILE__, __LINE__);
  }
  std::string szDirectory = szHome;
  AppendSeparator(szDirectory);
  Put(szDirectory, szBuffer, nSize);
}

}  // namespace FileSystem
