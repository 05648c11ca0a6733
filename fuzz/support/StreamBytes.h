// For targets of the library: streams as bytes, and failures that are answers.
#pragma once

#include "FuzzTarget.h"
#include "MXTools/Exception.h"
#include "MXTools/MemStream.h"

template <typename TCall>
bool Refused(TCall&& fnCall) {
  return RefusedWith<ClException>(fnCall);
}

/// What fnWrite(ClStream&) writes.
template <typename TWrite>
Bytes Written(TWrite&& fnWrite) {
  ClMemStream oStream;
  fnWrite(oStream);
  return Bytes(oStream.GetData(), oStream.GetData() + oStream.Size());
}

/// A stream over bytes that outlive it.
class ClBytesStream : public ClMemStream {
 public:
  explicit ClBytesStream(const Bytes& aBytes)
      : ClMemStream(aBytes.data(), static_cast<unsigned int>(aBytes.size())) {}
};
