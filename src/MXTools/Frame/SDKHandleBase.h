// The frame of every handle that an SDK gives out: its life and its properties by name.
#pragma once

#include <boost/thread/mutex.hpp>
#include <memory>

#include "MXTools/Failure.h"
#include "MXTools/HandleProperties.h"
#include "MXTools/SafeHandle.h"

/// What the handles of one SDK have in common whatever their class.
///
/// Domain  T is the concrete handle class, TSDK the SDK's singleton with its version as TSDK::m_szVersion.
template <typename T, typename TSDK>
class TSDKHandleBaseBase : public ClHandleProperties {
 public:
  ~TSDKHandleBaseBase() override = default;

  /// The object of a handle. Errors: -42, -43.
  static T* GetClassBase(void* h) {
    T* pObject = nullptr;
    T::SafeHandle::CheckHandle(h, &pObject);
    return pObject;
  }

  /// Destroys the handle and sets *ph to NULL. Errors: -44 ph NULL; -42, -43; what the destruction answers.
  static void DestroyHandle(void** ph) {
    if (ph == nullptr) throw ClException("handle reference is NULL pointer", -44, true, "Unknown", -1);
    GetClassBase(*ph)->Delete(ph);
  }

  virtual void Delete(void** ph) = 0;

 protected:
  static const char* m_szpVersion;
};

template <typename T, typename TSDK>
const char* TSDKHandleBaseBase<T, TSDK>::m_szpVersion = TSDK::m_szVersion;

/// Creation, destruction and the property tree of a concrete handle class T.
///
/// Ownership  the handle owns its property tree; the application owns the handle until DestroyHandle. The
///            SDK keeps no list of open handles.
/// Threads    property calls are thread-safe as far as the bound values are.
template <typename T, typename TSDK, typename TBase>
class TSDKHandleBase : public TBase {
 public:
  struct DefaultSignature_t {
    static constexpr const auto& m_szSignatures = T::m_szSignature;
  };

  ~TSDKHandleBase() override = default;

  /// Makes a handle. Errors: -2 before initialisation; -701 ph NULL; -102.
  static void CreateHandle(void** ph) {
    if (TSDK::ReferenceCount() == 0) {
      throw ClException("Initialization required prior to handle creation", -2, true, "Unknown", -1);
    }
    if (ph == nullptr) throw ClException("handle reference is NULL pointer", -701, true, "Unknown", -1);
    *ph = nullptr;
    KLV_CHECK(T::SafeHandle::CreateHandle(ph));
    T::GetClassBase(*ph)->OnCreateHandle();
  }

  void Delete(void** ph) override {
    if (ph == nullptr) KLV_RAISE_NUMBER(-44);
    T::GetClassBase(*ph)->OnDestroyHandle();
    KLV_CHECK(T::SafeHandle::DeleteHandle(ph));
  }

  virtual void OnCreateHandle() {}
  virtual void OnDestroyHandle() {}

 protected:
  const char* VersionText() const override { return TBase::m_szpVersion; }
};
