// The two-line character display, whose pins hang on the last byte of the status LED register.
#pragma once

#include "MXTools/Mutex.h"

class ClMXVTScanAPIHandleBase;

/// Threads  thread-safe: one text is written after the other. Nothing is taken below its lock.
/// Errors   -103 for data that is no text; -44 for a text without data; -60 "Scanner disconnected.".
class ClVT40Display {
 public:
  /// nType 0: a text of up to 32 characters, the first line's 16 first. Takes some 200 ms.
  void Write(ClMXVTScanAPIHandleBase& oScanner, unsigned int nType, const void* pData, unsigned int nLength);

 private:
  ClMutex m_oMutex;
};
