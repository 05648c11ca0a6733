// How exceptions build, copy and free their comments.
#include "MXTools/Exception.h"

#include <dlfcn.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <new>

#include "MXTools/ErrorTable.h"

namespace {

/// Raised when a comment cannot be allocated, and so without a comment of its own.
[[noreturn]] void RaiseNoRoomForComment() {
  throw ClExBadAlloc(ClExKelvarin(-102, "Unknown", -1));
}

char* Duplicate(const char* szText) {
  if (szText == nullptr) return nullptr;
  const size_t nSize = std::strlen(szText) + 1;
  char* szCopy = new (std::nothrow) char[nSize];
  if (szCopy == nullptr) RaiseNoRoomForComment();
  std::memcpy(szCopy, szText, nSize);
  return szCopy;
}

const char* OrEmpty(const char* szText) {
  return szText != nullptr ? szText : "";
}

}  // namespace

void KlvRaiseBadAlloc() {
  throw ClExBadAlloc("Memory allocation failed", -102, true, "Unknown", -1);
}

namespace Klv {

CXSystemException::CXSystemException() : m_nErrorNumber(errno) {}

const char* CXSystemException::GetDescription() const {
  return std::strerror(m_nErrorNumber);
}

}  // namespace Klv

ClException::ClException(long nNumber, bool bOwn, const char* szFile, long nLine)
    : m_szFile(szFile), m_nLine(nLine), m_nNumber(nNumber), m_bOwnsComment(bOwn) {
  SetComment(GetErrorDescriptionIntern(nNumber));
}

ClException::ClException(const char* szText, long nNumber, bool bOwn, const char* szFile, long nLine)
    : m_szFile(szFile), m_nLine(nLine), m_nNumber(nNumber), m_bOwnsComment(bOwn) {
  SetCommentV("%s\n%s", GetErrorDescriptionIntern(nNumber), OrEmpty(szText));
}

ClException::ClException(const ClException& oOther)
    : Klv::ClKelvarinException(oOther),
      m_szFile(oOther.m_szFile),
      m_nLine(oOther.m_nLine),
      m_nNumber(oOther.m_nNumber),
      m_bOwnsComment(oOther.m_bOwnsComment) {
  SetComment(oOther.m_szComment);
}

ClException& ClException::operator=(const ClException& oOther) {
  if (this == &oOther) return *this;
  char* szComment = oOther.m_bOwnsComment ? Duplicate(oOther.m_szComment) : oOther.m_szComment;
  if (m_bOwnsComment) delete[] m_szComment;
  m_szComment = szComment;
  m_szFile = oOther.m_szFile;
  m_nLine = oOther.m_nLine;
  m_nNumber = oOther.m_nNumber;
  m_bOwnsComment = oOther.m_bOwnsComment;
  return *this;
}

ClException::~ClException() {
  if (m_bOwnsComment) delete[] m_szComment;
}

void ClException::SetComment(const char* szComment) {
  if (!m_bOwnsComment) {
    // Without ownership the comment is only ever read.
    m_szComment = const_cast<char*>(szComment);
    return;
  }
  char* szCopy = Duplicate(szComment);
  delete[] m_szComment;
  m_szComment = szCopy;
}

int ClException::SetCommentV(const char* szFormat, ...) {
  va_list aArguments;
  va_start(aArguments, szFormat);
  va_list aAgain;
  va_copy(aAgain, aArguments);
  const int nLength = std::vsnprintf(nullptr, 0, szFormat, aArguments);
  va_end(aArguments);
  const size_t nSize = nLength < 0 ? 0 : static_cast<size_t>(nLength) + 1;
  char* szComment = nSize == 0 ? nullptr : new (std::nothrow) char[nSize];
  if (szComment != nullptr) std::vsnprintf(szComment, nSize, szFormat, aAgain);
  va_end(aAgain);
  if (szComment == nullptr) RaiseNoRoomForComment();
  // The new text is made before the old one is freed, since that may be among the arguments.
  if (m_bOwnsComment) delete[] m_szComment;
  m_bOwnsComment = true;
  m_szComment = szComment;
  return nLength;
}

ClExSystem::ClExSystem(const char* szText, const char* szFile, long nLine)
    : ClException(-105, false, szFile, nLine) {
  const int nError = errno;
  SetCommentV("%s\n%s", std::strerror(nError), OrEmpty(szText));
}

ClExFilesystem::ClExFilesystem(const char* szText, long nNumber, const char* szFile, long nLine)
    : ClExSystem(szText, szFile, nLine) {
  SetNumber(nNumber);
}

ClExDynamicLibraryLoadFail::ClExDynamicLibraryLoadFail(const char* szText, long nNumber, const char* szFile,
                                                       long nLine)
    : ClExFilesystem(szText, nNumber, szFile, nLine) {
  SetCommentV("%s\n%s", OrEmpty(dlerror()), OrEmpty(szText));
}
