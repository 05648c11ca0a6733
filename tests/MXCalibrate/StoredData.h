// Calibration data read from bytes and written into them.
#pragma once

#include "CalibrationBlocks.h"
#include "Raised.h"
#include "StreamContent.h"

template <typename TData>
long Read(TData& oData, const Bytes& aBytes) {
  ClMemStream oStream(aBytes.data(), static_cast<unsigned int>(aBytes.size()));
  return NumberOf([&] { oData.Read(oStream); });
}

template <typename TData>
Bytes Written(TData& oData) {
  ClMemStream oStream;
  oData.Write(oStream);
  return Content(oStream);
}

inline Bytes Cut(const Bytes& aBytes, size_t nLength) {
  return Bytes(aBytes.begin(), aBytes.begin() + static_cast<long>(nLength));
}
