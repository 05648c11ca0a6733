// What changes files and directories on disk.
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "MXTools/Exception.h"
#include "MXTools/File.h"
#include "MXTools/FileSystem.h"
#include "MXTools/FindFile.h"
#include "MXTools/NewFile.h"

namespace FileSystem {

namespace {

constexpr unsigned int cnCopyBlock = 16384;

bool IsLink(const char* szName) {
  struct stat oStat;
  return lstat(szName, &oStat) == 0 && S_ISLNK(oStat.st_mode);
}

bool IsSameFile(const char* szFirst, const char* szSecond) {
  struct stat oFirst;
  struct stat oSecond;
  return stat(szFirst, &oFirst) == 0 && stat(szSecond, &oSecond) == 0 && oFirst.st_dev == oSecond.st_dev &&
         oFirst.st_ino == oSecond.st_ino;
}

void RemoveContent(const std::string& szDirectory) {
  ClFindFile oFind((szDirectory + "/*").c_str());
  for (; oFind.HasEntry(); oFind.Next()) {
    const std::string szName = oFind.Name();
    if (szName == "." || szName == "..") continue;
    std::string szFull = szDirectory;
    szFull.append("/").append(szName);
    // A link to a directory must not take the directory with it.
    if (oFind.IsSubDirectory() && !IsLink(szFull.c_str())) {
      RemoveDirectory(szFull.c_str(), true);
    } else {
      RemoveFile(szFull.c_str());
    }
  }
}

}  // namespace

char* MakeTempFileName(char* szPattern) {
  const int nFile = mkstemp(szPattern);
  if (nFile < 0) return nullptr;
  close(nFile);
  return szPattern;
}

void CreateDirectory(const char* szName, bool bRecursive) {
  if (szName == nullptr) KLV_RAISE_NUMBER(-23);
  if (mkdir(szName, 0775) == 0 || errno == EEXIST) return;
  if (errno != ENOENT || !bRecursive) throw ClExSystem(szName, __FILE__, __LINE__);
  std::string szParent = szName;
  if (!szParent.empty() && IsSeparator(szParent.back())) szParent.pop_back();
  const size_t nSeparator = szParent.find_last_of("/\\");
  if (nSeparator == std::string::npos)
    KLV_RAISE(ClException, "Invalid Pathname in FileSystem::CreateDirectory.", -101);
  szParent.resize(nSeparator);
  CreateDirectory(szParent.c_str(), true);
  CreateDirectory(szName, false);
}

void RemoveDirectory(const char* szName, bool bRecursive) {
  if (szName == nullptr) KLV_RAISE_NUMBER(-23);
  if (rmdir(szName) == 0 || errno == ENOENT) return;
  if ((errno != ENOTEMPTY && errno != EEXIST) || !bRecursive)
    throw ClExSystem("RemoveDirectory", __FILE__, __LINE__);
  RemoveContent(szName);
  if (rmdir(szName) != 0) throw ClExSystem("RemoveDirectory", __FILE__, __LINE__);
}

void RemoveFile(const char* szName) {
  if (szName == nullptr) KLV_RAISE_NUMBER(-23);
  if (std::remove(szName) != 0) throw ClExSystem(szName, __FILE__, __LINE__);
}

void RenameFile(const char* szOld, const char* szNew) {
  if (szOld == nullptr || szNew == nullptr) KLV_RAISE_NUMBER(-23);
  if (std::rename(szOld, szNew) != 0) throw ClExSystem(szOld, __FILE__, __LINE__);
}

void CopyFile(const char* szFrom, const char* szTo) {
  if (szFrom == nullptr || szTo == nullptr) KLV_RAISE_NUMBER(-23);
  if (!IsFileExistent(szFrom)) throw ClExFilesystem(szFrom, -200, __FILE__, __LINE__);
  // To open the file for writing would empty it.
  if (IsSameFile(szFrom, szTo)) return;
  const std::string szNormalized = ClFile::Normalized(szTo);
  ClNewFile oNewFile(szNormalized.c_str());
  {
    ClFile oFrom(szFrom, "rb");
    ClFile oTo(oNewFile.WrittenName(), "wb");
    std::vector<char> aBlock(cnCopyBlock);
    while (!oFrom.Eof()) {
      const size_t nRead = oFrom.Read(aBlock.data(), cnCopyBlock);
      const bool bCut = nRead < cnCopyBlock && !oFrom.Eof();
      if (bCut || oTo.Write(aBlock.data(), nRead) != nRead) throw ClExSystem("CopyFile", __FILE__, __LINE__);
    }
  }
  oNewFile.Keep();
}

}  // namespace FileSystem
