// The frame of an SDK's singleton: initialisation by reference count and the version record.
#pragma once

#include <cstring>

#include "MXTools/MXLogging.h"
#include "MXTools/SDKHelper.h"
#include "MXTools/TpSingleton.h"

/// Domain   T has its version record in T::m_szLongVersion, "SDK: <name> Version: <version> <free text>".
/// Threads  thread-safe.
template <typename T, typename TLogging>
class TpSDKBase : public TpSingleton<T>, public TpLogging<TLogging> {
 public:
  ~TpSDKBase() override = default;

  /// What the first reference makes and the last one takes away.
  virtual void OnInitialize() {}
  virtual void OnUninitialize() {}

  /// Counts a reference; the first one initialises. Returns 0 or the number of the failure.
  static long Initialize(const char* /*pszReserved*/) {
    try {
      TpSingleton<T>::New();
      return CheckVersionRecord();
    } catch (const ClException& oFailure) {
      return oFailure.Number();
    }
  }

  /// Drops a reference; the last one uninitialises. Returns 0 or the number of the failure.
  static long Uninitialize() {
    try {
      boost::unique_lock<boost::mutex> oLock(TpSingleton<T>::m_oReferenceMutex);
      TpSingleton<T>::PrivateDelete();
      return 0;
    } catch (const ClException& oFailure) {
      return oFailure.Number();
    }
  }

  /// The version as text with its terminator, by the size negotiation of SDKHelper::GetData.
  /// Errors: -24, -21; -101 when the record is broken.
  static void GetVersion(char* pszVersion, unsigned int* pnSize) {
    const char* szMarker = std::strstr(T::m_szLongVersion, " Version: ");
    const char* szVersion = szMarker == nullptr ? nullptr : szMarker + std::strlen(" Version: ");
    const char* szEnd = szVersion == nullptr ? nullptr : std::strchr(szVersion, ' ');
    if (szEnd == nullptr) KLV_RAISE(ClException, "szVersion signature not found.", -101);
    const unsigned int nSize = static_cast<unsigned int>(szEnd - szVersion) + 1;
    SDKHelper::GetData(reinterpret_cast<unsigned char*>(pszVersion), pnSize, szVersion, nSize);
    if (pszVersion != nullptr) pszVersion[nSize - 1] = '\0';
  }

 private:
  /// A size of 0 is too small for any version: that answer shows that the record can be read.
  static long CheckVersionRecord() {
    unsigned int nSize = 0;
    try {
      GetVersion(nullptr, &nSize);
    } catch (const ClException& oFailure) {
      return oFailure.Number() == -21 ? 0 : oFailure.Number();
    }
    return 0;
  }
};
