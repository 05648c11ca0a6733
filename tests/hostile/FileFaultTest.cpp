// Files that cannot be written whole: whoever reads their names finds the old content or the new one.
#include <dlfcn.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>

#include "MXCalibrate/CalibrateGeometricData.h"
#include "MXTools/Bitmap.h"
#include "MXTools/FileSystem.h"
#include "MXTools/FpImage.h"
#include "MXTools/MD5.h"
#include "Picture.h"
#include "TemporaryDirectory.h"

namespace {

/// The file operation, counted from 1, that fails; 0 for none.
int s_nFailing = 0;
int s_nError = 0;
int s_nOperation = 0;

/// Counts a file operation; whether it is to fail.
bool Strikes() {
  if (s_nFailing == 0 || ++s_nOperation != s_nFailing) return false;
  errno = s_nError;
  return true;
}

template <typename F>
F Real(F, const char* szName) {
  return reinterpret_cast<F>(dlsym(RTLD_NEXT, szName));
}

}  // namespace

// The C library's functions as the program sees them.
extern "C" {

FILE* fopen(const char* szName, const char* szMode) {
  static const auto pfn = Real(&fopen, "fopen");
  return Strikes() ? nullptr : pfn(szName, szMode);
}

/// A write that fails comes half as far as it should.
size_t fwrite(const void* pData, size_t nSize, size_t nCount, FILE* pFile) {
  static const auto pfn = Real(&fwrite, "fwrite");
  const bool bStrikes = Strikes();
  const size_t nWritten = pfn(pData, nSize, bStrikes ? nCount / 2 : nCount, pFile);
  if (bStrikes) errno = s_nError;
  return nWritten;
}

int fflush(FILE* pFile) {
  static const auto pfn = Real(&fflush, "fflush");
  return Strikes() ? EOF : pfn(pFile);
}

int fclose(FILE* pFile) {
  static const auto pfn = Real(&fclose, "fclose");
  const int nResult = pfn(pFile);
  return Strikes() ? EOF : nResult;
}

int fsync(int nFile) {
  static const auto pfn = Real(&fsync, "fsync");
  return Strikes() ? -1 : pfn(nFile);
}

int rename(const char* szOld, const char* szNew) noexcept {
  static const auto pfn = Real(&rename, "rename");
  return Strikes() ? -1 : pfn(szOld, szNew);
}

int chmod(const char* szName, mode_t nMode) noexcept {
  static const auto pfn = Real(&chmod, "chmod");
  return Strikes() ? -1 : pfn(szName, nMode);
}

}  // extern "C"

namespace {

struct StWriter {
  const char* szName;
  std::function<void(const char* szFile)> fnWrite;
};

class FileFault : public testing::Test {
 protected:
  std::string Content() const {
    std::ifstream oFile(m_sFile, std::ios::binary);
    return {std::istreambuf_iterator<char>(oFile), {}};
  }
  void Begin(bool bExists) {
    std::filesystem::remove(m_sFile);
    if (bExists) std::ofstream(m_sFile) << "old";
  }
  long Files() const { return std::distance(std::filesystem::directory_iterator(m_oFolder.Path()), {}); }

  std::vector<StWriter> Writers() {
    m_oImage.NewWithType(ClImage::eUint8, 64, 64, 1, 0, 0, true);
    m_oBitmap.Create(64, 64, 8, 0);
    std::ofstream(m_sSource) << std::string(40000, 'x');
    return {{"KIF", [&](const char* sz) { m_oImage.Store(sz); }},
            {"BMP", [&](const char* sz) { m_oBitmap.Store(sz); }},
            {"calibration data", [&](const char* sz) { m_oData.Write(sz); }},
            {"digest", [&](const char* sz) { ClMD5::Make(m_sSource.c_str(), sz); }},
            {"copy", [&](const char* sz) { FileSystem::CopyFile(m_sSource.c_str(), sz); }},
            {"file of the tool", [](const char* sz) {
               WriteFile({1, 2, 3, 4}, sz);
             }}};
  }

  const ClTemporaryDirectory m_oFolder;
  const ClTemporaryDirectory m_oOther;
  const std::string m_sFile = m_oFolder.Path("file");
  const std::string m_sSource = m_oOther.Path("source");
  ClImage m_oImage;
  ClBitmap m_oBitmap;
  ClCalibrateGeometricData m_oData;
};

TEST_F(FileFault, LeavesTheOldFileOrTheNewOne) {
  int nFaults = 0;
  for (const StWriter& oWriter : Writers()) {
    Begin(false);
    oWriter.fnWrite(m_sFile.c_str());
    const std::string sWhole = Content();
    ASSERT_GT(sWhole.size(), 3u);
    for (const bool bExists : {false, true}) {
      for (const int nError : {EIO, ENOSPC, EINTR}) {
        for (int nFailing = 1;; ++nFailing) {
          SCOPED_TRACE(std::string(oWriter.szName) + ", operation " + std::to_string(nFailing));
          Begin(bExists);
          bool bRaised = false;
          s_nOperation = 0;
          s_nError = nError;
          s_nFailing = nFailing;
          try {
            oWriter.fnWrite(m_sFile.c_str());
          } catch (const std::exception&) {
            bRaised = true;
          }
          s_nFailing = 0;
          if (s_nOperation < nFailing) break;
          ++nFaults;
          const std::string sContent = Content();
          EXPECT_TRUE(sContent == sWhole || (bRaised && sContent == (bExists ? "old" : "")))
              << sContent.size() << " bytes of " << sWhole.size();
          EXPECT_EQ(Files(), sContent.empty() ? 0 : 1) << "nothing else is left";
        }
      }
    }
  }
  RecordProperty("faults", nFaults);
  EXPECT_GT(nFaults, 100);
}

TEST_F(FileFault, ANewFileKeepsThePermissionsOfTheOld) {
  Begin(true);
  std::filesystem::permissions(m_sFile,
                               std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
  m_oImage.NewWithType(ClImage::eUint8, 8, 8, 1, 0, 0, true);
  m_oImage.Store(m_sFile.c_str());
  EXPECT_EQ(std::filesystem::status(m_sFile).permissions(), std::filesystem::perms(0600));
}

TEST_F(FileFault, ALinkStaysALink) {
  std::ofstream(m_sSource) << "old";
  std::filesystem::create_symlink(m_sSource, m_sFile);
  m_oImage.NewWithType(ClImage::eUint8, 8, 8, 1, 0, 0, true);
  m_oImage.Store(m_sFile.c_str());
  EXPECT_TRUE(std::filesystem::is_symlink(m_sFile));
  EXPECT_GT(std::filesystem::file_size(m_sSource), 64u);
}

}  // namespace
