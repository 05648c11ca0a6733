// What a stream in memory holds.
#pragma once

#include <vector>

#include "MXTools/MemStream.h"

using Bytes = std::vector<unsigned char>;

inline Bytes Content(const ClMemStream& oStream) {
  return Bytes(oStream.GetData(), oStream.GetData() + oStream.Size());
}

/// What an object stores.
template <typename TStored>
Bytes Stored(const TStored& oStored) {
  ClMemStream oStream;
  oStored.Store(oStream);
  return Content(oStream);
}
