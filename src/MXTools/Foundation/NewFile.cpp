// Writing beside a file, and renaming.
#include "MXTools/NewFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>

#include "MXTools/Exception.h"

namespace {

/// Brings what was written to the disk, so that a name never stands for a file whose content is lost.
bool Settle(const char* szName) {
  const int nFile = open(szName, O_RDONLY | O_CLOEXEC);
  if (nFile == -1) return false;
  const bool bSettled = fsync(nFile) == 0;
  close(nFile);
  return bSettled;
}

}  // namespace

ClNewFile::ClNewFile(const char* szName) : m_szName(szName) {
  static std::atomic<unsigned int> s_nCount{0};
  struct stat oStat;
  if (szName == nullptr) return;
  // A file that must not be written to is not replaced either.
  if (lstat(szName, &oStat) == 0 && (!S_ISREG(oStat.st_mode) || access(szName, W_OK) != 0)) return;
  std::string szPart = szName;
  szPart += ".part-" + std::to_string(getpid()) + "-" + std::to_string(s_nCount++);
  const int nFile = open(szPart.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  if (nFile == -1) return;
  close(nFile);
  m_szPart.swap(szPart);
}

ClNewFile::~ClNewFile() {
  if (!m_szPart.empty()) unlink(m_szPart.c_str());
}

void ClNewFile::Keep() {
  if (m_szPart.empty()) return;
  struct stat oStat;
  const bool bExists = stat(m_szName, &oStat) == 0;
  if ((bExists && chmod(m_szPart.c_str(), oStat.st_mode & 07777) != 0) || !Settle(m_szPart.c_str()) ||
      std::rename(m_szPart.c_str(), m_szName) != 0) {
    throw ClExSystem(m_szName, __FILE__, __LINE__);
  }
  m_szPart.clear();
}
