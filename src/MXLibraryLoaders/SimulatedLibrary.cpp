// The folder is found by the place of this library's own code.
#include "MXLibraryLoaders/SimulatedLibrary.h"

#include <dlfcn.h>

#include <cstdlib>
#include <cstring>

std::string SimulatorFolder() {
  Dl_info oOwn{};
  std::string szFile;
  if (dladdr(reinterpret_cast<const void*>(&SimulatorFolder), &oOwn) != 0 && oOwn.dli_fname != nullptr) {
    szFile = oOwn.dli_fname;
  }
  return szFile.substr(0, szFile.rfind('/') + 1) + "kelvarin-vt40/simulator/";
}

std::string SimulatedLibrary(const char* szName) {
  const char* szAsked = secure_getenv("KELVARIN_SDK_SIMULATE");
  if (szAsked == nullptr || szAsked[0] == '\0' || std::strcmp(szAsked, "0") == 0) return "";
  return SimulatorFolder() + szName;
}
