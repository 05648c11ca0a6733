// Replaces operator new, in a file of its own, so that no compiler sees through one half of a pair.
#include "Allocations.h"

#include <execinfo.h>
#include <link.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>

namespace {

constexpr int cnFrames = 64;
/// The number of innermost calls in the watched library by which stacks are distinguished.
constexpr int cnDepth = 4;
constexpr std::size_t cnMaxStacks = 4096;
constexpr std::size_t cnMaxSegments = 16;
/// Part of the name of every library of this project, in whatever case, and of no other library.
constexpr char cszOurs[] = "libkelvarin";

/// Code of a library of this project.
struct StSegment {
  std::uintptr_t nBegin;
  std::uintptr_t nEnd;
  bool bWatched;
};

std::atomic<long> s_nCalls{0};
std::atomic<long> s_nLive{0};
std::atomic<std::size_t> s_nLargest{0};

enum EWatch { eOff, eRemember, eFail, eCount };
std::atomic<EWatch> s_eWatch{eOff};
/// Written while nothing is watched.
StSegment s_aSegments[cnMaxSegments];
std::size_t s_nSegments = 0;
std::uint64_t s_nFailing = 0;
std::mutex s_oStacksMutex;
std::uint64_t s_aStacks[cnMaxStacks];  // guarded by s_oStacksMutex
std::size_t s_nStacks = 0;             // likewise
std::atomic<long> s_nBefore{0};        // allocations that still find memory
std::atomic<bool> s_bFailed{false};

int AddSegments(dl_phdr_info* pObject, std::size_t, void* pLibrary) {
  if (strcasestr(pObject->dlpi_name, cszOurs) == nullptr) return 0;
  const bool bWatched = std::strstr(pObject->dlpi_name, static_cast<const char*>(pLibrary)) != nullptr;
  for (int n = 0; n < pObject->dlpi_phnum && s_nSegments < cnMaxSegments; ++n) {
    const auto& oHeader = pObject->dlpi_phdr[n];
    if (oHeader.p_type != PT_LOAD || (oHeader.p_flags & PF_X) == 0) continue;
    const std::uintptr_t nBegin = pObject->dlpi_addr + oHeader.p_vaddr;
    s_aSegments[s_nSegments++] = {nBegin, nBegin + oHeader.p_memsz, bWatched};
  }
  return 0;
}

const StSegment* SegmentOf(std::uintptr_t nAddress) {
  for (std::size_t n = 0; n < s_nSegments; ++n)
    if (nAddress >= s_aSegments[n].nBegin && nAddress < s_aSegments[n].nEnd) return &s_aSegments[n];
  return nullptr;
}

/// A number for the calls in the watched library that led to its allocation; 0 for an allocation of other
/// code.
std::uint64_t Stack() {
  void* apFrames[cnFrames];
  const int nFrames = backtrace(apFrames, cnFrames);
  std::uint64_t nHash = 0;
  int nDepth = 0;
  for (int n = 0; n < nFrames && nDepth < cnDepth; ++n) {
    const std::uintptr_t nAddress = reinterpret_cast<std::uintptr_t>(apFrames[n]);
    const StSegment* pSegment = SegmentOf(nAddress);
    if (pSegment == nullptr) continue;
    // The innermost of this project's libraries is the one that allocates.
    if (nDepth++ == 0 && !pSegment->bWatched) return 0;
    nHash = (nHash ^ nAddress) * 0x9E3779B97F4A7C15u + 1;
  }
  return nHash;
}

void Remember(std::uint64_t nStack) {
  const std::lock_guard<std::mutex> oLock(s_oStacksMutex);
  std::uint64_t* pEnd = s_aStacks + s_nStacks;
  if (nStack == 0 || s_nStacks == cnMaxStacks || std::find(s_aStacks, pEnd, nStack) != pEnd) return;
  s_aStacks[s_nStacks++] = nStack;
}

bool IsToFail() {
  const EWatch eWatch = s_eWatch;
  if (eWatch == eOff || (eWatch == eCount && s_bFailed)) return false;
  const std::uint64_t nStack = Stack();
  if (eWatch == eCount) return nStack != 0 && s_nBefore-- == 0 && !s_bFailed.exchange(true);
  if (eWatch == eRemember) {
    Remember(nStack);
    return false;
  }
  return nStack == s_nFailing && !s_bFailed.exchange(true);
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

void Watch(const char* szLibrary) {
  // backtrace loads a library at its first call.
  void* pFrame;
  backtrace(&pFrame, 1);
  s_eWatch = eOff;
  s_nSegments = 0;
  dl_iterate_phdr(AddSegments, const_cast<char*>(szLibrary));
}

void FailNth(long nWhich) {
  s_nBefore = nWhich - 1;
  s_bFailed = false;
  s_eWatch = eCount;
}

void Remember(const char* szLibrary) {
  Watch(szLibrary);
  s_nStacks = 0;
  s_eWatch = eRemember;
}

std::size_t Stacks() {
  const std::lock_guard<std::mutex> oLock(s_oStacksMutex);
  return s_nStacks;
}

void FailAt(std::size_t nStack) {
  s_eWatch = eOff;
  s_bFailed = false;
  s_nFailing = s_aStacks[nStack];
  s_eWatch = eFail;
}

void Ignore() {
  s_eWatch = eOff;
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
