// An owned array of fixed length.
#pragma once

#include <cstdint>
#include <new>

#include "MXTools/Exception.h"

/// Domain     any default-constructible T.
/// Ownership  owns its entries; neither copied nor assigned.
/// Threads    thread-bound.
/// Errors     ClExBadAlloc -102.
template <typename T>
class TpArrayStatic {
 public:
  TpArrayStatic() = default;
  explicit TpArrayStatic(unsigned int nEntries) { TpArrayStatic::New(nEntries); }
  TpArrayStatic(const TpArrayStatic&) = delete;
  TpArrayStatic& operator=(const TpArrayStatic&) = delete;
  virtual ~TpArrayStatic() { delete[] m_pData; }

  virtual unsigned int Entries() const { return m_nCapacity; }

  /// Frees the entries and makes nEntries new ones; 0 leaves a null pointer. After a failure the array is
  /// empty.
  virtual void New(unsigned int nEntries) {
    delete[] m_pData;
    m_pData = nullptr;
    m_nCapacity = 0;
    m_pData = Allocate(nEntries);
    m_nCapacity = nEntries;
  }

  /// Destroys the entries; the capacity keeps its value.
  virtual void Clear() {
    delete[] m_pData;
    m_pData = nullptr;
  }

  unsigned int Capacity() const { return m_nCapacity; }
  T* Data() { return m_pData; }
  const T* Data() const { return m_pData; }
  T& operator[](unsigned int nIndex) { return m_pData[nIndex]; }
  const T& operator[](unsigned int nIndex) const { return m_pData[nIndex]; }

 protected:
  static T* Allocate(unsigned int nEntries) {
    if (nEntries == 0) return nullptr;
    // A count from a file must not wrap the byte size where size_t has 32 bits.
    if (nEntries > PTRDIFF_MAX / sizeof(T)) KlvRaiseBadAlloc();
    T* pData = new (std::nothrow) T[nEntries]();
    if (pData == nullptr) KlvRaiseBadAlloc();
    return pData;
  }

  unsigned int m_nCapacity = 0;
  T* m_pData = nullptr;
};
