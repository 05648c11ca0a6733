// Trials of automatic capture over many staged scenes, whose outcome depends on the pace of the frames.
#include "AutoFixture.h"

namespace {

TEST_F(AutoScanner, CapturesEverySteadyPlacementOnceWithin30Frames) {
  int nMissed = 0;
  for (int nSeed = 1; nSeed <= Seeds(); ++nSeed) {
    SCOPED_TRACE(nSeed);
    Start(Seeded("settling-slap", nSeed));
    for (int nPlacement = 0; nPlacement < 2; ++nPlacement) {
      const size_t nBefore = Shots().size();
      const StDelivered oPreview = PollUntil(true, cnManyFrames);
      ASSERT_EQ(oPreview.nError, 0);
      EXPECT_EQ(oPreview.dScore, 0.0) << "without a liveness score";
      const StDelivered oImage = Image();
      EXPECT_EQ(oImage.nError, 0);
      EXPECT_EQ(oImage.bDone, 1);
      EXPECT_EQ(oImage.nResult, 0);
      EXPECT_GT(DarkerThan(oImage.aPixels, 128), 100000);
      ASSERT_EQ(PollUntil(false, cnManyFrames).nError, 0);
      // This is the capture; a fetch that comes after its five frames takes a shot of its own.
      const std::vector<VTSimFrame> aShots = Shots();
      ASSERT_GT(aShots.size(), nBefore);
      const VTSimFrame& oShot = aShots[nBefore];
      nMissed += oShot.nNumber - oShot.nSteadySince > 30;
      EXPECT_EQ(oShot.nFingers, 4u);
      EXPECT_EQ(oShot.nMoving, 0u);
    }
  }
  EXPECT_LE(nMissed * 100, 2 * Seeds());
}

}  // namespace
