// The opaque handles of the exported functions: records by which a valid handle is known from a wrong one.
#pragma once

#include <boost/thread/mutex.hpp>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>

#include "MXTools/Exception.h"

/// The memory that an application's void* points to.
///
/// Ownership  the record owns the object until DeleteHandle. Records of deleted handles are wiped and stay
///            readable, so that a handle that was closed is recognised instead of being read from freed
///            memory. The same pointer is a handle again only after cnRetired * cnGenerations others were
///            deleted.
/// Threads    thread-safe as long as no handle is used while it is deleted.
/// Errors     -42 NULL, -43 no handle of this kind.
template <typename T, const char (&aSignature1)[8], const char (&aSignature2)[8]>
class TpSafeHandle {
 public:
  /// Makes a record with a new T. Errors: -44 ph NULL. Returns -102 when memory ran out.
  static long CreateHandle(void** ph) {
    if (ph == nullptr) KLV_RAISE_NUMBER(-44);
    try {
      auto pObject = std::make_unique<T>();
      TpSafeHandle* pRecord = NewRecord();
      pRecord->m_pObject = pObject.release();
      std::memcpy(pRecord->m_szSignature1, aSignature1, sizeof(aSignature1));
      std::memcpy(pRecord->m_szSignature2, aSignature2, sizeof(aSignature2));
      *ph = pRecord;
      return 0;
    } catch (const ClExBadAlloc&) {
      return -102;
    } catch (const std::bad_alloc&) {
      return -102;
    }
  }

  /// The object of a handle.
  static void CheckHandle(void* h, T** ppObject) {
    if (h == nullptr) KLV_RAISE_NUMBER(-42);
    *ppObject = nullptr;
    const TpSafeHandle* pRecord = static_cast<const TpSafeHandle*>(h);
    // No record begins where a pointer may not lie.
    const bool bAligned = reinterpret_cast<uintptr_t>(h) % alignof(TpSafeHandle) == 0;
    const bool bValid = bAligned &&
                        std::memcmp(pRecord->m_szSignature1, aSignature1, sizeof(aSignature1)) == 0 &&
                        std::memcmp(pRecord->m_szSignature2, aSignature2, sizeof(aSignature2)) == 0 &&
                        pRecord->m_pObject != nullptr;
    if (!bValid) KLV_RAISE_NUMBER(-43);
    *ppObject = pRecord->m_pObject;
  }

  /// Deletes the object and wipes the record.
  static void DeleteHandle(void* h) {
    T* pObject = nullptr;
    CheckHandle(h, &pObject);
    TpSafeHandle* pRecord = static_cast<TpSafeHandle*>(h);
    pRecord->Wipe();
    delete pObject;
    RetireRecord(pRecord);
  }

  /// The same with the number as result; *ph becomes NULL on success.
  static long DeleteHandle(void** ph) {
    try {
      DeleteHandle(*ph);
    } catch (const ClException& oFailure) {
      return oFailure.Number();
    }
    *ph = nullptr;
    return 0;
  }

 private:
  /// Closed handles of as many slots stay recognisable; then the slot whose handle was closed first is used
  /// again, with its next record.
  static constexpr size_t cnRetired = 64;
  static constexpr size_t cnGenerations = 42;
  static constexpr size_t cnSlotSize = 1024;

  /// Room for the handles of one scanner after the other: only the record in use is not wiped. A record finds
  /// its slot by its address.
  struct StSlot;

  /// A ring, all of it guarded by the mutex.
  struct StRetired {
    boost::mutex oMutex;
    StSlot* apSlots[cnRetired] = {};
    size_t nOldest = 0;
    size_t nSlots = 0;
  };

  static StRetired& Retired() {
    // Never destroyed: handles may be closed while the process ends.
    static StRetired& oRetired = *new StRetired;
    return oRetired;
  }

  static TpSafeHandle* NewRecord() {
    static_assert(sizeof(StSlot) == cnSlotSize, "a slot is found by the upper bits of an address");
    StRetired& oRetired = Retired();
    boost::unique_lock<boost::mutex> oLock(oRetired.oMutex);
    StSlot* pSlot = oRetired.nSlots < cnRetired ? new StSlot : TakeOldest(oRetired);
    return &pSlot->aRecords[pSlot->nUsed++ % cnGenerations];
  }

  static StSlot* SlotOf(TpSafeHandle* pRecord) {
    return reinterpret_cast<StSlot*>(reinterpret_cast<uintptr_t>(pRecord) & ~uintptr_t{cnSlotSize - 1});
  }

  static void RetireRecord(TpSafeHandle* pRecord) {
    StRetired& oRetired = Retired();
    boost::unique_lock<boost::mutex> oLock(oRetired.oMutex);
    if (oRetired.nSlots == cnRetired) delete TakeOldest(oRetired);
    oRetired.apSlots[(oRetired.nOldest + oRetired.nSlots++) % cnRetired] = SlotOf(pRecord);
  }

  static StSlot* TakeOldest(StRetired& oRetired) {
    StSlot* pSlot = oRetired.apSlots[oRetired.nOldest];
    oRetired.nOldest = (oRetired.nOldest + 1) % cnRetired;
    --oRetired.nSlots;
    return pSlot;
  }

  void Wipe() {
    std::memset(m_szSignature1, 0, sizeof(m_szSignature1));
    std::memset(m_szSignature2, 0, sizeof(m_szSignature2));
    m_pObject = nullptr;
  }

  char m_szSignature1[8] = {};
  T* m_pObject = nullptr;
  char m_szSignature2[8] = {};
};

template <typename T, const char (&aSignature1)[8], const char (&aSignature2)[8]>
struct alignas(1024) TpSafeHandle<T, aSignature1, aSignature2>::StSlot {
  TpSafeHandle aRecords[cnGenerations];
  size_t nUsed = 0;  ///< records handed out so far, all generations over
};
