// What a running stream costs: allocations and memory.
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <new>

#include "ApiFixture.h"

namespace {

std::atomic<bool> s_bCounting{false};
std::atomic<size_t> s_nAllocations{0};

void* Allocate(size_t nBytes) {
  if (s_bCounting) ++s_nAllocations;
  void* p = std::malloc(nBytes != 0 ? nBytes : 1);
  if (p == nullptr) throw std::bad_alloc();
  return p;
}

/// Not inlined, so that the compiler does not take the pair of malloc and free for a mistake.
__attribute__((noinline)) void Release(void* p) noexcept {
  std::free(p);
}

/// Counts the allocations of all threads over some calls.
template <typename TCall>
size_t CountAllocations(TCall&& oCall) {
  s_nAllocations = 0;
  s_bCounting = true;
  oCall();
  s_bCounting = false;
  return s_nAllocations;
}

}  // namespace

// The library's and the simulator's allocations come here too: these symbols precede those of their
// libraries.
void* operator new(size_t nBytes) {
  return Allocate(nBytes);
}
void* operator new[](size_t nBytes) {
  return Allocate(nBytes);
}
void* operator new(size_t nBytes, const std::nothrow_t&) noexcept {
  if (s_bCounting) ++s_nAllocations;
  return std::malloc(nBytes != 0 ? nBytes : 1);
}
void* operator new[](size_t nBytes, const std::nothrow_t&) noexcept {
  return operator new(nBytes, std::nothrow);
}
void operator delete(void* p) noexcept {
  Release(p);
}
void operator delete[](void* p) noexcept {
  Release(p);
}
void operator delete(void* p, size_t) noexcept {
  Release(p);
}
void operator delete[](void* p, size_t) noexcept {
  Release(p);
}

namespace {

std::string s_sSink;

class SteadyState : public OpenScanner {
 protected:
  void SetUp() override {
    OpenScanner::SetUp();
    LoadScene(R"({"scanners": [{"serial": "VT40-AB0001", "fingers": [{"print": {"seed": 3}}]}]})");
    m_aImage.resize(1600 * 1600);
  }

  template <typename TFunction>
  void Poll(TFunction pfnImage, int nFrames) {
    double dScore = 0;
    unsigned char bDone = 0;
    long nResult = 0;
    for (int n = 0; n < nFrames; ++n) {
      ASSERT_EQ(pfnImage(m_h, m_aImage.data(), &dScore, &bDone, &nResult), 0);
    }
  }

  std::vector<unsigned char> m_aImage;
};

TEST_F(SteadyState, APreviewFrameAllocatesNothing) {
  ASSERT_EQ(LS_VT40SetCaptureMode(m_h, KLV_VT40_CAPTURE_MODE_PREVIEW), 0);
  Poll(LS_VT40GetPreviewImage, 5);
  EXPECT_EQ(CountAllocations([&] { Poll(LS_VT40GetPreviewImage, 10); }), 0u);
}

TEST_F(SteadyState, AFullFrameAllocatesNothing) {
  ASSERT_EQ(LS_VT40SetCaptureMode(m_h, KLV_VT40_CAPTURE_MODE_FULL), 0);
  Poll(LS_VT40GetImage, 5);
  EXPECT_EQ(CountAllocations([&] { Poll(LS_VT40GetImage, 5); }), 0u);
}

TEST_F(SteadyState, AFrameOfASignatureAllocatesNothing) {
  LoadScene(R"({"scanners": [{"serial": "VT40-AB0001", "pen": {"strokes": [
      {"at": 0, "line": "straight", "speed": 20, "points": [[10, 20], [70, 30], [10, 40], [70, 50]]}]}}]})");
  ASSERT_EQ(LS_VT40SetCaptureMode(m_h, KLV_VT40_CAPTURE_MODE_SIGNATURE), 0);
  Poll(LS_VT40GetPreviewImage, 5);
  EXPECT_EQ(CountAllocations([&] { Poll(LS_VT40GetPreviewImage, 20); }), 0u);
  Poll(LS_VT40GetImage, 1);
  EXPECT_LT(*std::min_element(m_aImage.begin(), m_aImage.end()), 128) << "something was written";
}

TEST_F(SteadyState, AnAllocationIsSeen) {
  EXPECT_EQ(CountAllocations([] { std::string(1000, 'x').swap(s_sSink); }), 1u) << "the counter counts";
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
TEST_F(SteadyState, AnOpenScannerInPreviewStaysBelow150Megabytes) {
  ASSERT_EQ(LS_VT40SetCaptureMode(m_h, KLV_VT40_CAPTURE_MODE_PREVIEW), 0);
  Poll(LS_VT40GetPreviewImage, 20);
  std::FILE* pFile = std::fopen("/proc/self/statm", "r");
  ASSERT_NE(pFile, nullptr);
  long nTotal = 0;
  long nResident = 0;
  ASSERT_EQ(std::fscanf(pFile, "%ld %ld", &nTotal, &nResident), 2);
  std::fclose(pFile);
  EXPECT_LT(nResident * sysconf(_SC_PAGESIZE), 150000000);
}
#endif

}  // namespace
