// Replaces operator new, in a file of its own, so that no compiler sees through it.
#include "CountedAllocations.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<long> g_nAllocations{0};

void* Counted(size_t nBytes) noexcept {
  ++g_nAllocations;
  return std::malloc(nBytes > 0 ? nBytes : 1);
}

}  // namespace

long CountedAllocations() {
  return g_nAllocations;
}

void* operator new(size_t nBytes) {
  if (void* p = Counted(nBytes)) return p;
  throw std::bad_alloc();
}
void* operator new[](size_t nBytes) {
  return operator new(nBytes);
}
void* operator new(size_t nBytes, const std::nothrow_t&) noexcept {
  return Counted(nBytes);
}
void* operator new[](size_t nBytes, const std::nothrow_t&) noexcept {
  return Counted(nBytes);
}
void operator delete(void* p) noexcept {
  std::free(p);
}
void operator delete[](void* p) noexcept {
  std::free(p);
}
void operator delete(void* p, size_t) noexcept {
  std::free(p);
}
void operator delete[](void* p, size_t) noexcept {
  std::free(p);
}
