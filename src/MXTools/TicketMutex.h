// A mutex that serves its callers in the order in which they came.
#pragma once

#include <boost/thread/condition_variable.hpp>
#include <boost/thread/mutex.hpp>

/// For a resource that one thread takes again and again: with a plain mutex that thread can win every time,
/// here whoever waits is next.
///
/// Threads  thread-safe. Waiting is no interruption point. Not recursive; any thread may unlock.
class ClTicketMutex {
 public:
  void lock() {
    boost::this_thread::disable_interruption oNoInterruption;
    boost::unique_lock<boost::mutex> oLock(m_oMutex);
    const unsigned int nTicket = m_nNextTicket++;
    while (nTicket != m_nServed) m_oCondition.wait(oLock);
  }

  void unlock() {
    boost::unique_lock<boost::mutex> oLock(m_oMutex);
    ++m_nServed;
    m_oCondition.notify_all();
  }

 private:
  boost::mutex m_oMutex;
  boost::condition_variable m_oCondition;
  unsigned int m_nNextTicket = 0;  // guarded by m_oMutex
  unsigned int m_nServed = 0;      // guarded by m_oMutex
};
