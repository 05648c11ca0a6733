// A mutex that serves its callers in the order in which they came.
#pragma once

#include <boost/thread/condition_variable.hpp>
#include <boost/thread/thread_only.hpp>

#include "MXTools/MonotonicClock.h"
#include "MXTools/Mutex.h"

/// For a resource that one thread takes again and again: it could win a plain mutex every time, while here a
/// waiting thread is next.
///
/// Threads  thread-safe. Waiting is no interruption point. Not recursive; any thread may unlock.
class KLV_CAPABILITY("mutex") ClTicketMutex {
 public:
  void lock() KLV_ACQUIRE() {
    lock([] {});
  }
  /// Calls fnLook now and then while it waits; it must raise nothing.
  template <typename TLook>
  void lock(TLook&& fnLook) KLV_ACQUIRE() {
    boost::this_thread::disable_interruption oNoInterruption;
    TpLock oLock(m_oMutex);
    const unsigned int nTicket = m_nNextTicket++;
    while (nTicket != m_nServed) {
      if (Klv::WaitOnce(m_oCondition, oLock, boost::posix_time::milliseconds(cnLookMs))) continue;
      oLock.unlock();
      fnLook();
      oLock.lock();
    }
  }

  void unlock() KLV_RELEASE() {
    TpLock oLock(m_oMutex);
    ++m_nServed;
    m_oCondition.notify_all();
  }

 private:
  static constexpr long cnLookMs = 100;

  ClMutex m_oMutex;
  boost::condition_variable_any m_oCondition;
  unsigned int m_nNextTicket KLV_GUARDED_BY(m_oMutex) = 0;
  unsigned int m_nServed KLV_GUARDED_BY(m_oMutex) = 0;
};
