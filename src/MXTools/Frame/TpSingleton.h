// The one, reference-counted instance of an SDK's class.
#pragma once

#include <atomic>
#include <boost/thread/mutex.hpp>
#include <exception>

#include "MXTools/Failure.h"

/// Domain     T has OnInitialize and OnUninitialize.
/// Ownership  the instance lives from the first New to the last PrivateDelete.
/// Threads    thread-safe: one mutex guards count and instance, and is held during OnInitialize and
///            OnUninitialize.
template <typename T>
class TpSingleton {
 public:
  virtual ~TpSingleton() = default;

  /// The instance, created on first use; counts a reference. What OnInitialize raises passes on with nothing
  /// counted.
  static T* New() {
    boost::unique_lock<boost::mutex> oLock(m_oReferenceMutex);
    ++m_nReferenceCount;
    if (m_pInstance != nullptr) return m_pInstance;
    TpUndo oUndo([] { PrivateDelete(); });
    m_pInstance = new T;
    m_pInstance->OnInitialize();
    oUndo.Dismiss();
    return m_pInstance;
  }

  /// References counted so far.
  static unsigned int ReferenceCount() { return m_nReferenceCount; }

 protected:
  /// Drops one reference. The mutex is held by the caller. Errors: -2 when there is none.
  static void PrivateDelete() {
    if (m_nReferenceCount == 0) KLV_RAISE(ClException, "No Singleton Instance exist multiple delete.", -2);
    if (--m_nReferenceCount != 0) return;
    if (m_pInstance == nullptr) return;
    m_pInstance->OnUninitialize();
    delete m_pInstance;
    m_pInstance = nullptr;
  }

  static T* m_pInstance;                               // guarded by m_oReferenceMutex
  static std::atomic<unsigned int> m_nReferenceCount;  // written under m_oReferenceMutex
  /// Never destroyed: a thread may still be in here while the process ends.
  static boost::mutex& m_oReferenceMutex;
};

template <typename T>
T* TpSingleton<T>::m_pInstance = nullptr;
template <typename T>
std::atomic<unsigned int> TpSingleton<T>::m_nReferenceCount{0};
template <typename T>
boost::mutex& TpSingleton<T>::m_oReferenceMutex = *new boost::mutex;
