// Directory entries through readdir.
#include "MXTools/FindFile.h"

#include <algorithm>
#include <cstring>

#include "MXTools/Exception.h"
#include "MXTools/FileSystem.h"

namespace FileSystem {

namespace {

constexpr unsigned int cnMaxDirectory = 1024;

}  // namespace

void ClFindFile::ReplaceBackSlashes(char* szText) {
  std::replace(szText, szText + std::strlen(szText), '\\', '/');
}

bool ClFindFile::First(const char* szPattern) {
  Close();
  char szDirectory[cnMaxDirectory];
  GetPath(szPattern, szDirectory, sizeof(szDirectory));
  if (szDirectory[0] == 0)
    KLV_RAISE(ClException, "ClFindFile::First: the szFileName must include a path!", -44);
  ReplaceBackSlashes(szDirectory);
  m_szDirectory = szDirectory;
  const char* szFile = GetFileName(szPattern);
  const bool bAll = szFile[0] == 0 || std::strcmp(szFile, "*") == 0;
  m_pWildCard.reset(bAll ? nullptr : new ClWildCard(szFile));
  m_pDirectory = opendir(szDirectory);
  return Next();
}

bool ClFindFile::Next() {
  m_bEntry = false;
  while (m_pDirectory != nullptr && !m_bEntry) {
    const dirent* pEntry = readdir(m_pDirectory);
    if (pEntry == nullptr) break;
    m_bEntry = m_pWildCard == nullptr || m_pWildCard->Match(pEntry->d_name);
    m_nType = pEntry->d_type;
    m_szName = pEntry->d_name;
  }
  if (!m_bEntry) m_szName.clear();
  return m_bEntry;
}

void ClFindFile::Close() {
  if (m_pDirectory != nullptr) closedir(m_pDirectory);
  m_pDirectory = nullptr;
  m_bEntry = false;
  m_szName.clear();
}

bool ClFindFile::IsDirectory() const {
  if (!m_bEntry) return false;
  DIR* pDirectory = opendir((m_szDirectory + m_szName).c_str());
  if (pDirectory == nullptr) return false;
  closedir(pDirectory);
  return true;
}

bool ClFindFile::IsSubDirectory() const {
  return m_szName != "." && m_szName != ".." && IsDirectory();
}

}  // namespace FileSystem
