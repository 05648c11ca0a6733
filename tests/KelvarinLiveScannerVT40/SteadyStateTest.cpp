// What a running stream costs: allocations and memory.
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <fstream>

#include "Allocations.h"
#include "ApiFixture.h"

namespace {

std::string s_sSink;

/// Allocations of all threads over some calls.
template <typename TCall>
long CountAllocations(TCall&& oCall) {
  const long nBefore = Allocations::Count();
  oCall();
  return Allocations::Count() - nBefore;
}

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
  EXPECT_EQ(CountAllocations([&] { Poll(LS_VT40GetPreviewImage, 10); }), 0);
}

TEST_F(SteadyState, AFullFrameAllocatesNothing) {
  ASSERT_EQ(LS_VT40SetCaptureMode(m_h, KLV_VT40_CAPTURE_MODE_FULL), 0);
  Poll(LS_VT40GetImage, 5);
  EXPECT_EQ(CountAllocations([&] { Poll(LS_VT40GetImage, 5); }), 0);
}

TEST_F(SteadyState, AFrameOfASignatureAllocatesNothing) {
  LoadScene(R"({"scanners": [{"serial": "VT40-AB0001", "pen": {"strokes": [
      {"at": 0, "line": "straight", "speed": 20, "points": [[10, 20], [70, 30], [10, 40], [70, 50]]}]}}]})");
  ASSERT_EQ(LS_VT40SetCaptureMode(m_h, KLV_VT40_CAPTURE_MODE_SIGNATURE), 0);
  Poll(LS_VT40GetPreviewImage, 5);
  EXPECT_EQ(CountAllocations([&] { Poll(LS_VT40GetPreviewImage, 20); }), 0);
  Poll(LS_VT40GetImage, 1);
  EXPECT_LT(*std::min_element(m_aImage.begin(), m_aImage.end()), 128) << "something was written";
}

TEST_F(SteadyState, AnAllocationIsSeen) {
  EXPECT_EQ(CountAllocations([] { std::string(1000, 'x').swap(s_sSink); }), 1) << "the counter counts";
}

#if defined(__i386__)
TEST_F(SteadyState, AnOpenScannerInFullModeStaysBelow400MegabytesOfAddresses) {
  ASSERT_EQ(LS_VT40SetCaptureMode(m_h, KLV_VT40_CAPTURE_MODE_FULL), 0);
  Poll(LS_VT40GetImage, 5);
  // The whole process, programs and stacks included.
  std::ifstream oMaps("/proc/self/maps");
  uint64_t nBytes = 0;
  for (std::string sLine; std::getline(oMaps, sLine);) {
    size_t nDash = 0;
    const uint64_t nFrom = std::stoull(sLine, &nDash, 16);
    if (sLine.find(" ---p ") == std::string::npos)
      nBytes += std::stoull(sLine.substr(nDash + 1), nullptr, 16) - nFrom;
  }
  RecordProperty("bytes", std::to_string(nBytes));
  EXPECT_GT(nBytes, 50000000u);
  EXPECT_LT(nBytes, 400000000u);
}
#elif !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
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
