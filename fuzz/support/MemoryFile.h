// A file that stands in memory, for readers that take nothing but a path.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include "FuzzTarget.h"

class ClMemoryFile {
 public:
  ClMemoryFile() : m_nFile(memfd_create("fuzz", 0)) { Require(m_nFile >= 0, "there is a file in memory"); }
  explicit ClMemoryFile(const Bytes& aContent) : ClMemoryFile() {
    Require(write(m_nFile, aContent.data(), aContent.size()) == static_cast<ssize_t>(aContent.size()),
            "the file takes the input");
  }
  ClMemoryFile(const ClMemoryFile&) = delete;
  ClMemoryFile& operator=(const ClMemoryFile&) = delete;
  ~ClMemoryFile() { close(m_nFile); }

  std::string Path() const { return "/proc/self/fd/" + std::to_string(m_nFile); }
  /// What was written to the path.
  Bytes Content() const {
    const off_t nSize = lseek(m_nFile, 0, SEEK_END);
    Bytes aContent(static_cast<size_t>(nSize));
    Require(pread(m_nFile, aContent.data(), aContent.size(), 0) == nSize, "the file can be read");
    return aContent;
  }

 private:
  int m_nFile;
};
