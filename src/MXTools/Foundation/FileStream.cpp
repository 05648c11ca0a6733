// File access of streams through stdio.
#include "MXTools/FileStream.h"

#include <sys/stat.h>

#include <cerrno>
#include <new>

#include "MXTools/Exception.h"
#include "MXTools/XChar.h"

ClFileStream::~ClFileStream() {
  try {
    ClFileStream::Close();
  } catch (...) {
    // A caller who has to know whether everything was written calls Close.
    if (m_pFile != nullptr) std::fclose(m_pFile);
  }
}

bool ClFileStream::Open(const char* szName, const char* szMode) {
  if (szName == nullptr) KLV_RAISE(ClException, "szName is NULL", -44);
  if (szMode == nullptr) KLV_RAISE(ClException, "szMode is NULL", -44);
  Close();
  struct stat oStat;
  // For reading, a directory could be opened, and each read would then fail.
  if (stat(szName, &oStat) == 0 && S_ISDIR(oStat.st_mode)) {
    errno = EISDIR;
    throw ClExFilesystem(szName, -200, __FILE__, __LINE__);
  }
  FILE* pFile = std::fopen(szName, szMode);
  if (pFile == nullptr) throw ClExFilesystem(szName, -200, __FILE__, __LINE__);
  m_pFile = pFile;
  m_eLastMove = eMoveNone;
  SetName(szName);
  DropBits();
  return true;
}

bool ClFileStream::Open(const wchar_t* wszName, const wchar_t* wszMode) {
  if (wszName == nullptr) KLV_RAISE(ClException, "the szName parameter is invalid.", -37);
  if (wszMode == nullptr) KLV_RAISE(ClException, "the szMode parameter is invalid.", -37);
  const std::string szMode = NarrowText(wszMode);
  return Open(NarrowText(wszName).c_str(), szMode.c_str());
}

void ClFileStream::SetName(const char* szName) {
  try {
    m_szName = szName;
  } catch (const std::bad_alloc&) {
    KlvRaiseBadAlloc();
  }
  m_bNamed = true;
}

void ClFileStream::Close() {
  ClStream::Close();
  if (m_pFile == nullptr) return;
  FILE* pFile = m_pFile;
  m_pFile = nullptr;
  const bool bCut = m_bWriteCut;
  m_bWriteCut = false;
  // stdio writes large blocks past its buffer: when such a write has failed, fclose still succeeds.
  if (std::fclose(pFile) != 0 || bCut) KLV_RAISE(ClExStream, "ClFileStream::Close. Failed to Close", -204);
}

long ClFileStream::Pos() const {
  return m_pFile == nullptr ? 0 : std::ftell(m_pFile);
}

long ClFileStream::Size() const {
  if (m_pFile == nullptr) return 0;
  const long nPos = std::ftell(m_pFile);
  std::fseek(m_pFile, 0, SEEK_END);
  const long nSize = std::ftell(m_pFile);
  std::fseek(m_pFile, nPos, SEEK_SET);
  m_eLastMove = eMoveNone;
  return nSize;
}

long ClFileStream::Seek(long nOffset, int nWhence) {
  if (m_pFile == nullptr) return -1;
  m_eLastMove = eMoveNone;
  switch (nWhence) {
    case 0:
      return std::fseek(m_pFile, nOffset, SEEK_SET);
    case 1:
      return std::fseek(m_pFile, nOffset, SEEK_CUR);
    case 2:
      return std::fseek(m_pFile, nOffset, SEEK_END);
    default:
      return -1;
  }
}

void ClFileStream::Prepare(ELastMove eMove) {
  if (m_eLastMove != eMoveNone && m_eLastMove != eMove) std::fseek(m_pFile, 0, SEEK_CUR);
  m_eLastMove = eMove;
}

unsigned int ClFileStream::WriteRaw(const void* pData, unsigned int nBytes) {
  if (m_pFile == nullptr || nBytes == 0) return 0;
  Prepare(eMoveWrite);
  const size_t nWritten = std::fwrite(pData, 1, nBytes, m_pFile);
  // A stream that is not open for writing has lost nothing.
  if (nWritten < nBytes && errno != EBADF) m_bWriteCut = true;
  return static_cast<unsigned int>(nWritten);
}

unsigned int ClFileStream::ReadRaw(void* pData, unsigned int nBytes) {
  if (m_pFile == nullptr || nBytes == 0) return 0;
  Prepare(eMoveRead);
  return static_cast<unsigned int>(std::fread(pData, 1, nBytes, m_pFile));
}
