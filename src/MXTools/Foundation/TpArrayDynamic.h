// An owned array that grows by a fixed step.
#pragma once

#include <memory>

#include "MXTools/TpArrayStatic.h"

/// Domain     any default-constructible, assignable T; N is the growth step, at least 1.
/// Ownership  owns its entries; copies are made with CopyFrom only.
/// Threads    thread-bound.
/// Errors     ClExBadAlloc -102; the array is then as it was.
/// Cost       a growth assigns all entries across; where the number of entries is known, New avoids that.
template <typename T, unsigned int N>
class TpArrayDynamic : public TpArrayStatic<T> {
 public:
  unsigned int Entries() const override { return m_nEntries; }

  /// Frees the entries and makes nEntries new ones, all of them in use.
  void New(unsigned int nEntries) override {
    m_nEntries = 0;
    TpArrayStatic<T>::New(nEntries);
    m_nEntries = nEntries;
  }

  /// Takes the entries out of use and keeps the block.
  void Clear() override { m_nEntries = 0; }

  /// Appends an entry. The value may be an entry of this array.
  void Add(const T& oValue) {
    if (m_nEntries == this->m_nCapacity) {
      const T oCopy = oValue;
      Grow(this->m_nCapacity + N);
      this->m_pData[m_nEntries] = oCopy;
    } else {
      this->m_pData[m_nEntries] = oValue;
    }
    ++m_nEntries;
  }

  /// Sets the number of entries in use; the first entries keep their values, the capacity never shrinks.
  void SetEntries(unsigned int nEntries) {
    if (nEntries > this->m_nCapacity) Grow(nEntries);
    m_nEntries = nEntries;
  }

  /// Takes the entry out and moves those after it down by one.
  void RemoveAt(unsigned int nIndex) {
    for (unsigned int n = nIndex + 1; n < m_nEntries; ++n) this->m_pData[n - 1] = this->m_pData[n];
    --m_nEntries;
  }

  template <unsigned int M>
  void CopyFrom(const TpArrayDynamic<T, M>& oOther) {
    if (static_cast<const void*>(this) == static_cast<const void*>(&oOther)) return;
    SetEntries(oOther.Entries());
    for (unsigned int n = 0; n < m_nEntries; ++n) this->m_pData[n] = oOther[n];
  }

 private:
  void Grow(unsigned int nCapacity) {
    if (nCapacity < this->m_nCapacity) KlvRaiseBadAlloc();
    std::unique_ptr<T[]> pData(TpArrayStatic<T>::Allocate(nCapacity));
    for (unsigned int n = 0; n < m_nEntries; ++n) pData[n] = this->m_pData[n];
    delete[] this->m_pData;
    this->m_pData = pData.release();
    this->m_nCapacity = nCapacity;
  }

  unsigned int m_nEntries = 0;
};
