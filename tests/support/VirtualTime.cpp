// The C library's clock and waits as the program sees them, and the thread that moves the clock on.
#include "VirtualTime.h"

#include <dirent.h>
#include <dlfcn.h>
#include <pthread.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace {

constexpr int64_t cnSecond = 1000000000;
/// Shorter sleeps are slept.
constexpr int64_t cnShortest = 1000000;
constexpr int64_t cnTick = 200000;

/// A thread that waits for a condition until a moment.
struct StWaiter {
  pthread_cond_t* pCondition;
  int64_t nUntil;
  StWaiter* pNext;
};

std::atomic<bool> s_bRuns{false};
std::atomic<bool> s_bCountsWork{false};
std::atomic<int64_t> s_nAhead{0};  ///< of the processor time
pthread_mutex_t s_oWaiters = PTHREAD_MUTEX_INITIALIZER;
StWaiter* s_pWaiters = nullptr;  // guarded by s_oWaiters
pthread_t s_hMover;

int64_t Nanoseconds(const timespec& oTime) {
  return oTime.tv_sec * cnSecond + oTime.tv_nsec;
}

int64_t MachineNow(clockid_t nClock) {
  timespec oTime{};
  syscall(SYS_clock_gettime, nClock, &oTime);
  return Nanoseconds(oTime);
}

int64_t Now() {
  return s_bCountsWork ? MachineNow(CLOCK_PROCESS_CPUTIME_ID) + s_nAhead : MachineNow(CLOCK_MONOTONIC);
}

void MachineSleep(int64_t nNanoseconds) {
  const timespec oTime{static_cast<time_t>(nNanoseconds / cnSecond),
                       static_cast<long>(nNanoseconds % cnSecond)};
  syscall(SYS_clock_nanosleep, CLOCK_MONOTONIC, 0, &oTime, nullptr);
}

template <typename F>
F Real(F, const char* szName, const char* szVersion) {
  return reinterpret_cast<F>(dlvsym(RTLD_NEXT, szName, szVersion));
}

/// Waits until the condition is signalled or the moment has come, and says by its result which.
int WaitUntil(pthread_cond_t* pCondition, pthread_mutex_t* pMutex, int64_t nUntil) {
  if (nUntil <= Now()) return ETIMEDOUT;
  StWaiter oWaiter{pCondition, nUntil, nullptr};
  pthread_mutex_lock(&s_oWaiters);
  oWaiter.pNext = s_pWaiters;
  s_pWaiters = &oWaiter;
  pthread_mutex_unlock(&s_oWaiters);
  pthread_cond_wait(pCondition, pMutex);
  pthread_mutex_lock(&s_oWaiters);
  StWaiter** pp = &s_pWaiters;
  while (*pp != &oWaiter) pp = &(*pp)->pNext;
  *pp = oWaiter.pNext;
  pthread_mutex_unlock(&s_oWaiters);
  return nUntil <= Now() ? ETIMEDOUT : 0;
}

int SleepUntil(int64_t nUntil) {
  pthread_mutex_t oMutex = PTHREAD_MUTEX_INITIALIZER;
  pthread_cond_t oCondition = PTHREAD_COND_INITIALIZER;
  pthread_mutex_lock(&oMutex);
  while (WaitUntil(&oCondition, &oMutex, nUntil) == 0) {
  }
  pthread_mutex_unlock(&oMutex);
  return 0;
}

/// What the threads have run so far; -1 while one of them runs, or is about to.
int64_t Runs() {
  const pid_t nOwn = static_cast<pid_t>(syscall(SYS_gettid));
  int64_t nRuns = 0;
  DIR* pThreads = opendir("/proc/self/task");
  while (const dirent* pThread = pThreads != nullptr ? readdir(pThreads) : nullptr) {
    if (pThread->d_name[0] == '.' || std::atoi(pThread->d_name) == nOwn) continue;
    char szPath[NAME_MAX + 64];
    char cState = 'S';
    long long nSlices = 0;
    std::snprintf(szPath, sizeof(szPath), "/proc/self/task/%s/stat", pThread->d_name);
    if (FILE* p = std::fopen(szPath, "r")) {
      if (std::fscanf(p, "%*d (%*[^)]) %c", &cState) != 1) cState = 'S';
      std::fclose(p);
    }
    std::snprintf(szPath, sizeof(szPath), "/proc/self/task/%s/schedstat", pThread->d_name);
    if (FILE* p = std::fopen(szPath, "r")) {
      if (std::fscanf(p, "%*d %*d %lld", &nSlices) != 1) nSlices = 0;
      std::fclose(p);
    }
    if (cState != 'S') {
      nRuns = -1;
      break;
    }
    nRuns = nRuns * 31 + nSlices;
  }
  if (pThreads != nullptr) closedir(pThreads);
  return nRuns;
}

/// Wakes whoever's moment has come. The nearest moment of the others, LLONG_MAX without one.
int64_t WakeDue() {
  int64_t nNearest = LLONG_MAX;
  pthread_mutex_lock(&s_oWaiters);
  for (StWaiter* p = s_pWaiters; p != nullptr; p = p->pNext) {
    if (p->nUntil <= Now()) {
      pthread_cond_broadcast(p->pCondition);
      nNearest = 0;
    } else if (p->nUntil < nNearest) {
      nNearest = p->nUntil;
    }
  }
  pthread_mutex_unlock(&s_oWaiters);
  return nNearest;
}

void* MoveOn(void*) {
  int64_t nBefore = -1;
  int64_t nWork = 0;
  while (s_bRuns) {
    MachineSleep(cnTick);
    const int64_t nNearest = WakeDue();
    const int64_t nWorked = MachineNow(CLOCK_PROCESS_CPUTIME_ID) - MachineNow(CLOCK_THREAD_CPUTIME_ID);
    const bool bBusy = nWorked - nWork > cnTick / 4;
    nWork = nWorked;
    // A thread that waits for a processor runs, too: a busy machine is no reason for time to pass.
    const int64_t nRuns = bBusy || nNearest == LLONG_MAX || nNearest == 0 ? -1 : Runs();
    const bool bStill = nRuns != -1 && nRuns == nBefore;
    nBefore = nRuns;
    if (!bStill) continue;
    const int64_t nLeft = nNearest - Now();
    if (nLeft > 0) s_nAhead += nLeft;
    WakeDue();
    nBefore = -1;
  }
  return nullptr;
}

}  // namespace

ClVirtualTime::ClVirtualTime() {
  // Once it has counted work the clock goes on to do so, since it must not go back.
  if (!s_bCountsWork) s_nAhead = MachineNow(CLOCK_MONOTONIC) - MachineNow(CLOCK_PROCESS_CPUTIME_ID);
  s_bCountsWork = true;
  s_bRuns = true;
  if (pthread_create(&s_hMover, nullptr, &MoveOn, nullptr) != 0) std::abort();
}

ClVirtualTime::~ClVirtualTime() {
  s_bRuns = false;
  pthread_join(s_hMover, nullptr);
}

extern "C" {

int clock_gettime(clockid_t nClock, timespec* pTime) noexcept {
  const long nResult = syscall(SYS_clock_gettime, nClock, pTime);
  if (nResult == 0 && nClock == CLOCK_MONOTONIC) {
    const int64_t nTime = Now();
    *pTime = {static_cast<time_t>(nTime / cnSecond), static_cast<long>(nTime % cnSecond)};
  }
  return static_cast<int>(nResult);
}

int pthread_cond_clockwait(pthread_cond_t* pCondition, pthread_mutex_t* pMutex, clockid_t nClock,
                           const timespec* pUntil) {
  static const auto pfnReal = Real(&pthread_cond_clockwait, "pthread_cond_clockwait", "GLIBC_2.34");
  const int64_t nUntil = Nanoseconds(*pUntil) + (nClock == CLOCK_MONOTONIC ? 0 : Now() - MachineNow(nClock));
  if (s_bRuns) return WaitUntil(pCondition, pMutex, nUntil);
  const int64_t nMachine = nUntil - Now() + MachineNow(CLOCK_MONOTONIC);
  const timespec oUntil{static_cast<time_t>(nMachine / cnSecond), static_cast<long>(nMachine % cnSecond)};
  return pfnReal(pCondition, pMutex, CLOCK_MONOTONIC, &oUntil);
}

/// All conditions of the program that are waited for in this way have the monotonic clock.
int pthread_cond_timedwait(pthread_cond_t* pCondition, pthread_mutex_t* pMutex, const timespec* pUntil) {
  return pthread_cond_clockwait(pCondition, pMutex, CLOCK_MONOTONIC, pUntil);
}

int clock_nanosleep(clockid_t nClock, int nFlags, const timespec* pTime, timespec* pLeft) {
  const bool bMoment = (nFlags & TIMER_ABSTIME) != 0;
  const int64_t nFor =
      Nanoseconds(*pTime) - (bMoment ? (nClock == CLOCK_MONOTONIC ? Now() : MachineNow(nClock)) : 0);
  if (s_bRuns && nFor >= cnShortest) return SleepUntil(Now() + nFor);
  if (pLeft != nullptr) *pLeft = {};
  if (nFor > 0) MachineSleep(nFor);
  return 0;
}

int nanosleep(const timespec* pTime, timespec* pLeft) {
  return clock_nanosleep(CLOCK_MONOTONIC, 0, pTime, pLeft);
}

}  // extern "C"
