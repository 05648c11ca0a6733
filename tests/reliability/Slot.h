// A handle that several threads use, of which one may close it.
#pragma once

#include <atomic>
#include <shared_mutex>

#include "Census.h"

namespace Reliability {

/// Calls hold the lock shared; whoever opens or closes holds it alone, since closing must be the last call on
/// a handle.
struct StSlot {
  const char* szSerial;
  std::shared_mutex oMutex;
  void* h = nullptr;                ///< guarded by oMutex
  std::atomic<int> nMode{cnModes};  ///< as the last switch left it; cnModes without a scanner
};

}  // namespace Reliability
