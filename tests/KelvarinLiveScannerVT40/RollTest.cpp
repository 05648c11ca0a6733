// Rolled prints through the exported functions: verdicts, pictures, signals, and what disturbs a roll.
#include "ApiFixture.h"
#include "RollRun.h"

namespace {

class Roll : public OpenScanner {
 protected:
  void TearDown() override {
    VTSimHoldSequences(nullptr, 0);
    OpenScanner::TearDown();
  }

  void Start(const std::string& sScene) { ASSERT_EQ(StartRoll(m_h, sScene), 0) << VTSimLastError(); }

  /// Goes on until the finger is down or has left, by the simulator's record.
  void StepUntil(bool bDown) {
    for (int n = 0; n < 100; ++n) {
      ASSERT_EQ(StepRoll(m_h).nError, 0);
      if ((FramesFrom(0).back().nFingers > 0) == bDown) return;
    }
    FAIL() << "the finger never " << (bDown ? "came" : "left");
  }
};

class GoodRoll : public Roll, public testing::WithParamInterface<const char*> {};

TEST_P(GoodRoll, IsCleanAndShowsTheRidgesOfTheWholeFinger) {
  Start(GetParam());
  const StRollImage oRoll = RunRoll(m_h);
  ASSERT_EQ(oRoll.nError, 0);
  ASSERT_EQ(oRoll.bDone, 1);
  EXPECT_EQ(oRoll.nResult, 0);
  EXPECT_EQ(oRoll.dScore, 0.0);
  const StRollQuality oQuality = MeasureRoll(oRoll.aPixels, FramesFrom(0));
  EXPECT_GE(oQuality.dCorrelation, 0.85);
  EXPECT_GE(oQuality.dGrowth, 1.5);
}

INSTANTIATE_TEST_SUITE_P(FourFingers, GoodRoll,
                         testing::Values("roll-right:101", "roll-right:102", "roll-left:101",
                                         "roll-left:103"),
                         [](const auto& oInfo) { return "Finger" + std::to_string(oInfo.index + 1); });

TEST_F(Roll, ABadOneGetsItsVerdictWithThePicture) {
  const std::pair<const char*, long> aStaged[] = {{"roll-slipped:101", -801},
                                                  {"roll-fast:102", -802},
                                                  {"roll-back:103", -803},
                                                  {"roll-twisted:101", -804},
                                                  {"roll-short:102", -805}};
  for (const auto& [szScene, nVerdict] : aStaged) {
    Start(szScene);
    const StRollImage oRoll = RunRoll(m_h);
    ASSERT_EQ(oRoll.nError, 0) << szScene;
    EXPECT_EQ(oRoll.bDone, 1) << szScene;
    EXPECT_EQ(oRoll.nResult, nVerdict) << szScene;
    EXPECT_GT(DarkerThan(oRoll.aPixels, 128), 20000) << szScene;
  }
}

TEST_F(Roll, EndsOnceForTheCallerWithOneBeepAndTheNextFollows) {
  ASSERT_EQ(LS_VT40SetPropertyLongA(m_h, "nAutoCaptureBeep", 1), 0);
  Start(QuickRoll());
  for (unsigned int nRolls = 1; nRolls <= 2; ++nRolls) {
    StepUntil(true);
    const StRollImage oRoll = RunRoll(m_h, 30);
    ASSERT_EQ(oRoll.bDone, 1);
    EXPECT_EQ(oRoll.nResult, 0);
    EXPECT_EQ(State().nBeeps, nRolls);
    const StRollImage oNext = StepRoll(m_h);
    EXPECT_EQ(oNext.bDone, 0);
    EXPECT_EQ(oNext.nResult, KLV_ERROR_NO_FINGER);
    EXPECT_EQ(oNext.aPixels, oRoll.aPixels) << "the print stays until the next finger";
  }
  VTSimBeep aBeeps[4];
  unsigned int nCount = 4;
  ASSERT_EQ(VTSimGetBeeps(nullptr, aBeeps, &nCount), 0);
  EXPECT_EQ(aBeeps[1].nArg1, 300u);
  EXPECT_EQ(aBeeps[1].nArg2, 100u);
  ASSERT_EQ(LS_VT40SetPropertyLongA(m_h, "nAutoCaptureBeep", 0), 0);
  EXPECT_EQ(RunRoll(m_h, 30).bDone, 1);
  EXPECT_EQ(State().nBeeps, 2u);
}

TEST_F(Roll, WaitsWithItsEndForACallerWhoLooksLate) {
  ASSERT_EQ(LS_VT40SetPropertyLongA(m_h, "nAutoCaptureBeep", 1), 0);
  Start(QuickRoll("1000"));
  StepUntil(true);
  // Sequences go through while nobody fetches, until the end has sounded, and beyond.
  for (int n = 0; n < 1000 && State().nBeeps == 0; ++n) Pass();
  for (int n = 0; n < 5; ++n) Pass();
  EXPECT_EQ(StepRoll(m_h).bDone, 1);
  EXPECT_EQ(StepRoll(m_h).bDone, 0);
  EXPECT_EQ(State().nBeeps, 1u);
}

TEST_F(Roll, StartsAfreshWhenTheImageIsReset) {
  Start(QuickRoll());
  StepUntil(true);
  StRollImage oRoll;
  for (int n = 0; n < 4; ++n) oRoll = StepRoll(m_h);
  EXPECT_GT(DarkerThan(oRoll.aPixels, 128), 5000);
  ASSERT_EQ(LS_VT40SetPropertyLongA(m_h, "nResetImage", 1), 0);
  oRoll = StepRoll(m_h);
  EXPECT_EQ(DarkerThan(oRoll.aPixels, 128), 0) << "the first frame of a roll paints nothing";
  EXPECT_EQ(oRoll.bDone, 0);
  oRoll = RunRoll(m_h, 30);
  EXPECT_EQ(oRoll.bDone, 1);
  EXPECT_GT(DarkerThan(oRoll.aPixels, 128), 5000);
}

TEST_F(Roll, IsCentredAndTurnedUprightOnRequest) {
  ASSERT_EQ(LS_VT40SetPropertyLongA(m_h, "nRolledPostProcess", 1), 0);
  Start("roll-left:104");
  const StRollImage oRoll = RunRoll(m_h);
  ASSERT_EQ(oRoll.bDone, 1);
  double dX = 0.0, dY = 0.0;
  const double dN = DarkerThan(oRoll.aPixels, 128);
  for (int n = 0; n < cnRollSide * cnRollSide; ++n) {
    if (oRoll.aPixels[static_cast<size_t>(n)] >= 128) continue;
    dX += n % cnRollSide / dN;
    dY += n / cnRollSide / dN;
  }
  EXPECT_NEAR(dX, cnRollSide / 2, 10.0);
  EXPECT_NEAR(dY, cnRollSide / 2, 10.0);
}

TEST_F(Roll, MayBeLeftAtAnyFrame) {
  for (const int nSteps : {0, 1, 2, 5, 8, 11}) {
    Start(QuickRoll());
    for (int n = 0; n < nSteps; ++n) ASSERT_EQ(StepRoll(m_h).nError, 0);
    // Frames are on their way while the scanner turns away.
    ASSERT_EQ(VTSimHoldSequences(nullptr, 0), 0);
    if (nSteps % 2 == 0) {
      ASSERT_EQ(LS_VT40SetCaptureMode(m_h, KLV_VT40_CAPTURE_MODE_PREVIEW), 0) << nSteps;
      EXPECT_EQ(Preview().nError, 0) << nSteps;
    } else {
      ASSERT_EQ(LS_VT40CloseScanner(&m_h), 0) << nSteps;
      ASSERT_EQ(Open(), 0);
    }
  }
}

}  // namespace
