// Bitmaps as files in memory.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <utility>

#include "MXTools/Bitmap.h"
#include "Raised.h"
#include "StreamContent.h"

/// Appends numbers, lowest byte first, each with its size.
inline void Append(Bytes& rBytes, std::initializer_list<std::pair<uint32_t, unsigned int>> aNumbers) {
  for (const auto& [nValue, nSize] : aNumbers) {
    for (unsigned int n = 0; n < nSize; ++n) rBytes.push_back(static_cast<unsigned char>(nValue >> (8 * n)));
  }
}

/// The number with which a file is refused, 0 for none. The stream is left as it was.
inline long Load(ClBitmap& rBitmap, const Bytes& aFile) {
  ClMemStream oStream(aFile.data(), static_cast<unsigned int>(aFile.size()));
  const long nNumber = NumberOf([&] { rBitmap.Load(oStream); });
  EXPECT_TRUE(oStream.GetBigEndian() && !oStream.m_bFailureFlag);
  return nNumber;
}
