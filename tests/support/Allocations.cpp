// Replaces operator new, in a file of its own, so that no compiler sees through one half of a pair.
#include "Allocations.h"

#include <dlfcn.h>
#include <execinfo.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

/// So many frames above operator new tell who called.
constexpr int cnFrames = 12;
/// In the name of every library of this project, in whatever case, and of nobody else's.
constexpr char cszOurs[] = "libkelvarin";

std::atomic<long> s_nCalls{0};
std::atomic<long> s_nLive{0};
std::atomic<std::size_t> s_nLargest{0};
/// Calls of the library in question until the one that fails; 0 or less: none does.
std::atomic<long> s_nUntilFailure{0};
std::atomic<const char*> s_szLibrary{nullptr};
std::atomic<bool> s_bFailed{false};

bool IsCalledFrom(const char* szLibrary) {
  void* apFrames[cnFrames];
  const int nFrames = backtrace(apFrames, cnFrames);
  for (int n = 0; n < nFrames; ++n) {
    Dl_info oObject;
    if (dladdr(apFrames[n], &oObject) == 0 || strcasestr(oObject.dli_fname, cszOurs) == nullptr) continue;
    return std::strstr(oObject.dli_fname, szLibrary) != nullptr;
  }
  return false;
}

bool IsToFail() {
  if (s_nUntilFailure <= 0 || !IsCalledFrom(s_szLibrary) || --s_nUntilFailure != 0) return false;
  s_bFailed = true;
  return true;
}

void* Allocate(std::size_t nBytes) noexcept {
  ++s_nCalls;
  for (std::size_t nBefore = s_nLargest;
       nBytes > nBefore && !s_nLargest.compare_exchange_weak(nBefore, nBytes);) {
  }
  if (IsToFail()) return nullptr;
  void* p = std::malloc(nBytes != 0 ? nBytes : 1);
  if (p != nullptr) ++s_nLive;
  return p;
}

void* AllocateOrThrow(std::size_t nBytes) {
  if (void* p = Allocate(nBytes)) return p;
  throw std::bad_alloc();
}

void Release(void* p) noexcept {
  if (p != nullptr) --s_nLive;
  std::free(p);
}

}  // namespace

namespace Allocations {

long Count() {
  return s_nCalls;
}

long Live() {
  return s_nLive;
}

std::size_t Largest() {
  return s_nLargest;
}

void ForgetLargest() {
  s_nLargest = 0;
}

void FailAt(long nCall, const char* szLibrary) {
  // backtrace loads a library at its first call.
  void* pFrame;
  backtrace(&pFrame, 1);
  s_bFailed = false;
  s_szLibrary = szLibrary;
  s_nUntilFailure = nCall;
}

bool HasFailed() {
  return s_bFailed;
}

}  // namespace Allocations

void* operator new(std::size_t nBytes) {
  return AllocateOrThrow(nBytes);
}
void* operator new[](std::size_t nBytes) {
  return AllocateOrThrow(nBytes);
}
void* operator new(std::size_t nBytes, const std::nothrow_t&) noexcept {
  return Allocate(nBytes);
}
void* operator new[](std::size_t nBytes, const std::nothrow_t&) noexcept {
  return Allocate(nBytes);
}
void operator delete(void* p) noexcept {
  Release(p);
}
void operator delete[](void* p) noexcept {
  Release(p);
}
void operator delete(void* p, std::size_t) noexcept {
  Release(p);
}
void operator delete[](void* p, std::size_t) noexcept {
  Release(p);
}
void operator delete(void* p, const std::nothrow_t&) noexcept {
  Release(p);
}
void operator delete[](void* p, const std::nothrow_t&) noexcept {
  Release(p);
}
