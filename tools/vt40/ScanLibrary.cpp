// Facts that the dynamic linker knows.
#include "ScanLibrary.h"

#include <dlfcn.h>
#include <link.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <sstream>
#include <vector>

#include "KelvarinLiveScannerVT40.h"
#include "StandIn.h"
#include "ToolError.h"

namespace {

namespace fs = std::filesystem;

constexpr char cszName[] = "libkelvarinvtscanapi.gcc.Release.32.so";
constexpr unsigned int cnProduct = 17;

struct ClClose {
  void operator()(void* pLibrary) const { dlclose(pLibrary); }
};
/// A reference to a library that is loaded already.
using Loaded = std::unique_ptr<void, ClClose>;

Loaded OpenLoaded(const std::string& sPath) {
  return Loaded(sPath.empty() ? nullptr : dlopen(sPath.c_str(), RTLD_NOW | RTLD_NOLOAD));
}

template <typename TFunction>
TFunction* FunctionOf(void* pLibrary, const char* szName) {
  return reinterpret_cast<TFunction*>(pLibrary != nullptr ? dlsym(pLibrary, szName) : nullptr);
}

int TakeScanLibrary(dl_phdr_info* pInfo, size_t, void* pPath) {
  const fs::path oPath(pInfo->dlpi_name != nullptr ? pInfo->dlpi_name : "");
  if (oPath.filename() != cszName) return 0;
  *static_cast<std::string*>(pPath) = oPath.string();
  return 1;
}

/// Beside the library under the tool. The library knows the place as well, but no function of its interface
/// tells it.
fs::path SimulatorPath() {
  Dl_info oInfo{};
  dladdr(reinterpret_cast<const void*>(&LS_VT40Initialize), &oInfo);
  return fs::path(oInfo.dli_fname != nullptr ? oInfo.dli_fname : "").parent_path() /
         "kelvarin-vt40/simulator" / cszName;
}

/// Folders in the order in which the library looks through them before the system's own.
std::vector<fs::path> SearchedFolders() {
  std::vector<fs::path> aFolders = {"../KelvarinVTScanAPI", "../../KelvarinVTScanAPI", "."};
  const char* szFolders = std::getenv("LD_LIBRARY_PATH");
  std::istringstream oFolders(szFolders != nullptr ? szFolders : "");
  for (std::string sFolder; std::getline(oFolders, sFolder, ':');) aFolders.emplace_back(sFolder);
  aFolders.push_back(SimulatorPath().parent_path().parent_path().parent_path());
  return aFolders;
}

bool OthersMayWrite(const fs::path& oPath) {
  struct stat oStat {};
  if (stat(oPath.c_str(), &oStat) != 0) return false;
  return oStat.st_uid != 0 || (oStat.st_mode & (S_IWGRP | S_IWOTH)) != 0;
}

}  // namespace

StScanLibrary LoadedScanLibrary() {
  StScanLibrary oLibrary;
  dl_iterate_phdr(TakeScanLibrary, &oLibrary.sPath);
  const Loaded pLibrary = OpenLoaded(oLibrary.sPath);
  oLibrary.bSimulated =
      FunctionOf<int(const char*)>(pLibrary.get(), "VTSimLoadScene") != nullptr || StandIn::IsSimulated();
  std::error_code oError;
  const fs::path oWhole = fs::canonical(oLibrary.sPath, oError);
  if (!oError) oLibrary.sPath = oWhole.string();
  return oLibrary;
}

std::string ScanLibraryVersion() {
  const Loaded pLibrary = OpenLoaded(LoadedScanLibrary().sPath);
  const auto pfnQuery =
      FunctionOf<long(unsigned int*, unsigned int*, unsigned int)>(pLibrary.get(), "VTScanAPIQueryDevices");
  const auto pfnOpen = FunctionOf<long(unsigned int, void**)>(pLibrary.get(), "VTScanAPICreateHandle");
  const auto pfnClose = FunctionOf<long(void**)>(pLibrary.get(), "VTScanAPIDestroyHandle");
  const auto pfnProperty =
      FunctionOf<long(void*, const char*, char*, unsigned int*)>(pLibrary.get(), "VTScanAPIGetPropertyA");
  if (pfnQuery == nullptr || pfnOpen == nullptr || pfnClose == nullptr || pfnProperty == nullptr) return "";
  unsigned int aIds[127];
  unsigned int nCount = 127;
  void* hDevice = nullptr;
  if (pfnQuery(aIds, &nCount, cnProduct) != 0 || nCount == 0 || pfnOpen(aIds[0], &hDevice) != 0) return "";
  char szVersion[257] = "";
  unsigned int nSize = sizeof(szVersion) - 1;
  if (pfnProperty(hDevice, "version", szVersion, &nSize) != 0) szVersion[0] = '\0';
  pfnClose(&hDevice);
  return szVersion;
}

std::string ScanLibraryVersionIn(const std::string& sVersions) {
  const std::string sMark = "LIB:";
  const size_t nMark = sVersions.find(sMark);
  if (nMark == std::string::npos) return "";
  const size_t nBegin = nMark + sMark.size();
  return sVersions.substr(nBegin, sVersions.find(' ', nBegin) - nBegin);
}

void CheckScanLibraryIsTrusted() {
  // The simulated one and the player stand with the library itself, which is loaded already.
  if (geteuid() != 0 || StandIn::IsSimulationAskedFor() || !StandIn::ReplayFile().empty()) return;
  const fs::path oFound = [] {
    for (const fs::path& oFolder : SearchedFolders()) {
      std::error_code oError;
      if (fs::exists(oFolder / cszName, oError)) return oFolder / cszName;
    }
    return fs::path();
  }();
  std::error_code oError;
  const fs::path oFile = fs::canonical(oFound, oError);
  if (oFound.empty() || oError) return;
  for (const fs::path& oPath : {oFile, oFile.parent_path()}) {
    if (OthersMayWrite(oPath)) {
      throw ClToolError(eExitScanLibrary,
                        "the scan library " + oFile.string() +
                            " is not used with the administrator's rights: others than root can "
                            "write to " +
                            oPath.string());
    }
  }
}

ClSimulator::ClSimulator() {
  StandIn::Load();
  if (!StandIn::IsSimulationAskedFor()) return;
  const std::string sPath = SimulatorPath().string();
  m_pLibrary = dlopen(sPath.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (m_pLibrary == nullptr) {
    const char* szReason = dlerror();
    throw ClToolError(eExitScanLibrary, std::string("the simulated scanner is not installed: ") +
                                            (szReason != nullptr ? szReason : sPath.c_str()));
  }
}

ClSimulator::~ClSimulator() {
  if (m_pLibrary != nullptr) dlclose(m_pLibrary);
}

std::string ClSimulator::LastError() const {
  const auto pfnLastError = FunctionOf<const char*()>(m_pLibrary, "VTSimLastError");
  return pfnLastError != nullptr ? pfnLastError() : "";
}
