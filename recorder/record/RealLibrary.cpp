// The search goes through folders and opens by path: by its name the dynamic linker would give the recorder
// itself.
#include "record/RealLibrary.h"

#include <dlfcn.h>
#include <sys/stat.h>

#include <cstdlib>
#include <sstream>
#include <vector>

namespace Recording {
namespace {

/// In the order in which the SDK searches: its own search path, the dynamic linker's, the folder of the SDK's
/// library, of which the recorder's is a part, and the system's.
std::vector<std::string> SearchedFolders(const std::string& sName) {
  const bool bLiveness = sName == cszLivenessLibrary;
  const std::string sPlace = bLiveness ? "KelvarinFakeFingerDetectionVT40" : "KelvarinVTScanAPI";
  std::vector<std::string> aFolders = {"../" + sPlace, "../../" + sPlace, "."};
  const char* szPath = std::getenv("LD_LIBRARY_PATH");
  std::istringstream oPath(szPath != nullptr ? szPath : "");
  for (std::string sFolder; std::getline(oPath, sFolder, ':');)
    aFolders.push_back(sFolder.empty() ? "." : sFolder);
  aFolders.push_back(OwnFolder() + "../..");
#if defined(__x86_64__)
  aFolders.insert(aFolders.end(), {"/usr/local/lib/x86_64-linux-gnu", "/usr/lib/x86_64-linux-gnu"});
#elif defined(__i386__)
  aFolders.insert(aFolders.end(), {"/usr/local/lib/i386-linux-gnu", "/usr/lib/i386-linux-gnu"});
#endif
  aFolders.insert(aFolders.end(), {"/usr/local/lib", "/usr/lib"});
  return aFolders;
}

bool IsThere(const std::string& sPath) {
  struct stat oStat {};
  return stat(sPath.c_str(), &oStat) == 0;
}

/// A recorder or a player, of whatever version.
bool IsStandIn(void* pLibrary) {
  return dlsym(pLibrary, "VTRecLastError") != nullptr || dlsym(pLibrary, "VTPlayLastError") != nullptr;
}

void* Open(const std::string& sPath, std::string& sReason) {
  void* pLibrary = dlopen(sPath.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (pLibrary == nullptr) {
    const char* szReason = dlerror();
    sReason = szReason != nullptr ? szReason : sPath + " cannot be loaded";
    return nullptr;
  }
  if (!IsStandIn(pLibrary)) return pLibrary;
  dlclose(pLibrary);
  return nullptr;
}

}  // namespace

std::string OwnFolder() {
  Dl_info oInfo{};
  dladdr(reinterpret_cast<const void*>(&OwnFolder), &oInfo);
  const std::string sFile = oInfo.dli_fname != nullptr ? oInfo.dli_fname : "";
  const size_t nSlash = sFile.rfind('/');
  return nSlash == std::string::npos ? "./" : sFile.substr(0, nSlash + 1);
}

void* OpenRealLibrary(const char* szName, std::string& sReason) {
  const char* szFolder = std::getenv("KELVARIN_VT40_RECORD_FROM");
  const bool bNamed = szFolder != nullptr && szFolder[0] != '\0';
  for (const std::string& sFolder : bNamed ? std::vector<std::string>{szFolder} : SearchedFolders(szName)) {
    const std::string sPath = sFolder + "/" + szName;
    if (!IsThere(sPath)) continue;
    if (void* pLibrary = Open(sPath, sReason)) return pLibrary;
  }
  if (sReason.empty()) {
    sReason = std::string("the recorder finds no ") + szName +
              (bNamed ? std::string(" in ") + szFolder
                      : "; name its folder in the environment variable KELVARIN_VT40_RECORD_FROM");
  }
  return nullptr;
}

namespace {

template <typename TFunction>
void BindOne(void* pLibrary, const char* szName, TFunction& pfn) {
  pfn = reinterpret_cast<TFunction>(dlsym(pLibrary, szName));
}

}  // namespace

#define KLV_BIND(Number, Name, Result, Parameters, Arguments, Roles) BindOne(pLibrary, #Name, Name);
void StScanFunctions::Bind(void* pLibrary) {
  KLV_RECORDED_SCAN_FUNCTIONS(KLV_BIND)
}

void StLivenessFunctions::Bind(void* pLibrary) {
  KLV_RECORDED_LIVENESS_FUNCTIONS(KLV_BIND)
}
#undef KLV_BIND

}  // namespace Recording
