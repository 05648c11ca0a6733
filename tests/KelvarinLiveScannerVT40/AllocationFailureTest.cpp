// Memory that runs out at any point of opening, capturing and closing.
#include <algorithm>

#include "Allocations.h"
#include "ApiFixture.h"
#include "Pace.h"

namespace {

constexpr char cszScene[] =
    R"({"scanners": [{"serial": "VT40-AB0001", "noise": 0, "planeOrder": "dark-first",
        "fingers": [{"print": {"seed": 3}}]}]})";
/// Tests that share the allocations; where one life takes half a minute, one of them is enough.
constexpr long cnShares = cnSlowness < 100 ? 4 : 1;
/// A slow build takes a sample.
constexpr long cnStep = cnShares * cnSlowness;

/// What came of a scanner's life; a call that could not be made counts as 0.
struct StLife {
  long nOpened = 0;
  long nCaptured = 0;
  long nClosed = 0;
  bool bFailed = false;  ///< the allocation in question was among the life's
  long nLeft = 0;        ///< blocks more in use than before
};

/// The parameter is the share of the allocations that a test takes, for machines with several processors.
class AllocationFailure : public Api, public testing::WithParamInterface<long> {
 protected:
  void SetUp() override {
    Api::SetUp();
    // Records of closed handles are kept up to a number; from then on a life leaves nothing behind.
    ASSERT_EQ(VTSimFailCall("VTScanAPICreateHandle", 1, 0, -101), 0);
    for (int n = 0; n < 100; ++n) ASSERT_EQ(Open(), -101);
    ASSERT_EQ(VTSimClearFaults(), 0);
  }

  /// Opens a scanner, takes one picture and closes it, with the given allocation of the library failing; 0: none.
  StLife Live(long nFailing) {
    StLife oLife;
    std::fill(m_aPixels.begin(), m_aPixels.end(), static_cast<unsigned char>(0));
    const long nBlocks = BlocksWithoutScanner();
    LoadScene(cszScene);
    Allocations::FailAt(nFailing, "libKelvarinLiveScannerVT40");
    oLife.nOpened = Open();
    if (oLife.nOpened == 0) {
      double dScore = 0;
      unsigned char bDone = 0;
      long nResult = 0;
      oLife.nCaptured = LS_VT40GetImage(m_h, m_aPixels.data(), &dScore, &bDone, &nResult);
      oLife.nClosed = LS_VT40CloseScanner(&m_h);
    }
    oLife.bFailed = Allocations::HasFailed();
    Allocations::FailAt(0, "");
    EXPECT_EQ(State().bOpen, 0);
    oLife.nLeft = BlocksWithoutScanner() - nBlocks;
    return oLife;
  }

  /// What a scanner remembers while it is closed is the simulator's and goes with it.
  static long BlocksWithoutScanner() {
    LoadScene(R"({"scanners": []})");
    return Allocations::Live();
  }

  std::vector<unsigned char> m_aPixels = std::vector<unsigned char>(1600 * 1600);
};

TEST_P(AllocationFailure, EndsWithItsNumberAndLeavesNothing) {
  StLife oLife = Live(0);
  ASSERT_EQ(oLife.nOpened, 0);
  ASSERT_EQ(oLife.nCaptured, 0);
  const std::vector<unsigned char> aPicture = m_aPixels;
  long nTold = 0;
  long nTried = 0;
  for (long nCall = 1 + GetParam(); (oLife = Live(nCall)).bFailed; nCall += cnStep, ++nTried) {
    SCOPED_TRACE(nCall);
    // A calibration map that found no memory is missed by the first picture that needs it, and by no other.
    const bool bTold = oLife.nOpened == -102 || oLife.nCaptured == -102 || oLife.nCaptured == -2;
    nTold += bTold ? 1 : 0;
    EXPECT_TRUE(bTold || (oLife.nOpened == 0 && oLife.nCaptured == 0 && m_aPixels == aPicture))
        << oLife.nOpened << ", " << oLife.nCaptured;
    EXPECT_EQ(oLife.nClosed, 0);
    EXPECT_EQ(m_h, nullptr);
    EXPECT_EQ(oLife.nLeft, 0);
  }
  RecordProperty("tried", static_cast<int>(nTried));
  EXPECT_GT(nTried, 400 / cnStep);
  EXPECT_GT(nTold, nTried / 2) << "of " << nTried;
}

INSTANTIATE_TEST_SUITE_P(Shares, AllocationFailure, testing::Range(0L, cnShares));

}  // namespace
