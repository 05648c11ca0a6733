// A library that is loaded while the program runs.
#pragma once

#include <boost/noncopyable.hpp>
#include <string>
#include <type_traits>

/// Ownership  holds the library from Open to Close.
/// Threads    thread-bound.
/// Errors     ClExDynamicLibraryLoadFail: -200 when it can't be opened, -206 for a missing function, -204
///            when it can't be closed; each with the linker's text.
class ClDynamicLibrary : private boost::noncopyable {
 public:
  ClDynamicLibrary() = default;
  explicit ClDynamicLibrary(const char* szPath) { Open(szPath); }
  virtual ~ClDynamicLibrary();

  /// Closes the library before, if there is one.
  void Open(const char* szPath);
  void Close();
  bool IsOpen() const { return m_hModule != nullptr; }

  template <typename F>
  void GetFunction(F& rFunction, const char* szName) const {
    rFunction = Cast<F>(RequireSymbol(szName));
  }
  /// NULL for a function that the library has not.
  template <typename F>
  void GetOptionalFunction(F& rFunction, const char* szName) const {
    rFunction = Cast<F>(FindSymbol(szName));
  }

  /// The path of the library as the linker has it; of this library itself when closed.
  void GetPathName(char* szPath, unsigned int nSize) const;
  /// The path of the module that holds the address; NULL means this library. Errors: -204 for an address in
  /// no module, ClExKelvarin -21 for a path that does not fit.
  static void GetPathNameModule(void* pAddress, char* szPath, unsigned int nSize);

 private:
  template <typename F>
  static F Cast(void* pSymbol) {
    static_assert(std::is_pointer<F>::value, "a function pointer");
    return reinterpret_cast<F>(pSymbol);
  }
  void* FindSymbol(const char* szName) const;
  void* RequireSymbol(const char* szName) const;

  void* m_hModule = nullptr;
  std::string m_szPath;
};
