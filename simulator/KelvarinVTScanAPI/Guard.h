// What every exported function has around it: nothing but numbers leaves the library.
#pragma once

#include <cstring>
#include <new>
#include <string>

#include "KelvarinVTScanAPI/Bus.h"
#include "scene/SimError.h"

namespace Simulator {

/// Keeps the reason of this thread's last failure.
void SetLastError(const char* szText) noexcept;
const char* GetLastErrorText() noexcept;

/// Runs an operation and answers its number: 0, or that of what it threw.
template <class F>
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

/// The same for a function of the scan library: the fault script comes first.
template <class F>
long Called(const char* szFunction, bool bTakesDevice, F&& fnOperation) noexcept {
  return Guarded([&] {
    long nResult = 0;
    if (ClBus::Get().Faults().Strikes(szFunction, bTakesDevice, nResult)) {
      if (nResult == 0) return;
      throw ClSimError(nResult, std::string("fault script: ") + szFunction);
    }
    fnOperation();
  });
}

/// The same for a function that gives something back: it does so even when it is to fail, since no host could
/// do it again.
template <class F>
long CalledToGiveBack(const char* szFunction, bool bTakesDevice, F&& fnOperation) noexcept {
  long nResult = 0;
  bool bStruck = false;
  const long nOutcome = Guarded([&] {
    bStruck = ClBus::Get().Faults().Strikes(szFunction, bTakesDevice, nResult);
    fnOperation();
  });
  return bStruck ? nResult : nOutcome;
}

/// The same for a function of an open device, which the operation gets.
template <class F>
long CalledOn(const char* szFunction, void* hDevice, F&& fnOperation) noexcept {
  return Called(szFunction, true, [&] {
    const ClBus::ClDevice oDevice = ClBus::Get().Device(hDevice);
    fnOperation(*oDevice.pScanner, oDevice.nSession);
  });
}

inline void NeedPointer(const void* pPointer) {
  if (!pPointer) throw ClSimError(eBadPointer, "a pointer is NULL");
}

/// Hands out nCount elements through a buffer and a size, in: the room, out: the need.
///
/// Errors     -701 no size, or room without a buffer; -702 too little room.
template <class T>
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
