// Loading, symbols and paths through the dynamic linker.
#include "MXTools/DynamicLibrary.h"

#include <dlfcn.h>
#include <link.h>

#include <cstring>
#include <utility>

#include "MXTools/Exception.h"

namespace {

/// An address that lies in this library.
char cAnchor;

[[noreturn]] void RaiseLoadFail(const char* szText, long nNumber) {
  throw ClExDynamicLibraryLoadFail(szText, nNumber, __FILE__, __LINE__);
}

}  // namespace

ClDynamicLibrary::~ClDynamicLibrary() {
  if (m_hModule != nullptr) dlclose(m_hModule);
}

void ClDynamicLibrary::Open(const char* szPath) {
  Close();
  // To the linker no path means the program itself.
  void* hModule = szPath == nullptr ? nullptr : dlopen(szPath, RTLD_LAZY);
  if (hModule == nullptr) RaiseLoadFail(szPath, -200);
  m_hModule = hModule;
  m_szPath = szPath;
}

void ClDynamicLibrary::Close() {
  if (m_hModule == nullptr) return;
  void* hModule = m_hModule;
  // The path is moved, since a copy could fail: a library is closed even when memory has run out.
  const std::string szPath = std::move(m_szPath);
  m_hModule = nullptr;
  m_szPath.clear();
  if (dlclose(hModule) != 0) RaiseLoadFail(szPath.c_str(), -204);
}

void* ClDynamicLibrary::FindSymbol(const char* szName) const {
  return m_hModule == nullptr ? nullptr : dlsym(m_hModule, szName);
}

void* ClDynamicLibrary::RequireSymbol(const char* szName) const {
  void* pSymbol = FindSymbol(szName);
  if (pSymbol == nullptr) RaiseLoadFail(szName, -206);
  return pSymbol;
}

// A handle is no address within its module; the module's dynamic section is one.
void ClDynamicLibrary::GetPathName(char* szPath, unsigned int nSize) const {
  void* pAddress = nullptr;
  if (m_hModule != nullptr) {
    link_map* pMap = nullptr;
    if (dlinfo(m_hModule, RTLD_DI_LINKMAP, &pMap) != 0) RaiseLoadFail("GetPathName", -204);
    pAddress = pMap->l_ld;
  }
  GetPathNameModule(pAddress, szPath, nSize);
}

void ClDynamicLibrary::GetPathNameModule(void* pAddress, char* szPath, unsigned int nSize) {
  Dl_info oInfo;
  if (dladdr(pAddress == nullptr ? &cAnchor : pAddress, &oInfo) == 0 || oInfo.dli_fname == nullptr)
    RaiseLoadFail("GetPathNameModule", -204);
  const size_t nLength = std::strlen(oInfo.dli_fname);
  if (nLength >= nSize) KLV_RAISE_NUMBER(-21);
  std::memcpy(szPath, oInfo.dli_fname, nLength + 1);
}
