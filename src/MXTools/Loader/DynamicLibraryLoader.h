// A run-time library that is found along a list of directories.
#pragma once

#include <boost/thread/mutex.hpp>

#include "MXTools/DynamicLibrary.h"
#include "MXTools/FileSystem.h"

/// Threads  Open and Close are thread-safe.
/// Errors   those of ClDynamicLibrary.
class ClDynamicLibraryLoader : public ClDynamicLibrary {
 public:
  void Open(const char* szName);
  /// Opens the first hit in the directories, which are separated by ';' and relative to the working
  /// directory; without a hit, or without a list, leaves the search to the linker.
  void Open(const char* szSearchPath, const char* szName);
  void Close();

  /// The name itself when it is absolute, else the first hit. Errors: -101 for a name with directories in it,
  /// ClExFilesystem -200 when there is none, ClExKelvarin -21 when it does not fit.
  static void FindAbsoluteLibraryPath(const char* szSearchPath, const char* szName, char* szResult,
                                      unsigned int nSize);

 private:
  boost::mutex m_oMutex;  ///< guards opening, closing and m_szFound
  char m_szFound[FileSystem::cnMaxPath] = "";
};
