// Memory that runs out at any point of opening, capturing and closing.
#include <cstdlib>

#include "Allocations.h"
#include "ApiFixture.h"
#include "Pace.h"

namespace {

/// The finger is drawn once for all scenes that follow each other.
std::string Scene(const std::string& sSerial) {
  return R"({"scanners": [{"serial": ")" + sSerial + R"(", "noise": 0, "planeOrder": "dark-first",
      "fingers": [{"print": {"seed": 3}}]}]})";
}

/// A slow build takes a sample, and KELVARIN_TEST_OFFSET in the environment says where it begins.
constexpr size_t cnStep = cnSlowness;

size_t Offset() {
  const char* szOffset = std::getenv("KELVARIN_TEST_OFFSET");
  return szOffset != nullptr ? std::strtoul(szOffset, nullptr, 10) % cnStep : 0;
}

/// The results of a scanner's life; a call that could not be made counts as 0.
struct StLife {
  long nOpened = 0;
  long nCaptured = 0;
  long nClosed = 0;
  bool bFailed = false;  ///< the allocation in question was among the life's
  long nLeft = 0;        ///< blocks more in use than before
};

class AllocationFailure : public Api {
 protected:
  void SetUp() override {
    Api::SetUp();
    // Records of closed handles are kept up to a number; after that a life leaves no memory in use.
    ASSERT_EQ(VTSimFailCall("VTScanAPICreateHandle", 1, 0, -101), 0);
    for (int n = 0; n < 100; ++n) ASSERT_EQ(Open(), -101);
    ASSERT_EQ(VTSimClearFaults(), 0);
  }

  /// Opens a scanner, takes one picture and closes it, with what fnWatch does to the allocations of the
  /// library.
  template <typename TWatch>
  StLife Live(TWatch&& fnWatch) {
    StLife oLife;
    const long nBlocks = BlocksWithoutScanner();
    LoadScene(Scene(cszSerial));
    fnWatch();
    oLife.nOpened = Open();
    if (oLife.nOpened == 0) {
      StDelivered oPicture = Image();
      oLife.nCaptured = oPicture.nError;
      m_aPicture.swap(oPicture.aPixels);
      oLife.nClosed = LS_VT40CloseScanner(&m_h);
    }
    oLife.bFailed = Allocations::HasFailed();
    Allocations::Ignore();
    EXPECT_EQ(State().bOpen, 0);
    oLife.nLeft = BlocksWithoutScanner() - nBlocks;
    return oLife;
  }

  /// What a scanner remembers while it is closed belongs to the simulator and is freed with it.
  static long BlocksWithoutScanner() {
    LoadScene(Scene("VT40-AB0002"));
    return Allocations::Live();
  }

  std::vector<unsigned char> m_aPicture;
};

TEST_F(AllocationFailure, EndsWithItsNumberAndLeavesNothing) {
  // The first life makes what is made once for all of them.
  StLife oLife = Live([] {});
  oLife = Live([] { Allocations::Remember("libKelvarinLiveScannerVT40"); });
  ASSERT_EQ(oLife.nOpened, 0);
  ASSERT_EQ(oLife.nCaptured, 0);
  const std::vector<unsigned char> aPicture = m_aPicture;
  size_t nTold = 0;
  size_t nTried = 0;
  // Calls from one stack meet the same handlers, so that the first of them stands for all.
  for (size_t nStack = Offset(); nStack < Allocations::Stacks() && !HasFailure();
       nStack += cnStep, ++nTried) {
    SCOPED_TRACE(nStack);
    oLife = Live([nStack] { Allocations::FailAt(nStack); });
    EXPECT_TRUE(oLife.bFailed);
    // A calibration map that found no memory makes the first picture fail that needs it, and no other.
    const bool bTold = oLife.nOpened == -102 || oLife.nCaptured == -102 || oLife.nCaptured == -2;
    nTold += bTold ? 1 : 0;
    EXPECT_TRUE(bTold || (oLife.nOpened == 0 && oLife.nCaptured == 0 && m_aPicture == aPicture))
        << oLife.nOpened << ", " << oLife.nCaptured;
    EXPECT_EQ(oLife.nClosed, 0);
    EXPECT_EQ(m_h, nullptr);
    EXPECT_EQ(oLife.nLeft, 0);
  }
  EXPECT_GT(nTried, 100 / cnStep);
  EXPECT_GT(nTold, nTried / 2) << "of " << nTried;
}

TEST_F(AllocationFailure, ASwitchToTheSignaturePadThatFailsLeavesItsPropertyFree) {
  LoadScene(Scene(cszSerial));
  ASSERT_EQ(Open(), 0);
  Allocations::Watch("libKelvarinLiveScannerVT40");
  long nSwitched = -1, nAllocation = 0;
  while (nSwitched != 0 && !HasFailure()) {
    nAllocation += cnSlowness;
    Allocations::FailNth(nAllocation);
    nSwitched = LS_VT40SetCaptureMode(m_h, KLV_VT40_CAPTURE_MODE_SIGNATURE);
    Allocations::Ignore();
    ASSERT_EQ(LS_VT40SetCaptureMode(m_h, KLV_VT40_CAPTURE_MODE_OFF), 0);
    EXPECT_EQ(LS_VT40SetPropertyLongA(m_h, "nSignatureSensorMode", nAllocation % 2), 0);
  }
  EXPECT_GT(nAllocation, 10);
}

}  // namespace
