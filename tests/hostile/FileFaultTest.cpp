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
#include <set>

#include "MXCalibrate/CalibrateGeometricData.h"
#include "MXTools/Bitmap.h"
#include "MXTools/FileSystem.h"
#include "MXTools/FpImage.h"
#include "MXTools/MD5.h"
#include "Picture.h"
#include "TemporaryDirectory.h"
#include "format/BlockWriter.h"

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

/// So does a read. The C library's header has a body of that name, so that it goes by another in here.
size_t ReadHalf(void* pData, size_t nSize, size_t nCount, FILE* pFile) __asm__("fread");
size_t ReadHalf(void* pData, size_t nSize, size_t nCount, FILE* pFile) {
  static const auto pfn = Real(&fread, "fread");
  const bool bStrikes = Strikes();
  const size_t nRead = pfn(pData, nSize, bStrikes ? nCount / 2 : nCount, pFile);
  if (bStrikes) errno = s_nError;
  return nRead;
}

/// Without a number a write comes half as far.
ssize_t write(int nFile, const void* pData, size_t nBytes) {
  static const auto pfn = Real(&write, "write");
  const bool bStrikes = Strikes();
  if (bStrikes && s_nError != 0) return -1;
  return pfn(nFile, pData, bStrikes ? (nBytes + 1) / 2 : nBytes);
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

  static void Arm(int nFailing, int nError) {
    s_nOperation = 0;
    s_nError = nError;
    s_nFailing = nFailing;
  }

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
          Arm(nFailing, nError);
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

TEST_F(FileFault, WhatCannotBeReadWholeIsNotTakenForAFile) {
  const std::vector<std::pair<StWriter, std::function<void(const char*)>>> aReaders = {
      {{"KIF", [&](const char* sz) { m_oImage.Store(sz); }}, [&](const char* sz) { m_oImage.Load(sz); }},
      {{"BMP", [&](const char* sz) { m_oBitmap.Store(sz); }}, [&](const char* sz) { m_oBitmap.Load(sz); }},
      {{"calibration data", [&](const char* sz) { m_oData.Write(sz); }},
       [&](const char* sz) { m_oData.Read(sz); }}};
  Writers();
  for (const auto& [oWriter, fnRead] : aReaders) {
    Begin(false);
    oWriter.fnWrite(m_sFile.c_str());
    const std::string sWhole = Content();
    int nRaised = 0;
    for (int nFailing = 1;; ++nFailing) {
      SCOPED_TRACE(std::string(oWriter.szName) + ", operation " + std::to_string(nFailing));
      bool bRaised = false;
      Arm(nFailing, EIO);
      try {
        fnRead(m_sFile.c_str());
      } catch (const std::exception&) {
        bRaised = true;
      }
      s_nFailing = 0;
      if (s_nOperation < nFailing) break;
      nRaised += bRaised ? 1 : 0;
      if (bRaised) continue;
      oWriter.fnWrite(m_sSource.c_str());
      EXPECT_EQ(std::filesystem::file_size(m_sSource), sWhole.size());
    }
    EXPECT_GT(nRaised, 5) << oWriter.szName;
    // The next reading works, whatever the last one left.
    fnRead(m_sFile.c_str());
    oWriter.fnWrite(m_sFile.c_str());
    EXPECT_TRUE(Content() == sWhole) << oWriter.szName;
  }
}

TEST_F(FileFault, ARecordingEndsWithItsLastWholeBlock) {
  const std::string sContent(1000, 'x');
  std::set<size_t> aEnds;
  std::string sWhole;
  const auto Record = [&] {
    std::filesystem::remove(m_sFile);
    Recording::ClBlockWriter oWriter(open(m_sFile.c_str(), O_WRONLY | O_CREAT, 0666), 0, 1);
    for (int n = 0; n < 4; ++n) {
      if (s_nFailing == 0) aEnds.insert(std::filesystem::file_size(m_sFile));
      oWriter.Write(Recording::eBlockFacts, sContent.data(), sContent.size());
    }
    return oWriter.Failure();
  };
  Record();
  sWhole = Content();
  for (const int nError : {EIO, ENOSPC, EINTR, 0}) {
    for (int nFailing = 1;; ++nFailing) {
      Arm(nFailing, nError);
      const int nFailure = Record();
      s_nFailing = 0;
      if (s_nOperation < nFailing) break;
      const std::string sWritten = Content();
      const bool bGoesOn = nError == EINTR || nError == 0;
      EXPECT_EQ(nFailure, bGoesOn ? 0 : nError);
      EXPECT_EQ(sWritten, sWhole.substr(0, sWritten.size()));
      EXPECT_TRUE(bGoesOn ? sWritten == sWhole : sWritten.empty() || aEnds.count(sWritten.size()) != 0)
          << sWritten.size() << " bytes after operation " << nFailing;
    }
  }
}

}  // namespace
