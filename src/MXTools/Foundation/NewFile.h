// A file that appears under its name when it is whole.
#pragma once

#include <string>

/// The content is written to another file of the same folder, which Keep renames: whoever reads the name
/// finds the old content or the new one, whatever fails in between.
///
/// Domain     any name; a link, a pipe, a device, and a file in a folder where no other can be made are
///            written in place.
/// Ownership  the destructor removes what was not kept.
/// Threads    thread-bound; several may write the same name, and the last one stays.
/// Errors     of Keep: ClExSystem with the name. Until then WrittenName is what fails to open or to be
///            written.
class ClNewFile {
 public:
  /// NULL is passed on to whoever opens it.
  explicit ClNewFile(const char* szName);
  ClNewFile(const ClNewFile&) = delete;
  ClNewFile& operator=(const ClNewFile&) = delete;
  ~ClNewFile();

  /// Where the content goes. The file must be closed before Keep.
  const char* WrittenName() const { return m_szPart.empty() ? m_szName : m_szPart.c_str(); }
  /// An existing file's permissions stay.
  void Keep();

 private:
  const char* m_szName;
  std::string m_szPart;  // empty when the file is written in place
};
