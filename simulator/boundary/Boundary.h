// What the exported functions of the simulated libraries share: nothing but numbers leaves a library.
#pragma once

#include <cstring>
#include <new>
#include <string>

#include "scene/SimError.h"

namespace Simulator {

/// Keeps the reason of this thread's last failure.
void SetLastError(const char* szText) noexcept;
const char* GetLastErrorText() noexcept;

/// Runs an operation and returns 0, or the number of the failure that it threw.
template <typename F>
long Guarded(F&& fnOperation) noexcept {
  try {
    SetLastError("");
    fnOperation();
    return 0;
  } catch (const ClSimError& oError) {
    SetLastError(oError.what());
    return oError.Number();
  } catch (const std::bad_alloc&) {
    SetLastError("out of memory");
    return eOutOfMemory;
  } catch (const std::exception& oError) {
    SetLastError(oError.what());
    return eInternal;
  } catch (...) {
    SetLastError("unknown failure");
    return eInternal;
  }
}

inline void NeedPointer(const void* pPointer) {
  if (!pPointer) throw ClSimError(eBadPointer, "a pointer is NULL");
}

/// Hands out nCount elements through a buffer and a size, in: the room, out: the need.
///
/// Errors     -701 no size, or room without a buffer; -702 too little room.
template <typename T>
void HandOut(const T* pData, size_t nCount, T* pBuffer, unsigned* pnSize) {
  NeedPointer(pnSize);
  const unsigned nRoom = *pnSize;
  *pnSize = static_cast<unsigned>(nCount);
  if (nRoom < nCount) throw ClSimError(eTooSmall, "room for " + std::to_string(nCount) + " is needed");
  if (nCount == 0) return;
  NeedPointer(pBuffer);
  std::memcpy(pBuffer, pData, nCount * sizeof(T));
}

inline void HandOutText(const std::string& sText, char* pBuffer, unsigned* pnSize) {
  HandOut(sText.c_str(), sText.size() + 1, pBuffer, pnSize);
}

inline void HandOutText(const std::wstring& sText, wchar_t* pBuffer, unsigned* pnSize) {
  HandOut(sText.c_str(), sText.size() + 1, pBuffer, pnSize);
}

}  // namespace Simulator
