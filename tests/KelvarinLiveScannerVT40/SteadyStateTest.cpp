// What a running stream costs: allocations and memory.
#include <malloc.h>
#include <unistd.h>

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
  /// Images of a mode: some to begin with, then nFrames, whose allocations are the result.
  long Poll(const std::string& sContent, int nMode, ImageCall pfnImage, int nFrames) {
    LoadScene(R"({"scanners": [{"serial": "VT40-AB0001", )" + sContent + "}]}");
    EXPECT_EQ(LS_VT40SetCaptureMode(m_h, nMode), 0);
    double dScore = 0;
    unsigned char bDone = 0;
    long nResult = 0;
    const auto Fetch = [&] { EXPECT_EQ(pfnImage(m_h, m_aImage.data(), &dScore, &bDone, &nResult), 0); };
    for (int n = 0; n < 5; ++n) Fetch();
    return CountAllocations([&] {
      for (int n = 0; n < nFrames; ++n) Fetch();
    });
  }

  static constexpr char cszFingers[] = R"("fingers": [{"print": {"seed": 3}}])";
  static constexpr char cszPen[] = R"("pen": {"strokes": [
      {"at": 0, "line": "straight", "speed": 20, "points": [[10, 20], [70, 30], [10, 40], [70, 50]]}]})";
  std::vector<unsigned char> m_aImage = std::vector<unsigned char>(1600 * 1600);
};

TEST_F(SteadyState, AFrameOfAStreamAllocatesNothing) {
  EXPECT_EQ(Poll(cszFingers, KLV_VT40_CAPTURE_MODE_PREVIEW, LS_VT40GetPreviewImage, 10), 0);
  EXPECT_EQ(Poll(cszFingers, KLV_VT40_CAPTURE_MODE_FULL, LS_VT40GetImage, 5), 0);
  EXPECT_EQ(Poll(cszPen, KLV_VT40_CAPTURE_MODE_SIGNATURE, LS_VT40GetPreviewImage, 20), 0);
  EXPECT_GT(DarkerThan(Image().aPixels, 128), 0) << "something was written";
  EXPECT_EQ(CountAllocations([] { std::string(1000, 'x').swap(s_sSink); }), 1) << "the counter counts";
}

#if defined(__i386__)
TEST_F(SteadyState, AnOpenScannerInFullModeStaysBelow400MegabytesOfAddresses) {
  Poll(cszFingers, KLV_VT40_CAPTURE_MODE_FULL, LS_VT40GetImage, 5);
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
TEST_F(SteadyState, AnOpenScannerInPreviewStaysBelow68Megabytes) {
  Poll(cszFingers, KLV_VT40_CAPTURE_MODE_PREVIEW, LS_VT40GetPreviewImage, 20);
  // What was freed, here or by earlier tests, is the allocator's and not the scanner's.
  malloc_trim(0);
  long nTotal = 0, nResident = 0;
  ASSERT_TRUE(std::ifstream("/proc/self/statm") >> nTotal >> nResident);
  EXPECT_LT(nResident * sysconf(_SC_PAGESIZE), 68000000);
}
#endif

}  // namespace
