// A directory that lasts as long as a test.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

class ClTemporaryDirectory {
 public:
  ClTemporaryDirectory() {
    std::string szPattern = (std::filesystem::temp_directory_path() / "klvtest.XXXXXX").string();
    if (mkdtemp(szPattern.data()) == nullptr) std::abort();
    m_oPath = szPattern;
  }
  ClTemporaryDirectory(const ClTemporaryDirectory&) = delete;
  ClTemporaryDirectory& operator=(const ClTemporaryDirectory&) = delete;
  ~ClTemporaryDirectory() {
    std::error_code oIgnored;
    std::filesystem::remove_all(m_oPath, oIgnored);
  }
  /// The directory itself, or the path of a file of that name in it.
  std::string Path(const std::string& szName = "") const {
    return (szName.empty() ? m_oPath : m_oPath / szName).string();
  }

 private:
  std::filesystem::path m_oPath;
};
