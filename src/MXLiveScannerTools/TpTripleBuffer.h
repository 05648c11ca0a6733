// Hands the newest item from one thread to another without either waiting for the other's copy.
#pragma once

#include <boost/thread/condition_variable.hpp>

#include "MXTools/Exception.h"
#include "MXTools/MonotonicClock.h"
#include "MXTools/Mutex.h"

/// Three lent items: one is written, one is read, one is ready.
///
/// Domain     one writer and one reader at a time.
/// Range      a reader gets the newest item; items that were overwritten before it came are lost. Before
///            anything was written it gets the second item as it was lent.
/// Ownership  the items are lent by SetBuffer and stay their owner's.
/// Threads    thread-safe. Items are touched outside the lock: flags and indices keep reader and writer
///            apart.
/// Errors     -50 when a side is taken twice, or the items are changed while a side is taken.
template <typename T>
class ClTpTripleBuffer {
 public:
  ClTpTripleBuffer() = default;
  ClTpTripleBuffer(const ClTpTripleBuffer&) = delete;
  ClTpTripleBuffer& operator=(const ClTpTripleBuffer&) = delete;
  virtual ~ClTpTripleBuffer() { m_oCondition.notify_all(); }

  /// Lends three items and forgets what was written before.
  void SetBuffer(T* p0, T* p1, T* p2) {
    TpLock oLock(m_oLock);
    if (m_bReadLocked || m_bWriteLocked) {
      KLV_RAISE(ClException, "cannot change buffer while it is locked", -50);
    }
    m_pBuffers[0] = p0;
    m_pBuffers[1] = p1;
    m_pBuffers[2] = p2;
    m_bNewData = false;
  }

  /// The item to write next; it is the writer's until ReleaseWrite or CancelWrite.
  T* GetWrite() {
    TpLock oLock(m_oLock);
    if (m_bWriteLocked) KLV_RAISE(ClException, "write buffer already locked", -50);
    m_bWriteLocked = true;
    return m_pBuffers[m_nWrite];
  }

  /// Publishes what was written.
  void ReleaseWrite() {
    TpLock oLock(m_oLock);
    const int nOldReady = m_nReady;
    m_nReady = m_nWrite;
    if (m_bReadLocked && m_nPrevRead != m_nRead) {
      // This is the first publication during a read: the item that the reader had before is free and is
      // written next. The one that is being read takes its role when the read ends.
      m_nWrite = m_nPrevRead;
      m_nPrevRead = m_nRead;
    } else {
      m_nWrite = nOldReady;
    }
    m_bWriteLocked = false;
    m_bNewData = true;
    m_oCondition.notify_all();
  }

  /// Gives the item back without publishing it.
  void CancelWrite() {
    TpLock oLock(m_oLock);
    m_bWriteLocked = false;
  }

  /// The newest item; it is the reader's until ReleaseRead.
  T* GetRead() {
    TpLock oLock(m_oLock);
    if (m_bReadLocked) KLV_RAISE(ClException, "read buffer already locked", -50);
    m_bReadLocked = true;
    m_nPrevRead = m_nRead;
    m_nRead = m_nReady;
    m_bNewData = false;
    return m_pBuffers[m_nRead];
  }

  /// Ends a read; without one it does nothing.
  void ReleaseRead() {
    TpLock oLock(m_oLock);
    if (!m_bReadLocked) return;
    m_nRead = m_nPrevRead;
    m_bReadLocked = false;
  }

  /// Waits once for up to nSeconds until something is written or InterruptWait is called; true at once when
  /// something is there. A wait may also end without a cause: ask HasNewData.
  bool WaitNewData(unsigned int nSeconds) { return WaitNewData(boost::posix_time::seconds(nSeconds)); }
  bool WaitNewData(const boost::posix_time::time_duration& oDuration) {
    TpLock oLock(m_oLock);
    return m_bNewData || Klv::WaitOnce(m_oCondition, oLock, oDuration);
  }

  /// True when something was written since the last read.
  bool HasNewData() {
    TpLock oLock(m_oLock);
    return m_bNewData;
  }

  /// Wakes all waiters and forgets what was written.
  void InterruptWait() {
    TpLock oLock(m_oLock);
    m_bNewData = false;
    m_oCondition.notify_all();
  }

 private:
  ClMutex m_oLock;
  boost::condition_variable_any m_oCondition;
  bool m_bReadLocked KLV_GUARDED_BY(m_oLock) = false;
  bool m_bWriteLocked KLV_GUARDED_BY(m_oLock) = false;
  bool m_bNewData KLV_GUARDED_BY(m_oLock) = false;
  int m_nRead KLV_GUARDED_BY(m_oLock) = 2;
  int m_nPrevRead KLV_GUARDED_BY(m_oLock) = -1;
  int m_nWrite KLV_GUARDED_BY(m_oLock) = 0;
  int m_nReady KLV_GUARDED_BY(m_oLock) = 1;
  T* m_pBuffers[3] KLV_GUARDED_BY(m_oLock) = {nullptr, nullptr, nullptr};
};

/// Takes the write side for a scope; an item that was not published is given back unpublished.
template <typename T>
class TpWriteLock {
 public:
  explicit TpWriteLock(ClTpTripleBuffer<T>& oBuffer) : m_oBuffer(oBuffer), m_pItem(oBuffer.GetWrite()) {}
  TpWriteLock(const TpWriteLock&) = delete;
  TpWriteLock& operator=(const TpWriteLock&) = delete;
  ~TpWriteLock() {
    if (m_pItem != nullptr) m_oBuffer.CancelWrite();
  }
  T& Item() { return *m_pItem; }
  void Publish() {
    m_pItem = nullptr;
    m_oBuffer.ReleaseWrite();
  }

 private:
  ClTpTripleBuffer<T>& m_oBuffer;
  T* m_pItem;
};

/// Takes the read side for a scope.
template <typename T>
class TpReadLock {
 public:
  explicit TpReadLock(ClTpTripleBuffer<T>& oBuffer) : m_oBuffer(oBuffer), m_pItem(oBuffer.GetRead()) {}
  TpReadLock(const TpReadLock&) = delete;
  TpReadLock& operator=(const TpReadLock&) = delete;
  ~TpReadLock() { Release(); }
  /// Ends the read before the scope does; the item must not be touched after it.
  void Release() {
    if (m_bHeld) m_oBuffer.ReleaseRead();
    m_bHeld = false;
  }
  T& Item() { return *m_pItem; }

 private:
  ClTpTripleBuffer<T>& m_oBuffer;
  T* m_pItem;
  bool m_bHeld = true;
};
