// What a long check found, as a file from which docs/reliability.md is made.
#pragma once

#include <cstdint>
#include <string>

namespace Reliability {

/// One row of the table. A program that is to write none has no path.
struct StResult {
  std::string sRow;
  uint64_t nCount = 0;
  uint64_t nSeed = 0;
  double dSeconds = 0.0;
  uint64_t nFindings = 0;
  std::string sNote;
  std::string sMore;  ///< further members, as JSON that begins with a comma

  /// Prints the row, and writes it as a whole file if there is a path. False when that fails.
  bool Report(const std::string& sPath) const;
};

/// Which compiler and sanitizer built the program.
std::string BuildName();

/// Threads and open files of this process, and its memory after all that is free was given back.
struct StResources {
  int nThreads = 0;
  int nFiles = 0;
  long nKilobytes = 0;

  static StResources Now();
};

}  // namespace Reliability
