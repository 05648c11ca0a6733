// The file of a recording, as it is written: blocks, each whole or not there.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "format/Layout.h"

namespace Recording {

/// Writes at the end of one file. When nothing more can be written the file ends with its last whole block,
/// and all later writes do nothing.
///
/// Ownership  the descriptor is closed at the end.
/// Threads    thread-bound.
/// Errors     none but Failure().
class ClBlockWriter {
 public:
  /// Writes the file's header. nStart are nanoseconds since 1970.
  ClBlockWriter(int nFile, uint16_t nFlags, int64_t nStart);
  ClBlockWriter(const ClBlockWriter&) = delete;
  ClBlockWriter& operator=(const ClBlockWriter&) = delete;
  ~ClBlockWriter();

  /// Stores the content as it is, and returns the block's number; cnDroppedData when it was not written.
  uint32_t Write(EBlock eKind, const void* pContent, size_t nBytes);
  /// Stores it by zstd, where that is shorter.
  uint32_t WriteCompressed(EBlock eKind, const void* pContent, size_t nBytes);

  /// The system's error number that ended the writing; 0 while there is none.
  int Failure() const { return m_nFailure; }

 private:
  struct StCompressor;

  uint32_t WriteBlock(EBlock eKind, ECoding eCoding, const void* pStored, size_t nStored, size_t nContent);
  bool WriteAll(const void* pData, size_t nBytes);

  int m_nFile;
  int m_nFailure = 0;
  uint32_t m_nBlocks = 0;
  int64_t m_nWhole = 0;  // bytes up to the end of the last whole block
  std::unique_ptr<StCompressor> m_pCompressor;
  std::vector<uint8_t> m_aStored;
};

/// CRC-32 as zlib computes it.
uint32_t Checksum(const void* pData, size_t nBytes);

}  // namespace Recording
