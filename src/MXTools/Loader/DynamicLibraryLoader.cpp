// The search of run-time libraries.
#include "MXTools/DynamicLibraryLoader.h"

#include <boost/thread/lock_guard.hpp>
#include <cerrno>
#include <cstring>

#include "MXTools/Exception.h"

namespace {

using FileSystem::IsSeparator;

bool IsAbsolute(const char* szName) {
  if (IsSeparator(szName[0])) return true;
  if (szName[0] == 0) return false;
  return szName[1] == ':' || (szName[0] == '~' && IsSeparator(szName[1]));
}

}  // namespace

void ClDynamicLibraryLoader::Open(const char* szName) {
  const boost::lock_guard<boost::mutex> oLock(m_oMutex);
  ClDynamicLibrary::Open(szName);
}

void ClDynamicLibraryLoader::Open(const char* szSearchPath, const char* szName) {
  const boost::lock_guard<boost::mutex> oLock(m_oMutex);
  char* szFilePart = nullptr;
  unsigned int nLength = 0;
  if (szSearchPath != nullptr)
    nLength =
        FileSystem::SearchPath(szSearchPath, szName, nullptr, FileSystem::cnMaxPath, m_szFound, &szFilePart);
  const bool bFound = nLength != 0 && nLength < FileSystem::cnMaxPath;
  ClDynamicLibrary::Open(bFound ? m_szFound : szName);
}

void ClDynamicLibraryLoader::Close() {
  const boost::lock_guard<boost::mutex> oLock(m_oMutex);
  ClDynamicLibrary::Close();
}

void ClDynamicLibraryLoader::FindAbsoluteLibraryPath(const char* szSearchPath, const char* szName,
                                                     char* szResult, unsigned int nSize) {
  if (IsAbsolute(szName)) {
    if (std::strlen(szName) >= nSize) KLV_RAISE_NUMBER(-21);
    std::strncpy(szResult, szName, nSize);
    return;
  }
  if (std::strpbrk(szName, "/\\") != nullptr) {
    KLV_RAISE(ClException,
              "ClDynamicLibraryLoader::FindAbsoluteLibraryPath(): Warning: Relative Paths not tested, yet.",
              -101);
  }
  errno = ENOENT;
  const unsigned int nLength =
      FileSystem::SearchPath(szSearchPath, szName, nullptr, nSize, szResult, nullptr);
  if (nLength == 0) throw ClExFilesystem(szName, -200, __FILE__, __LINE__);
  if (nLength >= nSize) KLV_RAISE_NUMBER(-21);
}
