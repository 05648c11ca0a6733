// How processors make new instances of themselves.
#pragma once

#include <new>

#include "MXTools/Exception.h"

/// A new instance, owned by the caller. Errors: ClExBadAlloc -102.
template <typename TProcessor>
TProcessor* MakeProcessor() {
  TProcessor* pProcessor = new (std::nothrow) TProcessor;
  if (pProcessor == nullptr) KlvRaiseBadAlloc();
  return pProcessor;
}
