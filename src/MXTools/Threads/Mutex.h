// Mutexes and locks whose use clang checks.
#pragma once

#include <boost/thread/mutex.hpp>

// What a declaration says about locks. clang reads it (-Wthread-safety), other compilers skip it. The names
// are clang's: a capability is what is held, a scoped capability holds it for its own lifetime.
#if defined(__clang__)
#define KLV_THREAD_ATTRIBUTE(...) __attribute__((__VA_ARGS__))
#else
#define KLV_THREAD_ATTRIBUTE(...)
#endif
#define KLV_CAPABILITY(szName) KLV_THREAD_ATTRIBUTE(capability(szName))
#define KLV_SCOPED_CAPABILITY KLV_THREAD_ATTRIBUTE(scoped_lockable)
#define KLV_GUARDED_BY(oMutex) KLV_THREAD_ATTRIBUTE(guarded_by(oMutex))
#define KLV_ACQUIRED_BEFORE(...) KLV_THREAD_ATTRIBUTE(acquired_before(__VA_ARGS__))
#define KLV_ACQUIRED_AFTER(...) KLV_THREAD_ATTRIBUTE(acquired_after(__VA_ARGS__))
#define KLV_REQUIRES(...) KLV_THREAD_ATTRIBUTE(requires_capability(__VA_ARGS__))
#define KLV_ACQUIRE(...) KLV_THREAD_ATTRIBUTE(acquire_capability(__VA_ARGS__))
#define KLV_RELEASE(...) KLV_THREAD_ATTRIBUTE(release_capability(__VA_ARGS__))
// For the body of a lock() or unlock() that passes the call on to a mutex inside.
#define KLV_NOT_ANALYSED KLV_THREAD_ATTRIBUTE(no_thread_safety_analysis)
#define KLV_ASSERT_CAPABILITY(x) KLV_THREAD_ATTRIBUTE(assert_capability(x))

/// Threads  thread-safe. Waiting is no interruption point. Not recursive.
class KLV_CAPABILITY("mutex") ClMutex {
 public:
  ClMutex() = default;
  ClMutex(const ClMutex&) = delete;
  ClMutex& operator=(const ClMutex&) = delete;

  void lock() KLV_ACQUIRE() { m_oMutex.lock(); }
  void unlock() KLV_RELEASE() { m_oMutex.unlock(); }

 private:
  boost::mutex m_oMutex;
};

/// Holds a mutex, or whatever else is taken by lock() and given back by unlock(), to the end of a scope. A
/// wait for a condition may give it back in between.
///
/// Threads  thread-bound.
template <typename TMutex>
class KLV_SCOPED_CAPABILITY TpLock {
 public:
  explicit TpLock(TMutex& oMutex) KLV_ACQUIRE(oMutex) : m_oMutex(oMutex) { m_oMutex.lock(); }
  TpLock(const TpLock&) = delete;
  TpLock& operator=(const TpLock&) = delete;
  ~TpLock() KLV_RELEASE() {
    if (m_bHeld) m_oMutex.unlock();
  }

  void lock() KLV_ACQUIRE() {
    m_oMutex.lock();
    m_bHeld = true;
  }
  void unlock() KLV_RELEASE() {
    m_bHeld = false;
    m_oMutex.unlock();
  }

 private:
  TMutex& m_oMutex;
  bool m_bHeld = true;
};
