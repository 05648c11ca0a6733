// A plain wrapper of a stdio file, outside the streams.
#pragma once

#include <boost/noncopyable.hpp>
#include <cstdio>
#include <string>

/// Ownership  owns the file until it is destroyed or another one is opened.
/// Threads    thread-bound.
/// Errors     ClExFilesystem -200 when the file can't be opened; ClExSystem for a failing operation, and from
///            the destructor when closing fails, unless an exception is on its way already.
class ClFile : private boost::noncopyable {
 public:
  ClFile();
  /// Backslashes of the narrow name count as slashes.
  ClFile(const char* szName, const char* szMode);
  ClFile(const wchar_t* wszName, const wchar_t* wszMode);
  virtual ~ClFile() noexcept(false);

  /// A name with slashes for its backslashes. Errors: -21 when it is too long.
  static std::string Normalized(const char* szName);
  void Open(const char* szName, const char* szMode);
  long Tell() const;
  void Seek(long nOffset, int nWhence);
  void Flush();
  /// True once a read met the end; false without a file.
  bool Eof() const;
  long Size();
  size_t Read(void* pData, size_t nBytes);
  size_t Write(const void* pData, size_t nBytes);

  /// Returns -1 for files of equal content, else the position in the first file after the first byte that
  /// differs.
  static long Compare(const char* szFile1, const char* szFile2, bool bUnused);

 private:
  void Close();

  FILE* m_pFile = nullptr;
  int m_nExceptions;
};
