// Rows of results, and what a process holds.
#include "Result.h"

#include <dirent.h>
#include <malloc.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>

namespace Reliability {
namespace {

int Entries(const char* szFolder) {
  DIR* pFolder = opendir(szFolder);
  if (pFolder == nullptr) return -1;
  int nEntries = 0;
  while (readdir(pFolder) != nullptr) ++nEntries;
  closedir(pFolder);
  return nEntries;
}

}  // namespace

bool StResult::Report(const std::string& sPath) const {
  char szSeconds[32];
  std::snprintf(szSeconds, sizeof(szSeconds), "%.1f", dSeconds);
  const std::string sText = R"({"row": ")" + sRow + R"(", "count": )" + std::to_string(nCount) +
                            R"(, "seed": )" + std::to_string(nSeed) + R"(, "seconds": )" + szSeconds +
                            R"(, "findings": )" + std::to_string(nFindings) + R"(, "note": ")" + sNote +
                            "\"" + sMore + "}\n";
  std::fputs(sText.c_str(), stderr);
  if (sPath.empty()) return true;
  const std::string sNew = sPath + ".new";
  std::ofstream oFile(sNew);
  oFile << sText;
  oFile.close();
  return oFile && std::rename(sNew.c_str(), sPath.c_str()) == 0;
}

std::string BuildName() {
#if defined(__clang__)
  const std::string sCompiler = "clang " + std::to_string(__clang_major__);
#else
  const std::string sCompiler = "gcc " + std::to_string(__GNUC__);
#endif
  return sCompiler + KLV_SANITIZER_TEXT;
}

StResources StResources::Now() {
  StResources oNow;
  oNow.nThreads = Entries("/proc/self/task");
  oNow.nFiles = Entries("/proc/self/fd");
  malloc_trim(0);
  long nTotal = 0, nResident = 0;
  std::ifstream("/proc/self/statm") >> nTotal >> nResident;
  oNow.nKilobytes = nResident * (sysconf(_SC_PAGESIZE) / 1024);
  return oNow;
}

}  // namespace Reliability
