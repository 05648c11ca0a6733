// Listing of directories.
#pragma once

#include <dirent.h>

#include <boost/noncopyable.hpp>
#include <boost/scoped_ptr.hpp>
#include <string>

#include "MXTools/WildCard.h"

namespace FileSystem {

/// Goes through the entries of one directory whose names match a pattern.
///
/// Range      "." and ".." are entries too; a directory that can't be read has none.
/// Ownership  holds the directory open from First to Close.
/// Threads    thread-bound.
/// Errors     ClException -44 for a pattern without a directory; ClExKelvarin -21 for one of 1024 characters
///            or more.
class ClFindFile : private boost::noncopyable {
 public:
  ClFindFile() = default;
  explicit ClFindFile(const char* szPattern) { First(szPattern); }
  virtual ~ClFindFile() { Close(); }

  /// Both return whether there is an entry.
  bool First(const char* szPattern);
  bool Next();
  void Close();
  bool HasEntry() const { return m_bEntry; }

  const char* Name() const { return m_szName.c_str(); }
  /// Ends with a separator.
  const char* GetDirectoryName() const { return m_szDirectory.c_str(); }
  bool IsDirectory() const;
  /// A directory other than "." and "..".
  bool IsSubDirectory() const;
  /// Anything but a regular file.
  bool IsSystemFile() const { return m_nType != cnRegularFile; }

  static void ReplaceBackSlashes(char* szText);

 private:
  static constexpr unsigned char cnRegularFile = 8;

  bool m_bEntry = false;
  boost::scoped_ptr<ClWildCard> m_pWildCard;  ///< NULL matches all
  std::string m_szDirectory;
  DIR* m_pDirectory = nullptr;
  unsigned char m_nType = 0;
  std::string m_szName;
};

}  // namespace FileSystem
