// stdio with failures as exceptions.
#include "MXTools/File.h"

#include <cerrno>
#include <exception>

#include "MXTools/Exception.h"
#include "MXTools/FileSystem.h"
#include "MXTools/XChar.h"

namespace {

void RequireFile(const FILE* pFile, const char* szOperation) {
  if (pFile != nullptr) return;
  errno = EBADF;
  throw ClExSystem(szOperation, __FILE__, __LINE__);
}

}  // namespace

ClFile::ClFile() : m_nExceptions(std::uncaught_exceptions()) {}

ClFile::ClFile(const char* szName, const char* szMode) : ClFile() {
  Open(szName, szMode);
}

ClFile::ClFile(const wchar_t* wszName, const wchar_t* wszMode) : ClFile() {
  if (wszName == nullptr || wszMode == nullptr) KLV_RAISE_NUMBER(-37);
  const std::string szName = NarrowText(wszName);
  m_pFile = std::fopen(szName.c_str(), NarrowText(wszMode).c_str());
  if (m_pFile == nullptr) throw ClExFilesystem(szName.c_str(), -200, __FILE__, __LINE__);
}

ClFile::~ClFile() noexcept(false) {
  try {
    Close();
  } catch (const ClException&) {
    if (std::uncaught_exceptions() == m_nExceptions) throw;
  }
}

void ClFile::Close() {
  FILE* pFile = m_pFile;
  m_pFile = nullptr;
  if (pFile != nullptr && std::fclose(pFile) != 0) throw ClExSystem("fclose", __FILE__, __LINE__);
}

std::string ClFile::Normalized(const char* szName) {
  char szNormalized[2048];
  if (FileSystem::NormalizeFilename(szName, szNormalized, sizeof(szNormalized)) != 0) KLV_RAISE_NUMBER(-21);
  return szNormalized;
}

void ClFile::Open(const char* szName, const char* szMode) {
  const std::string szNormalized = Normalized(szName);
  if (szMode == nullptr) KLV_RAISE_NUMBER(-37);
  Close();
  m_pFile = std::fopen(szNormalized.c_str(), szMode);
  if (m_pFile == nullptr) throw ClExFilesystem(szNormalized.c_str(), -200, __FILE__, __LINE__);
}

long ClFile::Tell() const {
  RequireFile(m_pFile, "ftell");
  const long nPos = std::ftell(m_pFile);
  if (nPos < 0) throw ClExSystem("ftell", __FILE__, __LINE__);
  return nPos;
}

void ClFile::Seek(long nOffset, int nWhence) {
  RequireFile(m_pFile, "fseek");
  if (std::fseek(m_pFile, nOffset, nWhence) != 0) throw ClExSystem("fseek", __FILE__, __LINE__);
}

void ClFile::Flush() {
  RequireFile(m_pFile, "fflush");
  if (std::fflush(m_pFile) != 0) throw ClExSystem("fflush", __FILE__, __LINE__);
}

bool ClFile::Eof() const {
  return m_pFile != nullptr && std::feof(m_pFile) != 0;
}

long ClFile::Size() {
  const long nPos = Tell();
  Seek(0, SEEK_END);
  const long nSize = Tell();
  Seek(nPos, SEEK_SET);
  return nSize;
}

size_t ClFile::Read(void* pData, size_t nBytes) {
  RequireFile(m_pFile, "fread");
  return std::fread(pData, 1, nBytes, m_pFile);
}

size_t ClFile::Write(const void* pData, size_t nBytes) {
  RequireFile(m_pFile, "fwrite");
  return std::fwrite(pData, 1, nBytes, m_pFile);
}

long ClFile::Compare(const char* szFile1, const char* szFile2, bool) {
  ClFile oFile1(szFile1, "rb");
  ClFile oFile2(szFile2, "rb");
  for (;;) {
    const int nByte1 = std::getc(oFile1.m_pFile);
    const int nByte2 = std::getc(oFile2.m_pFile);
    if (nByte1 != nByte2) return oFile1.Tell();
    if (nByte1 == EOF) return -1;
  }
}
