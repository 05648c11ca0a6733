// A running capture takes no memory.
#include "Allocations.h"
#include "SimulatorFixture.h"

namespace {

TEST_F(SimulatorTest, ARunningCaptureAllocatesNothing) {
  Start("slap-right");
  void* hDevice = Open();
  ASSERT_EQ(VTScanAPIEnableCapture(hDevice, 1), 0);
  SetMode(hDevice, 35, {0, 1});
  long nBefore = 0;
  for (int i = 0; i < 20; ++i) {
    if (i == 3) nBefore = Allocations::Count();
    void* pSequence = nullptr;
    ASSERT_EQ(VTScanAPILockRawSequence(hDevice, &pSequence), 0);
    ASSERT_EQ(VTScanAPIReleaseRawSequence(hDevice, &pSequence), 0);
  }
  EXPECT_EQ(Allocations::Count() - nBefore, 0);
  EXPECT_GT(nBefore, 0) << "the counter counts";
}

}  // namespace
