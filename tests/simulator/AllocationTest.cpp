// A running capture takes no memory: counted by replacing the allocation of this program.
#include <atomic>
#include <cstdlib>
#include <new>

#include "SimulatorFixture.h"

namespace {

std::atomic<long> g_nAllocations{0};

}  // namespace

// Not inlined: a compiler that saw through these would take malloc and delete for a mismatch.
__attribute__((noinline)) void* operator new(size_t nBytes) {
  ++g_nAllocations;
  if (void* p = std::malloc(nBytes ? nBytes : 1)) return p;
  throw std::bad_alloc();
}
__attribute__((noinline)) void operator delete(void* p) noexcept {
  std::free(p);
}
__attribute__((noinline)) void operator delete(void* p, size_t) noexcept {
  std::free(p);
}

namespace {

TEST_F(SimulatorTest, ARunningCaptureAllocatesNothing) {
  Start("slap-right");
  void* hDevice = Open();
  ASSERT_EQ(VTScanAPIEnableCapture(hDevice, 1), 0);
  SetMode(hDevice, 35, {0, 1});
  long nBefore = 0;
  for (int i = 0; i < 20; ++i) {
    if (i == 3) nBefore = g_nAllocations;
    void* pSequence = nullptr;
    ASSERT_EQ(VTScanAPILockRawSequence(hDevice, &pSequence), 0);
    ASSERT_EQ(VTScanAPIReleaseRawSequence(hDevice, &pSequence), 0);
  }
  EXPECT_EQ(g_nAllocations - nBefore, 0);
  EXPECT_GT(nBefore, 0) << "the counter counts";
}

}  // namespace
