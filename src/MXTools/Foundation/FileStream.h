// A stream over a file.
#pragma once

#include <cstdio>
#include <string>

#include "MXTools/Stream.h"

/// Domain     files up to 2^31 - 1 bytes; modes as fopen takes them. Reading and writing may alternate.
/// Ownership  owns the file from Open to Close.
/// Threads    thread-bound.
/// Errors     ClExFilesystem -200 when the file can't be opened, a directory always; ClException -44 and -37
///            for missing arguments; ClExStream -204 when closing fails or a write before it came short. The
///            destructor swallows the last.
class ClFileStream : public ClStream {
 public:
  ClFileStream() = default;
  ClFileStream(const char* szName, const char* szMode) { Open(szName, szMode); }
  ClFileStream(const wchar_t* wszName, const wchar_t* wszMode) { Open(wszName, wszMode); }
  ~ClFileStream() override;

  /// Closes the file before, if there is one. Always true; failures are raised.
  bool Open(const char* szName, const char* szMode);
  bool Open(const wchar_t* wszName, const wchar_t* wszMode);
  void SetName(const char* szName);

  using ClStream::Seek;
  void Close() override;
  long Pos() const override;
  long Size() const override;
  long Seek(long nOffset, int nWhence) override;
  const char* Name() const override { return m_bNamed ? m_szName.c_str() : "No file open"; }
  bool IsSeekable() const override { return true; }
  unsigned int WriteRaw(const void* pData, unsigned int nBytes) override;
  unsigned int ReadRaw(void* pData, unsigned int nBytes) override;

 private:
  enum ELastMove { eMoveNone, eMoveRead, eMoveWrite };
  /// stdio wants a seek between a write and a read.
  void Prepare(ELastMove eMove);

  FILE* m_pFile = nullptr;
  std::string m_szName;
  bool m_bNamed = false;
  mutable ELastMove m_eLastMove = eMoveNone;
  bool m_bWriteCut = false;  ///< a write came short since Open
};
