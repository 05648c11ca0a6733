// The exceptions by which every failure travels inside the library.
#pragma once

#include <exception>

/// Raises an exception of the given class with a text of its own below the table's message.
#define KLV_RAISE(Class, szText, nNumber) throw Class(szText, nNumber, true, __FILE__, __LINE__)
/// Raises a failure of which the table's message says everything.
#define KLV_RAISE_NUMBER(nNumber) throw ClExKelvarin(nNumber, __FILE__, __LINE__)

namespace Klv {

class ClKelvarinException : public std::exception {
 public:
  virtual const char* What() const = 0;
};

class CXException : public ClKelvarinException {
 public:
  virtual const char* GetDescription() const = 0;
  const char* what() const noexcept override { return GetDescription(); }
  const char* What() const override { return GetDescription(); }
};

/// A failure of the system while the library is loaded, when nothing of its own error model can be relied on.
class CXSystemException : public CXException {
 public:
  CXSystemException();
  const char* GetDescription() const override;
  int GetErrorNumber() const { return m_nErrorNumber; }

 private:
  int m_nErrorNumber;
};

}  // namespace Klv

/// Root of the library's own failures: a number of the error table and a text.
///
/// Ownership  the comment is a private copy, or a pointer into the constant error table; the file name is
///            a literal of the raising code and is not copied.
/// Threads    thread-bound.
class ClException : public Klv::ClKelvarinException {
 public:
  /// The comment is the table's message of nNumber, copied when bOwn.
  ClException(long nNumber, bool bOwn, const char* szFile, long nLine);
  /// The comment is the table's message, a line feed and szText.
  ClException(const char* szText, long nNumber, bool bOwn, const char* szFile, long nLine);
  ClException(const ClException& oOther);
  ClException& operator=(const ClException& oOther);
  ~ClException() override;

  const char* what() const noexcept override { return What(); }
  const char* What() const override { return m_szComment; }
  long Number() const { return m_nNumber; }
  const char* File() const { return m_szFile; }
  long Line() const { return m_nLine; }

  /// Replaces the comment: a copy of the text when the comment is owned, else the pointer itself.
  void SetComment(const char* szComment);
  /// Formats a new, owned comment and returns its length. Errors: ClExBadAlloc.
  int SetCommentV(const char* szFormat, ...) __attribute__((format(printf, 2, 3)));

 protected:
  void SetNumber(long nNumber) { m_nNumber = nNumber; }

 private:
  char* m_szComment = nullptr;
  const char* m_szFile;
  long m_nLine;
  long m_nNumber;
  bool m_bOwnsComment;
};

/// A failure whose text is the table's.
class ClExKelvarin : public ClException {
 public:
  ClExKelvarin(long nNumber, const char* szFile, long nLine) : ClException(nNumber, false, szFile, nLine) {}
  explicit ClExKelvarin(const ClException& oOther) : ClException(oOther) {}
};

#define KLV_EXCEPTION_CLASS(Class, Base)                                               \
  class Class : public Base {                                                          \
   public:                                                                             \
    Class(const char* szText, long nNumber, bool bOwn, const char* szFile, long nLine) \
        : Base(szText, nNumber, bOwn, szFile, nLine) {}                                \
    explicit Class(const ClException& oOther) : Base(oOther) {}                        \
  }

KLV_EXCEPTION_CLASS(ClExBadAlloc, ClException);
KLV_EXCEPTION_CLASS(ClExRange, ClException);
KLV_EXCEPTION_CLASS(ClExStack, ClException);
KLV_EXCEPTION_CLASS(ClCodingException, ClException);
KLV_EXCEPTION_CLASS(ClExInvalid, ClException);
KLV_EXCEPTION_CLASS(ClExStream, ClException);
KLV_EXCEPTION_CLASS(ClExStreamUnexpectedEnd, ClExStream);
KLV_EXCEPTION_CLASS(ClExStreamFailToWrite, ClExStream);
KLV_EXCEPTION_CLASS(ClExStreamFailToRead, ClExStream);
KLV_EXCEPTION_CLASS(ClExStreamOpen, ClExStream);

#undef KLV_EXCEPTION_CLASS

/// A failed system call: number -105, the system's text of errno, a line feed and szText.
class ClExSystem : public ClException {
 public:
  ClExSystem(const char* szText, const char* szFile, long nLine);
  explicit ClExSystem(const ClException& oOther) : ClException(oOther) {}
};

/// A failed file operation: the text of errno with a number of the file family.
class ClExFilesystem : public ClExSystem {
 public:
  ClExFilesystem(const char* szText, long nNumber, const char* szFile, long nLine);
  explicit ClExFilesystem(const ClExSystem& oOther) : ClExSystem(oOther) {}
};

/// A failed dynamic-linker call: the linker's text, a line feed and szText.
class ClExDynamicLibraryLoadFail : public ClExFilesystem {
 public:
  ClExDynamicLibraryLoadFail(const char* szText, long nNumber, const char* szFile, long nLine);
};

/// Raises ClExBadAlloc -102 with the text that all containers share.
[[noreturn]] void KlvRaiseBadAlloc();
