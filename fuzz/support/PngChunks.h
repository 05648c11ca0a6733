// The checksums of PNG files.
#pragma once

#include <zlib.h>

#include "FuzzTarget.h"

/// The same with the checksums of its chunks put right as far as their lengths lead.
inline Bytes WithRightChecksums(Bytes aFile) {
  const auto Put = [&](size_t nAt, uint32_t nValue) {
    for (size_t n = 0; n < 4; ++n) aFile[nAt + n] = static_cast<uint8_t>(nValue >> (24 - 8 * n));
  };
  // After the signature come length, type, data and checksum of each chunk.
  for (size_t nChunk = 8; nChunk + 12 <= aFile.size();) {
    uint64_t nLength = 0;
    for (size_t n = 0; n < 4; ++n) nLength = nLength << 8 | aFile[nChunk + n];
    if (nLength > aFile.size() - nChunk - 12) break;
    const size_t nData = static_cast<size_t>(nLength);
    Put(nChunk + 8 + nData,
        static_cast<uint32_t>(crc32(0, &aFile[nChunk + 4], static_cast<uInt>(4 + nData))));
    nChunk += 12 + nData;
  }
  return aFile;
}
