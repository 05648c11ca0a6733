// Compression and writing.
#include "format/BlockWriter.h"

#include <unistd.h>
#include <zlib.h>
#include <zstd.h>

#include <cerrno>

namespace Recording {
namespace {

// Raw frames are noise to a third of their bits. Level 3 takes 1.7 times as long and saves a hundredth;
// differences of neighbours, which help pictures without noise, make them a tenth longer.
constexpr int cnLevel = 1;

}  // namespace

struct ClBlockWriter::StCompressor {
  ZSTD_CCtx* pContext = ZSTD_createCCtx();
  ~StCompressor() { ZSTD_freeCCtx(pContext); }
};

uint32_t Checksum(const void* pData, size_t nBytes) {
  return static_cast<uint32_t>(crc32_z(crc32_z(0, nullptr, 0), static_cast<const Bytef*>(pData), nBytes));
}

ClBlockWriter::ClBlockWriter(int nFile, uint16_t nFlags, int64_t nStart)
    : m_nFile(nFile), m_pCompressor(std::make_unique<StCompressor>()) {
  uint8_t aHeader[cnFileHeader] = {};
  std::memcpy(aHeader, cacFileMark, sizeof cacFileMark);
  Store(aHeader + 8, cnVersion, 2);
  Store(aHeader + 10, nFlags, 2);
  Store(aHeader + 16, static_cast<uint64_t>(nStart), 8);
  Store(aHeader + 28, Checksum(aHeader, 28), 4);
  if (WriteAll(aHeader, sizeof aHeader)) m_nWhole = cnFileHeader;
}

ClBlockWriter::~ClBlockWriter() {
  close(m_nFile);
}

uint32_t ClBlockWriter::Write(EBlock eKind, const void* pContent, size_t nBytes) {
  return WriteBlock(eKind, eCodingPlain, pContent, nBytes, nBytes);
}

uint32_t ClBlockWriter::WriteCompressed(EBlock eKind, const void* pContent, size_t nBytes) {
  if (m_nFailure != 0 || nBytes > cnLargestContent) return cnDroppedData;
  m_aStored.resize(ZSTD_compressBound(nBytes));
  const size_t nStored = ZSTD_compressCCtx(m_pCompressor->pContext, m_aStored.data(), m_aStored.size(),
                                           pContent, nBytes, cnLevel);
  if (ZSTD_isError(nStored) || nStored > nBytes) return Write(eKind, pContent, nBytes);
  return WriteBlock(eKind, eCodingZstd, m_aStored.data(), nStored, nBytes);
}

uint32_t ClBlockWriter::WriteBlock(EBlock eKind, ECoding eCoding, const void* pStored, size_t nStored,
                                   size_t nContent) {
  if (m_nFailure != 0 || nContent > cnLargestContent) return cnDroppedData;
  uint8_t aHeader[cnBlockHeader] = {};
  std::memcpy(aHeader, cacBlockMark, sizeof cacBlockMark);
  aHeader[4] = eKind;
  aHeader[5] = eCoding;
  Store(aHeader + 8, nStored, 4);
  Store(aHeader + 12, nContent, 4);
  Store(aHeader + 16, m_nBlocks, 4);
  Store(aHeader + 20, Checksum(pStored, nStored), 4);
  Store(aHeader + 24, Checksum(aHeader, 24), 4);
  if (!WriteAll(aHeader, sizeof aHeader) || !WriteAll(pStored, nStored)) return cnDroppedData;
  m_nWhole += static_cast<int64_t>(cnBlockHeader + nStored);
  return m_nBlocks++;
}

bool ClBlockWriter::WriteAll(const void* pData, size_t nBytes) {
  const auto* p = static_cast<const uint8_t*>(pData);
  while (nBytes > 0 && m_nFailure == 0) {
    const ssize_t nWritten = write(m_nFile, p, nBytes);
    if (nWritten < 0 && errno == EINTR) continue;
    if (nWritten <= 0) {
      m_nFailure = nWritten < 0 ? errno : ENOSPC;
      // The part of a block that fitted is taken back. What is no regular file keeps it, and readers stop
      // there.
      if (ftruncate(m_nFile, m_nWhole) != 0) return false;
      break;
    }
    p += nWritten;
    nBytes -= static_cast<size_t>(nWritten);
  }
  return m_nFailure == 0;
}

}  // namespace Recording
